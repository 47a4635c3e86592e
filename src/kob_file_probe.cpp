// SPDX-License-Identifier: BSD-3-Clause
// The probe on POSIX systems, where a UTF-8 name is a file name as it stands.
#include "kob_file_probe.hpp"

#include <cerrno>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kob {
namespace {

class Descriptor {
public:
    Descriptor(const std::string& name, int flags) noexcept
        : number_{::open(name.c_str(), flags | O_CLOEXEC | O_NONBLOCK)}
    {
    }
    ~Descriptor()
    {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return number_; }

private:
    int number_;
};

// HDF5 reads the same variable: "FALSE" or "0" switch locking off.
bool locking_is_off() noexcept
{
    const char* setting = std::getenv("HDF5_USE_FILE_LOCKING"); // NOLINT(concurrency-mt-unsafe)
    if (setting == nullptr) {
        return false;
    }
    const std::string_view text{setting};
    return text == "FALSE" || text == "0";
}

} // namespace

bool file_exists(const std::string& name) noexcept { return Descriptor{name, O_RDONLY}.get() >= 0; }

bool file_is_held(const std::string& name) noexcept
{
    if (locking_is_off()) {
        return false;
    }
    const Descriptor file{name, O_RDWR};
    struct stat properties {};
    if (file.get() < 0 || ::fstat(file.get(), &properties) != 0 || !S_ISREG(properties.st_mode)) {
        return false; // nothing there that a create could empty; HDF5 reports what is wrong with it
    }
    // HDF5 holds its files with flock; the lock taken here ends with the descriptor, before HDF5 opens the file.
    return ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

} // namespace kob
