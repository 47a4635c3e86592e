// SPDX-License-Identifier: BSD-3-Clause
// Calls the entry point of one generation of the layout or its twin, whose arguments differ in a few places.
#pragma once

#include <cstdint>
#include <tuple>
#include <type_traits>

namespace kob::program {

enum class Layout { current, older };

/// Marks of arguments that only one generation has, and the place of the status.
template <class T> struct CurrentOnly {
    T current_only;
};
template <class T> CurrentOnly(T) -> CurrentOnly<T>;
template <class T> struct OlderOnly {
    T older_only;
};
template <class T> OlderOnly(T) -> OlderOnly<T>;
struct StatusArgument {};

namespace detail {

template <bool taken, class T> auto only(T value)
{
    if constexpr (taken)
        return std::make_tuple(value);
    else
        return std::make_tuple();
}

template <Layout layout, class T> auto argument(T value, std::int32_t& status)
{
    if constexpr (std::is_same_v<T, StatusArgument>)
        return std::make_tuple(&status);
    else if constexpr (requires { value.current_only; })
        return only<layout == Layout::current>(value.current_only);
    else if constexpr (requires { value.older_only; })
        return only<layout == Layout::older>(value.older_only);
    else
        return std::make_tuple(value);
}

} // namespace detail

/// Both entry points take these arguments, but for the marked ones.
template <class Current, class Older, class... Args>
void call_of(Layout layout, std::int32_t& status, Current* current, Older* older, Args... args)
{
    if (layout == Layout::older)
        std::apply(older, std::tuple_cat(detail::argument<Layout::older>(args, status)...));
    else
        std::apply(current, std::tuple_cat(detail::argument<Layout::current>(args, status)...));
}

} // namespace kob::program
