// SPDX-License-Identifier: BSD-3-Clause
// A character buffer that ends where readable memory ends, so that reading one byte too many ends the test.
#pragma once

#include <cstring>
#include <stdexcept>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

namespace kob_test {

class GuardedText {
public:
    explicit GuardedText(std::string_view text) : page_{static_cast<std::size_t>(sysconf(_SC_PAGESIZE))}
    {
        readable_ = (text.size() / page_ + 1) * page_;
        auto* memory = mmap(nullptr, readable_ + page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::runtime_error{"no memory for a guarded text"};
        memory_ = static_cast<char*>(memory);
        mprotect(memory_ + readable_, page_, PROT_NONE);
        text_ = memory_ + readable_ - text.size();
        std::memcpy(text_, text.data(), text.size());
    }
    ~GuardedText() { munmap(memory_, readable_ + page_); }
    GuardedText(const GuardedText&) = delete;
    GuardedText& operator=(const GuardedText&) = delete;

    const char* data() const { return text_; }

private:
    std::size_t page_;
    std::size_t readable_ = 0;
    char* memory_ = nullptr;
    char* text_ = nullptr;
};

} // namespace kob_test
