// SPDX-License-Identifier: BSD-3-Clause
// Items of a block, compared with what a caller asks for.
#include "kob_plain_block.hpp"

#include "kob_storage.hpp"

#include <algorithm>

namespace kob::plain {
namespace {

constexpr Element element_of(std::int32_t kob_type)
{
    switch (kob_type) {
    case type_code::text:
        return Element::text;
    case type_code::integer:
        return Element::integer;
    default:
        return Element::real;
    }
}

bool fits(const Stored& stored, const Request& request)
{
    if (stored.element != element_of(request.kob_type) || stored.size != request.size) {
        return false;
    }
    if (request.rank <= 0) {
        return request.rank == 0 && stored.bytes == stored.size;
    }
    return stored.rank == static_cast<std::size_t>(request.rank) && request.dims != nullptr &&
           std::equal(request.dims, request.dims + request.rank, stored.extents.begin());
}

} // namespace

std::unique_ptr<Block> Block::of(hid_t group)
{
    if (H5Iget_type(group) != H5I_GROUP) {
        return nullptr;
    }
    std::optional<File> file = File::of(group, File::Pieces::kept);
    const std::optional<Address> address = file ? address_of(group) : std::nullopt;
    if (!address) {
        return nullptr;
    }
    try {
        auto block = std::make_unique<Block>(*file, *address);
        block->own_ = std::move(file);
        block->file_ = &*block->own_;
        return block;
    } catch (const Surprise&) {
        return nullptr;
    }
}

Block::Block(File& file, Address address) : file_{&file}
{
    const Header header{file, address};
    const std::optional<Bytes> table = header.symbol_table();
    expect(table.has_value());
    table_ = *table;
    attributes_.reserve(header.messages().size());
    for (const Message& message : header.messages()) {
        if (message.type == message_type::attribute) {
            attributes_.push_back(attribute_in(message.body));
        }
    }
}

const Attribute* Block::find(std::string_view name) const
{
    const auto found = std::find_if(attributes_.begin(), attributes_.end(),
                                    [&](const Attribute& attribute) { return attribute.name == name; });
    return found == attributes_.end() ? nullptr : &*found;
}

bool Block::read_attribute(const Request& request) const
{
    const Attribute* attribute = find(request.name);
    if (attribute == nullptr || !fits(attribute->stored, request)) {
        return false;
    }
    std::memcpy(request.data, attribute->values.data(), attribute->stored.bytes);
    return true;
}

const std::vector<Link>* Block::links()
{
    if (state_ == Links::unread) {
        try {
            links_ = links_of(*file_, table_);
            state_ = Links::read;
        } catch (const Surprise&) {
            state_ = Links::surprising;
        }
    }
    return state_ == Links::read ? &links_ : nullptr;
}

std::optional<bool> Block::has_link(std::string_view name)
{
    const std::vector<Link>* all = links();
    if (all == nullptr) {
        return {};
    }
    return std::any_of(all->begin(), all->end(), [&](const Link& link) { return link.name == name; });
}

bool Block::read_dataset(const Request& request)
{
    const std::vector<Link>* all = links();
    if (all == nullptr) {
        return false;
    }
    const auto link = std::find_if(all->begin(), all->end(), [&](const Link& l) { return l.name == request.name; });
    if (link == all->end()) {
        return false;
    }
    try {
        const std::optional<Dataset> dataset = dataset_in(Header{*file_, link->object});
        if (!dataset || !fits(dataset->stored, request)) {
            return false;
        }
        if (dataset->address == nowhere) {
            std::memcpy(request.data, dataset->values.data(), dataset->stored.bytes);
        } else {
            file_->read(dataset->address, dataset->stored.bytes, request.data);
        }
        return true;
    } catch (const Surprise&) {
        return false;
    }
}

} // namespace kob::plain
