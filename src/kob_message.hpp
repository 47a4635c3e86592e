// SPDX-License-Identifier: BSD-3-Clause
// Every line that the library prints, and the one place that prints.
#pragma once

#include <cstdint>
#include <cstdio>

namespace kob {

/// Formats one line to standard error.
[[gnu::format(printf, 1, 2)]] void report_error(const char* format, ...);

/// Formats one line to standard output.
[[gnu::format(printf, 1, 2)]] void say(const char* format, ...);

/// printf formats. Blanks, line ends, quotes and spelling are part of the interface: callers match these lines.
namespace message {

// blocks
constexpr char already_exists[] = "KOB INTERNAL ERROR writing block key %d - \"%s\" already exists.\n";
constexpr char writing_key[] = "KOB ERROR writing block key %d\n";
constexpr char writing_name[] = "KOB ERROR writing block %s\n";
constexpr char writing_invalid_mode[] = "KOB ERROR writing block key %d - invalid mode\n";
constexpr char reading_invalid_mode[] = "KOB ERROR reading block key %d - invalid mode\n";
constexpr char reading_pass[] = "KOB INTERNAL ERROR reading block with key %d \n";
constexpr char reading_pass_of_two[] = "KOB INTERNAL ERROR reading block with key %d or %d\n";
constexpr char writing_named_invalid_mode[] = "KOB ERROR writing block %s - invalid mode %d\n";
constexpr char reading_named_pass[] = "KOB INTERNAL ERROR reading \"%s\" block - ipass = %d\n";
constexpr char header_not_found[] = "KOB ERROR - header not found\n";
constexpr char data_not_found[] = "KOB ERROR - data not found\n";
constexpr char index_not_found[] = "KOB ERROR - index not found\n";
constexpr char wrong_key[] = "KOB ERROR - wrong block key %d, %d expected\n";
constexpr char wrong_key_lower_case[] = "KOB error - wrong block key %d, %d expected\n";
constexpr char wrong_key_swapped[] = "KOB ERROR wrong - block key %d, %d expected\n";
constexpr char wrong_key_of_two[] = "KOB ERROR - wrong block key %d, %d or %d expected\n";
constexpr char null_argument[] = "KOB ERROR - a required argument is null\n";
constexpr char out_of_memory[] = "KOB ERROR - out of memory\n";
constexpr char unexpected[] = "KOB ERROR - %s\n";

// opening and closing
constexpr char open_unknown_option[] = "\nKOB ERROR - kob_open - unknown option %d\n";
constexpr char open_version_check[] = "\nKOB ERROR - kob_open - hdf version check failed\n";
constexpr char open_no_version[] = "\nKOB ERROR - kob_open - unable to get hdf lib version\n";
constexpr char open_invalid_filename[] = "\nKOB ERROR - kob_open - Invalid filename\n";
constexpr char open_invalid_group[] = "KOB ERROR - kob_open - Invalid group name\n";
constexpr char open_invalid_domain[] = "KOB ERROR - kob_open - Invalid domain name\n";
constexpr char open_cannot_create_file[] = "KOB ERROR - kob_open - Cannot create file \"%s\".\n";
constexpr char open_cannot_create_group[] = "KOB ERROR - kob_open - Cannot create group \"%s\".\n";
constexpr char open_cannot_create_domain[] = "KOB ERROR - kob_open - Cannot create domain group \"%s\".\n";
constexpr char open_cannot_create_link[] = "KOB ERROR - kob_open - Cannot create post link.\n";
constexpr char open_unable[] = "KOB ERROR - kob_open - \"%s\": Unable to open kob-hdf5 file.\n";
constexpr char open_cannot_open_group[] = " KOB ERROR - kob_open - file %s - Cannot open group \"%s\".\n";
constexpr char open_info_version[] = "\nKOB INFO - hdf5-lib version: %u.%u.%u\n";
constexpr char open_info_opening[] = "\nKOB INFO - opening kob-hdf5 file\n";
constexpr char open_info_file_created[] = "KOB INFO - file \"%s\" created.\n";
constexpr char open_info_group_created[] = "KOB INFO - group \"%s\" created.\n";
constexpr char open_info_domain_created[] = "KOB INFO - Domain group \"%s\" created.\n";
constexpr char open_info_trying_to_open[] = "KOB INFO - kob_open - file \"%s\" cannot be created, trying to open it.\n";
constexpr char open_info_opened_name[] = "Opened \"%s\"\n";
constexpr char open_info_file_opened[] = "KOB INFO - file \"%s\" opened.\n";
constexpr char open_info_opening_group[] = "KOB INFO - opening group \"%s\"\n";
constexpr char open_info_bounds[] =
    "\nKOB INFO - HDF5 LIBVER bounds (earliest=%d, 18=%d, LATEST=%d) lower=%d, upper=%d\n";
constexpr char open_info_driver[] =
    "\nKOB INFO - HDF5 file driver (< 0 => n/a): %lld\n (%lld=CORE, %d=DIRECT, %lld=FAMILY, %lld=LOG, %d=MPIO, "
    "%lld=MULTI, %lld=SEC2, %lld=STDIO, %lld=WINDOWS)\n\n";
constexpr char version_check[] = "\nKOB ERROR - kob_get_version - hdf version check failed\n";
constexpr char version_no_version[] = "\nKOB ERROR - kob_get_version - unable to get hdf lib version\n";
constexpr char version_info_kob[] = "           KOB      version: %u.%u.%u\n";
constexpr char version_info_build[] = "           KOB      BuildID: %s\n";
constexpr char group_empty_name[] = "KOB ERROR - kob_h5gopen - invalid name, string must \\0 terminated\n";
constexpr char group_invalid_length[] =
    "KOB ERROR - kob_h5gopen - invalid len=%d must >0 or -1 for \\0 terminated strings\n";
constexpr char group_code[] = "KOB ERROR - kob_h5gopen - code %d, group %s\n";
constexpr char group_code_quoted[] = "KOB ERROR - kob_h5gopen - code %d, group \"%s\"\n";
constexpr char group_invalid_ioflag[] = "KOB ERROR - kob_h5gopen - invalid ioflag %d\n";

// file header
constexpr char header_writing_code[] = "KOB ERROR writing header: %d\n";
constexpr char header_writing[] = "KOB ERROR writing header\n";
constexpr char header_reading[] = "KOB ERROR reading header\n";
constexpr char header_signature[] = "KOB WARNING - wrong file signature or format\n";

// directory and search
constexpr char listing_head[] = "\n KOB INFO %s: %d blocks found - total path len: %zu\n\n";
constexpr char listing_columns[] = "      block:   blockkey path\n";
constexpr char listing_row[] = " %10d: %10d \"%s\"\n";

// tools
constexpr char tool_border[] = "     +------------------------------------------------------+\n";
constexpr char tool_title[] = "     |  %-52s|\n";
constexpr char tool_compiled[] = "      Compiled    : %s %s\n";
constexpr char tool_version[] = "      KOB Version : %d.%d.%d\n";
constexpr char tool_short_version[] = "      Version: %d.%d.%d\n";
constexpr char tool_memory[] = "\n     *** ERROR *** MEMORY ALLOCATION IN %s LINE %d\n";
constexpr char tool_set_number[] = "warning - blockkey %d: could not identify set no in \"%s\" - assume 0.\n";
constexpr char tool_state_number[] = "warning - blockkey %d: could not identify StateID  in \"%s\" - assume 0.\n";
constexpr char tool_rule[] = " ----------------------------------------------------------------\n";
constexpr char tool_blocktypes[] = "\n Number of blocktypes NBlockTypes: %d\n";
constexpr char tool_block_key[] = " BlockKey   : %5d\n";
constexpr char tool_block[] = " %10d : %10d (key %5d) \"%s\"\n";
constexpr char tool_block_path[] = " Block Path: \"%s\"\n";
constexpr char tool_reading[] = "\nKOB ERROR reading \"%s\" block pass %d - error code = %d \n";
constexpr char tool_writing[] = "\nKOB ERROR writing \"%s\" block - error code = %d\n";
constexpr char tool_incompatible[] = "\nKOB ERROR - incompatible file - error code = %d\n";

// state eraser
constexpr char erase_index[] = "KOB INFO - erase all data after index:";
constexpr char erase_no_blocks[] = "\nKOB ERROR - no KOB blocks found - error code = %d\n";
constexpr char erase_blocks_found[] = " Info    : %d KOB blocks found\n";
constexpr char erase_no_header[] = "\nKOB ERROR header not found\n";
constexpr char erase_multiple_headers[] = "KOB WARNING multiple \"%s\"s!\n";
constexpr char erase_wrong_version[] = "KOB ERROR - incompatible file - KOB version: %d.%d.%d\n";
constexpr char erase_version_ok[] = "KOB INFO - compatibility check OK - KOB version: %d.%d.%d\n";
constexpr char erase_block_missing[] = "\nKOB WARNING \"%s\" block not found\n";
constexpr char erase_multiple_blocks[] = "\nKOB WARNING multiple \"%s\" blocks\n";
constexpr char erase_failed[] = " erase of block \"%s\" failed\n";
constexpr char erase_deleted[] = " erase of block \"%s\"\n";
constexpr char erase_single_state[] = "KOB INFO - %d singlestate blocks deleted\n";
constexpr char erase_unknown_size[] = "\nKOB ERROR reading \"%s\" block - unknown datasize - error code = %d\n";
constexpr char erase_rewritten[] = "\nKOB INFO - %d \"%s\" blocks rewritten\n";
constexpr char erase_linked_kept[] = "KOB WARNING - kob_erase_states - %d blocks in linked files are kept\n";
constexpr char erase_done[] = "\nKOB state eraser successfully passed.\n\n";

// merger
constexpr char merge_no_blocks[] = " WARNING file [%d]:  NO        KOB blocks found\n";
constexpr char merge_blocks_found[] = " Info    : file  [%10d]: %10d KOB blocks found\n";
constexpr char merge_no_header[] = "\nKOB WARNING file [%d]: \"%s\" not found\n";
constexpr char merge_multiple_headers[] = "KOB WARNING file [%d] contains multiple \"%s\"s!\n";
constexpr char merge_check_file[] = " KOB check file %8d / %d: ";
constexpr char merge_version_not_ok[] = "NOT OK  - version file: %d.%d.%d - program: %d.%d.%d\n";
constexpr char merge_version_ok[] = "OK      - version file: %d.%d.%d - program: %d.%d.%d\n";
constexpr char merge_version_warning[] = "WARNING - version file: %d.%d.%d - program: %d.%d.%d\n";
constexpr char merge_maybe_incompatible[] = "\nKOB WARNING - files maybe incompatible\n";
constexpr char merge_start[] = "\n Start file merge\n\n";
constexpr char merge_nindex[] = "\nKOB ERROR - nindex too large = %d. Increase %s: %d\n";
constexpr char merge_block_missing[] = "\nKOB WARNING file [%d]: \"%s\" block not found\n";
constexpr char merge_multiple_blocks[] = "\nKOB WARNING file [%d]: multiple \"%s\" blocks\n";
constexpr char merge_kind_missing[] = "\nKOB WARNING file [%d]: no \"%s\" blocks found\n";
constexpr char merge_kind_found[] = "\n %d \"%s\" block(s) found\n";
constexpr char merge_copy_block[] = " target file: copy \"%s\" block from file  [%d]\n";
constexpr char merge_copy_blocks[] = " target file: copy \"%s\" blocks from file  [%d]\n";
constexpr char merge_create_merged[] = " target file: create %d merged \"%s\" block(s)\n";
constexpr char merge_create[] = " target file: create %d \"%s\" block(s)\n";
constexpr char merge_scale_offset[] = " >-< float scaleoffset %-20s: flag exp aggr: %6d ";
constexpr char merge_scale_offset_params[] = " %6d %6d: ";
constexpr char merge_scale_offset_names[] = "\"%s\" \"%s\" \"%s\" \"%s\"\n";
constexpr char merge_size_limit[] =
    " KOB INFO - \"%s\" data size limit of %d Byte exceeded -> i/o + merge in blocks of "
    "%d states - block: \"%s\"\n";
constexpr char merge_differs[] =
    "KOB ERROR - kob_merge_dmp - block \"%s\": %s differs: %d in file [%d], %d in file [%d]\n";
constexpr char merge_left_out[] =
    "KOB WARNING - kob_merge_dmp - block \"%s\" of file [%d] differs from the target's and is left out\n";
constexpr char merge_coordinates[] = "KOB WARNING - kob_merge_dmp - %d shared nodes have different coordinates\n";
constexpr char merge_missing_values[] =
    "KOB WARNING - kob_merge_dmp - block \"%s\": %d values that no domain file holds are NaN\n";
constexpr char merge_not_merged[] = "KOB INFO - kob_merge_dmp - %d \"%s\" block(s) of file [%d] are not merged\n";
constexpr char merge_done[] = "\n KOB DMP domain file merge successfully completed.\n\n";

// external links
constexpr char link_in_group[] = "create link \"%s/%s\" --> file/group:  \"%s%s\"\n";
constexpr char link_made[] = "create link \"%s\" --> file/group:  \"%s\"\"%s\"\n";
constexpr char link_failed[] = "\nKOB ERROR - could not create external link \"%s\"\n";
constexpr char link_done[] = "\n KOB external links successfully created.\n\n";

// parameter file
constexpr char param_no_file[] = "Fatal error: Cannot open or find file \"%s\".\n";
constexpr char param_table[] = "\n Table: Exponents per variable for scaleoffset compression filters\n";
constexpr char param_count[] = "\n   Number of variables found in parameter file: %d\n\n";
constexpr char param_border[] = "   +----------+-------------------------------------------------\n";
constexpr char param_title[] = "   | exponent | variable\n";
constexpr char param_row[] = "   %10d | \"%s\"\n";

// storage helpers
constexpr char attribute_write[] =
    "KOB INTERNAL ERROR (%d) in KOB_H5Awrite - name, kob_type, data_size, kob_size, error: %s %d %zu %zu %d\n";
constexpr char dataset_write[] =
    "KOB INTERNAL ERROR (%d) in KOB_H5Dwrite - name, kob_type, data_size, kob_size, mode, error: %s %d %zu %zu %d %d\n";
constexpr char attribute_read[] =
    "KOB INTERNAL ERROR (%d) in KOB_H5Aread - name, kob_type, data_size, error: %s %d %zu %d\n";
constexpr char dataset_read[] =
    "KOB INTERNAL ERROR (%d) in KOB_H5Dread - name, kob_type, data_size, error: %s %d %zu %d\n";
constexpr char type_lookup[] = "KOB INTERNAL ERROR (%d) in KOB_H5gettype - kob_type, data_size: %d %zu\n";
constexpr char fill_lookup[] = "KOB INTERNAL ERROR (%d) in KOB_H5getfillvalue - kob_type, data_size: %d %zu\n";

} // namespace message
} // namespace kob
