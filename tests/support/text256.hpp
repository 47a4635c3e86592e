// SPDX-License-Identifier: BSD-3-Clause
// The fixed 256-character, blank padded text fields that the block entry points take.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace kob_test {

/// A fixed-width field without its trailing blanks.
inline std::string trimmed(std::string_view field)
{
    const auto end = field.find_last_not_of(' ');
    return std::string{field.substr(0, end == std::string_view::npos ? 0 : end + 1)};
}

/// One field of N characters, blank padded and without a terminating NUL.
template <std::size_t N> class TextField {
public:
    TextField(std::string_view text = "") // NOLINT: a literal reads best where a field is wanted
    {
        field_.fill(' ');
        text.copy(field_.data(), N);
    }
    TextField(const char* text) : TextField{std::string_view{text}} {}        // NOLINT
    TextField(const std::string& text) : TextField{std::string_view{text}} {} // NOLINT

    char* data() { return field_.data(); }
    const char* data() const { return field_.data(); }
    /// All N characters.
    std::string_view field() const { return {field_.data(), N}; }
    std::string text() const { return trimmed(field()); }

    friend bool operator==(const TextField& a, const TextField& b) { return a.field_ == b.field_; }
    friend std::ostream& operator<<(std::ostream& out, const TextField& t) { return out << '"' << t.text() << '"'; }

private:
    std::array<char, N> field_;
};

using Text256 = TextField<256>;
using Text8 = TextField<8>; ///< dates and times of the system block

/// A field that no reader fills with by chance: "left untouched" is then a comparison with `untouched()`.
inline Text256 untouched() { return std::string(256, '#'); }

/// An array of 256-character fields, end to end.
class Texts256 {
public:
    Texts256() = default;
    explicit Texts256(std::size_t count) : texts_(count, untouched()) {}
    Texts256(std::initializer_list<std::string_view> texts)
    {
        for (const auto text : texts) texts_.emplace_back(text);
    }

    char* data() { return texts_.empty() ? nullptr : texts_.front().data(); }
    std::size_t size() const { return texts_.size(); }
    void set(std::size_t i, std::string_view text) { texts_.at(i) = text; }
    std::string operator[](std::size_t i) const { return texts_.at(i).text(); }
    /// The trimmed texts, for a comparison with a list.
    std::vector<std::string> texts() const
    {
        std::vector<std::string> all;
        for (const auto& t : texts_) all.push_back(t.text());
        return all;
    }

    friend bool operator==(const Texts256& a, const Texts256& b) { return a.texts_ == b.texts_; }
    friend std::ostream& operator<<(std::ostream& out, const Texts256& t)
    {
        for (const auto& text : t.texts_) out << text << ' ';
        return out;
    }

private:
    std::vector<Text256> texts_; // an array of 256 characters each, so the texts lie end to end
};
static_assert(sizeof(Text256) == 256);

} // namespace kob_test
