// SPDX-License-Identifier: BSD-3-Clause
// Units of values: products of powers of base and derived units.
#pragma once

#include "kob_block.hpp"

namespace kob {

/// The units of a list of values, the factors of value i behind those of the values before it.
template <class Io> struct Units {
    Arg<Io, std::int32_t> mbunit; ///< [count] base-unit factors of each value
    Arg<Io, std::int32_t> mdunit; ///< [count] derived-unit factors of each value
    Arg<Io, std::int32_t> ubid;   ///< [sum of mbunit]
    Arg<Io, double> ubexp;        ///< [sum of mbunit]
    Arg<Io, std::int32_t> udid;   ///< [sum of mdunit]
    Arg<Io, double> udexp;        ///< [sum of mdunit]
};

template <class Io> void counts(Io& io, const Units<Io>& units, std::int32_t count)
{
    io.integers("mbunit", units.mbunit, {count});
    io.integers("mdunit", units.mdunit, {count});
}

template <class Io> void factors(Io& io, const Units<Io>& units, std::int32_t base, std::int32_t derived)
{
    io.integers("ubid", units.ubid, {base});
    io.exact_reals("ubexp", units.ubexp.get(), {base});
    io.integers("udid", units.udid, {derived});
    io.exact_reals("udexp", units.udexp.get(), {derived});
}

/// Counts and factors, where no attribute holds the number of factors.
template <class Io> void values(Io& io, const Units<Io>& units, std::int32_t count)
{
    counts(io, units, count);
    if (io.ok()) {
        factors(io, units, sum32(units.mbunit.get(), count), sum32(units.mdunit.get(), count));
    }
}

} // namespace kob
