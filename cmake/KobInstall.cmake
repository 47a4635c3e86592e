# SPDX-License-Identifier: BSD-3-Clause
# What "cmake --install" puts where. The installed tree can be moved; a user of it needs no HDF5 headers.

include(CMakePackageConfigHelpers)

# The library finds HDF5 where it was found at build time, unless the system finds it anyway.
set_target_properties(kob_dp PROPERTIES INSTALL_RPATH "$ORIGIN" INSTALL_RPATH_USE_LINK_PATH ON)

install(TARGETS kob_dp EXPORT kob_dpTargets LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(FILES "${PROJECT_SOURCE_DIR}/include/kob_dp.h" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")

if(TARGET kob)
    file(RELATIVE_PATH kob_bin_to_lib "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set_target_properties(kob PROPERTIES INSTALL_RPATH "$ORIGIN/${kob_bin_to_lib}")
    install(TARGETS kob RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

set(kob_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kob_dp")
install(EXPORT kob_dpTargets NAMESPACE kob_dp:: DESTINATION "${kob_package_dir}")
configure_package_config_file(
    "${CMAKE_CURRENT_LIST_DIR}/kob_dpConfig.cmake.in" "${PROJECT_BINARY_DIR}/kob_dpConfig.cmake"
    INSTALL_DESTINATION "${kob_package_dir}" NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kob_dpConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/kob_dpConfig.cmake" "${PROJECT_BINARY_DIR}/kob_dpConfigVersion.cmake"
        DESTINATION "${kob_package_dir}")

file(RELATIVE_PATH kob_pc_to_prefix "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" kob_pc_to_prefix "${kob_pc_to_prefix}")
configure_file("${CMAKE_CURRENT_LIST_DIR}/kob_dp.pc.in" "${PROJECT_BINARY_DIR}/kob_dp.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/kob_dp.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
