// SPDX-License-Identifier: BSD-3-Clause
// One argument list for the entry points of both generations.
#pragma once

#include "kob_module.hpp"

#include <tuple>

namespace kob::merge {

/// Arguments that the older generation does not have.
template <class... Values> struct CurrentOnly {
    std::tuple<Values...> values;
};
template <class... Values> CurrentOnly<Values...> current_only(Values... values) { return {{values...}}; }

/// Arguments that only the older generation has.
template <class... Values> struct OlderOnly {
    std::tuple<Values...> values;
};
template <class... Values> OlderOnly<Values...> older_only(Values... values) { return {{values...}}; }

/// What a generation takes of an argument.
template <Generation generation, class Value> std::tuple<Value> taken(Value value) { return {value}; }

template <Generation generation, class... Values> auto taken(CurrentOnly<Values...> argument)
{
    if constexpr (generation == Generation::current) {
        return argument.values;
    } else {
        return std::tuple<>{};
    }
}

template <Generation generation, class... Values> auto taken(OlderOnly<Values...> argument)
{
    if constexpr (generation == Generation::older) {
        return argument.values;
    } else {
        return std::tuple<>{};
    }
}

/// Calls the entry point of a generation.
template <class Current, class Older, class... Arguments>
void call(Generation generation, Current current, Older older, Arguments... arguments)
{
    if (generation == Generation::current) {
        std::apply(current, std::tuple_cat(taken<Generation::current>(arguments)...));
    } else {
        std::apply(older, std::tuple_cat(taken<Generation::older>(arguments)...));
    }
}

} // namespace kob::merge
