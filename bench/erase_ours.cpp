// SPDX-License-Identifier: BSD-3-Clause
// Cutting a file back through the library.
#include "erase.hpp"
#include "ours.hpp"
#include "silence.hpp"

namespace bench {

Work write_run(const EraseSet& set, const std::string& file, Digest*)
{
    return [set, file] {
        Programs<ResultSet>::ours.write(set.results, file, nullptr)();
        const File results{file, read_write};
        std::int32_t status = 0;
        KOB_WRITE_FILEHEADER(results.group(), nullptr, nullptr, &status);
        check(status, "KOB_WRITE_FILEHEADER");
    };
}

Work erase_ours(const EraseSet& set, const std::string& file, Digest*)
{
    return [set, file] {
        const File results{file, read_write};
        const std::int32_t nindex = 1;
        const std::int32_t last = set.kept - 1;
        const std::int32_t quiet = 0;
        std::int32_t status = 0;
        {
            const Silence silence; // of the blocks that this file does without
            KOB_ERASE_STATES(results.group(), &nindex, &last, &quiet, &status);
        }
        check(status, "KOB_ERASE_STATES");
    };
}

} // namespace bench
