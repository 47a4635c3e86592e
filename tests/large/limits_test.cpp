// SPDX-License-Identifier: BSD-3-Clause
// Blocks beyond 32 bits that are written as a whole: needs 18 GB of disk and 10 GB of memory.
#include <gtest/gtest.h>

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "support/hdf5_file.hpp"
#include "support/matrix_blocks.hpp"

using namespace kob_test;

namespace {

/// An array of zeros that takes memory only where it is written to.
template <class T> class Zeros {
public:
    explicit Zeros(std::size_t count)
        : bytes_{count * sizeof(T)}, data_{static_cast<T*>(mmap(nullptr, bytes_, PROT_READ | PROT_WRITE,
                                                                MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))}
    {
        if (data_ == MAP_FAILED) throw std::runtime_error{"no address space"};
    }
    ~Zeros() { munmap(data_, bytes_); }
    Zeros(const Zeros&) = delete;
    Zeros& operator=(const Zeros&) = delete;

    T* data() { return data_; }
    T& operator[](std::size_t i) { return data_[i]; }

private:
    std::size_t bytes_;
    T* data_;
};

} // namespace

TEST(Limits, ASparseMatrixOfMoreThanTwoToThe31EntriesAsAWhole)
{
    constexpr std::size_t two_to_31 = std::size_t{1} << 31;
    constexpr std::size_t nnz = two_to_31 + 1000;
    KobFile file;
    SparseMatrix b;
    b.nnz = static_cast<std::int64_t>(nnz);
    b.value_size = 4;
    b.rowptr = {0, 1, static_cast<std::int64_t>(two_to_31), static_cast<std::int64_t>(nnz)};
    std::int32_t status = 77;
    {
        Zeros<std::int32_t> colind{nnz};
        Zeros<double> val{nnz};
        for (const std::size_t i : {std::size_t{0}, two_to_31 - 1, two_to_31, nnz - 1}) {
            colind[i] = static_cast<std::int32_t>(i % 1000 + 1);
            val[i] = static_cast<double>(i % 1000) + 0.5;
        }
        KOB_WRITE_SPARSEMATRIX(file.address(), b.etyp.data(), &b.entid, b.etypvar.data(), &b.nrow, &b.nnz, &b.nindex,
                               &b.indexic, b.indexident.data(), b.indexval.data(), colind.data(), b.rowptr.data(),
                               val.data(), &b.state, &b.filter_flags, b.filter_params.data(), &b.value_size, &b.mode,
                               nullptr, nullptr, &status, text_length, text_length);
        ASSERT_EQ(status, 0);
    }
    file.reopen(read_only);
    const auto block = file.block("singlestate/state000000000012/sparsematrix/SUPERELEMENT/STIFFNESS/id17/kobblock");
    EXPECT_EQ(stored_extents(block, "val"), std::vector<hsize_t>{nnz});

    SparseMatrix got;
    EXPECT_EQ(got.read(block, 1), (Outcome{10200, ""}));
    EXPECT_EQ(got.nnz, static_cast<std::int64_t>(nnz));
    Zeros<std::int32_t> colind{nnz};
    std::int32_t points = 4;
    std::vector<double> values(5, -1);
    const std::vector<std::int64_t> count{5};
    const std::vector<std::int64_t> coordinates{0, static_cast<std::int64_t>(two_to_31) - 1,
                                                static_cast<std::int64_t>(two_to_31),
                                                static_cast<std::int64_t>(nnz) - 1, 77};
    KOB_READ_SPARSEMATRIX(&block, &points, got.etyp.data(), &got.entid, got.etypvar.data(), &got.nrow, &got.nnz,
                          &got.nindex, &got.indexic, got.indexident.data(), got.indexval.data(), colind.data(),
                          got.rowptr.data(), values.data(), &got.filter_flags, got.filter_params.data(), count.data(),
                          coordinates.data(), &status, text_length, text_length);
    ASSERT_EQ(status, 10200);
    EXPECT_EQ(got.rowptr, b.rowptr);
    // 2^31 is 648 modulo 1000
    EXPECT_EQ(values, (std::vector<double>{0.5, 647.5, 648.5, 647.5, 0}));
    EXPECT_EQ(colind[0], 1);
    EXPECT_EQ(colind[two_to_31 - 1], 648);
    EXPECT_EQ(colind[two_to_31], 649);
    EXPECT_EQ(colind[nnz - 1], 648);
    EXPECT_EQ(colind[77], 0);
}
