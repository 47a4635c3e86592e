// SPDX-License-Identifier: BSD-3-Clause
// Objects of a plain file: headers, links of a group, attributes, and datasets that are not in chunks.
#pragma once

#include "kob_plain_file.hpp"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kob::plain {

/// What an object's header consists of.
struct Message {
    unsigned type;
    Bytes body;
};

/// An object's header, in the order in which HDF5 looks through it.
class Header {
public:
    Header(File& file, Address address);

    [[nodiscard]] const std::vector<Message>& messages() const { return messages_; }
    /// Hard links that lead to the object.
    [[nodiscard]] std::uint32_t names() const { return names_; }
    /// A group keeps its links in a symbol table; this is its message, none for what is no such group.
    [[nodiscard]] std::optional<Bytes> symbol_table() const;
    /// Is it a dataset, whatever kind?
    [[nodiscard]] bool is_dataset() const;

private:
    std::vector<Message> messages_;
    std::uint32_t names_ = 0;
};

/// A name in a group, and the object behind it.
struct Link {
    std::string name;
    Address object;
};

/// The links of a group in increasing name order. A group with other than hard links is a surprise.
std::vector<Link> links_of(File& file, Bytes symbol_table);

/// Element types, as far as blocks have them.
enum class Element { integer, real, text };

/// Type and extents of stored values.
struct Stored {
    Element element{};
    std::size_t size = 0; ///< bytes of one element
    std::size_t rank = 0;
    std::array<std::uint64_t, 4> extents{};
    std::size_t bytes = 0; ///< of all elements
};

struct Attribute {
    std::string_view name;
    Stored stored;
    Bytes values;
};

Attribute attribute_in(Bytes message);

/// An attribute of a group; that there is none of that name is a surprise.
Attribute attribute_of(File& file, Address group, std::string_view name);

/// A dataset whose values lie in one piece, in the header or elsewhere.
struct Dataset {
    Stored stored;
    Bytes values;              ///< in the header
    Address address = nowhere; ///< elsewhere
};

/// Nothing for a dataset in chunks, or one that holds no values yet.
std::optional<Dataset> dataset_in(const Header& header);

// Numbers of messages in the published format.
namespace message_type {
constexpr unsigned nothing = 0x0;
constexpr unsigned dataspace = 0x1;
constexpr unsigned datatype = 0x3;
constexpr unsigned fill_value = 0x5;
constexpr unsigned layout = 0x8;
constexpr unsigned attribute = 0xc;
constexpr unsigned continuation = 0x10;
constexpr unsigned symbol_table = 0x11;
constexpr unsigned modification_time = 0x12;
} // namespace message_type

} // namespace kob::plain
