// SPDX-License-Identifier: BSD-3-Clause
// The table of work.
#include "rows.hpp"

namespace bench {
namespace {

const std::vector<std::string> five_variables{"DISPLACEMENT", "STRESS", "STRAIN", "TEMPERATURE", "REACTION"};

constexpr double usual_hold = 1.10;
constexpr double noise_bytes = 1 << 20; // what the heap and HDF5's free lists leave unexplained

ResultSet small_blocks(Size size)
{
    return size == Size::real ? ResultSet{2000, five_variables, 200, 3, 8} : ResultSet{3, five_variables, 9, 3, 8};
}

// Tiny, but too large to be stored in the object header, as the real ones are.
ResultSet large_blocks(Size size, std::int32_t value_size)
{
    return size == Size::real ? ResultSet{10, {"DISPLACEMENT"}, 1'000'000, 3, value_size}
                              : ResultSet{2, {"DISPLACEMENT"}, 7000, 3, value_size};
}

} // namespace

Program::Task Row::task_of(const Program& program) const
{
    switch (kind) {
    case Kind::write:
        return program.write;
    case Kind::read:
        return program.read;
    default:
        return program.list;
    }
}

std::vector<Row> rows(Size size)
{
    using enum Row::Kind;
    const ResultSet small = small_blocks(size);
    const ResultSet large8 = large_blocks(size, 8);
    const ResultSet large4 = large_blocks(size, 4);
    return {
        {"write 10,000 blocks of 200 x 3", write, small, usual_hold, noise_bytes},
        {"read 10,000 blocks of 200 x 3", read, small, usual_hold, noise_bytes},
        {"list 10,000 blocks", list, small, usual_hold, noise_bytes},
        {"write 10 x 1,000,000 x 3, 8 bytes", write, large8, usual_hold, noise_bytes},
        {"read 10 x 1,000,000 x 3, 8 bytes", read, large8, usual_hold, noise_bytes},
        {"write 10 x 1,000,000 x 3, 4 bytes", write, large4, usual_hold, noise_bytes},
        {"read 10 x 1,000,000 x 3, 4 bytes", read, large4, usual_hold, noise_bytes},
    };
}

} // namespace bench
