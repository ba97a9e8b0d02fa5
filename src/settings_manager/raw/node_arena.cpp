#include <settings_manager/node_arena.h>

#include <diagnostics/log.h>

#include <algorithm>
#include <cstring>

namespace hos::ipc::arena {
namespace {

using settings_manager::impl::RawItem;

std::size_t Position(const nk_arena& arena) {
    return nk_arena_used(&arena);
}

std::size_t AlignUp4(std::size_t offset) {
    return (offset + 3) & ~std::size_t{3};
}

// A reference's bounds against the used bytes; offset and size are compared without overflow.
bool InsideUsed(const nk_arena& arena, const nk_ptr_t& ref) {
    const std::size_t used = nk_arena_used(&arena);
    return ref.offset < used && ref.size <= used - ref.offset;
}

std::span<const unsigned char> AsBytes(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

}  // namespace

namespace conv {

nk_ptr_t Put(nk_arena& arena, std::span<const unsigned char> bytes, std::uint32_t max, Status& status) {
    const std::size_t position = Position(arena);
    const std::size_t capacity = nk_arena_capacity(&arena);
    const std::size_t limit = std::min<std::size_t>(position + max, capacity);
    const std::size_t space = std::max<std::size_t>(bytes.size(), 1);
    if (arena.start == nullptr || position > capacity || position + space > limit) {
        status.Fail();
        return kInvalidPtr;
    }
    if (!bytes.empty()) {
        std::memcpy(arena.start + position, bytes.data(), bytes.size());
    }
    arena.cursor = arena.start + position + space;
    return nk_ptr_t{static_cast<std::uint32_t>(position), static_cast<std::uint32_t>(bytes.size())};
}

std::span<const unsigned char> Get(const nk_arena& arena, const nk_ptr_t& ref, Status& status) {
    if (!InsideUsed(arena, ref)) {
        status.Fail();
        return {};
    }
    return {arena.start + ref.offset, ref.size};
}

hl_settings_manager_Types_NkNode ToNk(nk_arena& arena, const RawItem& item, Status& status) {
    const bool okOnEntry = status.Ok();
    hl_settings_manager_Types_NkNode node{};
    node.path = Put(arena, AsBytes(item.path), kMaxPathBytes, status);
    node.value = Put(arena, item.value, kMaxValueBytes, status);
    node.attrib = Put(arena, item.attrib, kMaxAttribBytes, status);
    if (okOnEntry && !status.Ok()) {
        HL_LOG(hos::logger::LogLevel::Warning,
               "[SM_P] ToNk(SMNode) fail: '{}': path/value/attrib size = {}/{}/{}, max = {}/{}/{}", item.path,
               item.path.size(), item.value.size(), item.attrib.size(), kMaxPathBytes, kMaxValueBytes,
               kMaxAttribBytes);
    }
    return node;
}

RawItem FromNk(const nk_arena& arena, const hl_settings_manager_Types_NkNode& node, Status& status) {
    RawItem item;
    const auto path = Get(arena, node.path, status);
    item.path.assign(reinterpret_cast<const char*>(path.data()), path.size());
    const auto value = Get(arena, node.value, status);
    item.value.assign(value.begin(), value.end());
    const auto attrib = Get(arena, node.attrib, status);
    item.attrib.assign(attrib.begin(), attrib.end());
    return item;
}

}  // namespace conv

namespace impl {

nk_ptr_t Write(nk_arena& arena, RawItems::const_iterator& first, RawItems::const_iterator last) {
    std::vector<hl_settings_manager_Types_NkNode> records;
    const std::size_t capacity = nk_arena_capacity(&arena);
    while (first != last) {
        const std::size_t before = Position(arena);
        conv::Status status;
        records.push_back(conv::ToNk(arena, *first, status));
        const std::size_t recordsAt = AlignUp4(Position(arena));
        if (!status || recordsAt > capacity || records.size() * kNodeRecordBytes > capacity - recordsAt) {
            records.pop_back();
            arena.cursor = arena.start + before;
            break;
        }
        ++first;
    }
    const std::size_t at = AlignUp4(Position(arena));
    if (records.empty()) {
        if (first != last || arena.start == nullptr || at > capacity || kNodeRecordBytes > capacity - at) {
            return kInvalidPtr;
        }
        arena.cursor = arena.start + at + kNodeRecordBytes;
        return nk_ptr_t{static_cast<std::uint32_t>(at), 0};
    }
    const std::size_t bytes = records.size() * kNodeRecordBytes;
    std::memcpy(arena.start + at, records.data(), bytes);
    arena.cursor = arena.start + at + bytes;
    return nk_ptr_t{static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(bytes)};
}

bool Read(const nk_arena& arena, const nk_ptr_t& list, RawItems& items) {
    if (!InsideUsed(arena, list) || list.offset % 4 != 0 || list.size % kNodeRecordBytes != 0) {
        return false;
    }
    const std::size_t count = list.size / kNodeRecordBytes;
    RawItems local;
    local.reserve(count);
    conv::Status status;
    for (std::size_t i = 0; i < count; ++i) {
        hl_settings_manager_Types_NkNode node;
        std::memcpy(&node, arena.start + list.offset + i * kNodeRecordBytes, sizeof node);
        local.push_back(conv::FromNk(arena, node, status));
    }
    if (!status) {
        return false;
    }
    if (items.empty()) {
        items.swap(local);
    } else {
        items.insert(items.end(), std::make_move_iterator(local.begin()),
                     std::make_move_iterator(local.end()));
    }
    return true;
}

}  // namespace impl

}  // namespace hos::ipc::arena
