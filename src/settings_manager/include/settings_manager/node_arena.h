#pragma once
// Raw settings items in a message's arena, both ways.
//
// An arena is the platform's nk_arena: bytes from start to end, with cursor the next free byte (the
// position). In a received arena the bytes from start to cursor are the used ones. Offsets count
// from start. Nothing here allocates arena memory: callers own it, zero-filled or not.
//
// Limits of one node when written: path 512 bytes, value 8192, attrib 16; a node then takes at most
// 8744 bytes with its 24-byte record, so eight nodes of maximal size always fit 69952 bytes. Reading
// enforces only that every reference lies inside the used bytes.
//
// Any thread; the functions work on their arguments only.

#include <interfaces/hl/settings_manager/types.h>
#include <settings_manager/arena_status.h>
#include <settings_manager/raw_item.h>

#include <platform/nk_message.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace hos::ipc::arena {

inline constexpr std::uint32_t kMaxPathBytes = 0x200;
inline constexpr std::uint32_t kMaxValueBytes = 0x2000;
inline constexpr std::uint32_t kMaxAttribBytes = 0x10;
inline constexpr std::uint32_t kNodeRecordBytes = sizeof(hl_settings_manager_Types_NkNode);
inline constexpr std::uint32_t kMaxNodeBytes =
    kMaxPathBytes + kMaxValueBytes + kMaxAttribBytes + kNodeRecordBytes;
// The invalid reference: all ones.
inline constexpr nk_ptr_t kInvalidPtr{0xFFFFFFFFu, 0xFFFFFFFFu};

inline bool IsInvalid(const nk_ptr_t& ref) {
    return ref.offset == kInvalidPtr.offset && ref.size == kInvalidPtr.size;
}

namespace conv {

// Copies bytes to the arena's position when position + max(size, 1) stays within position + max and
// within the arena's end, and moves the position by that much: an empty block still takes one byte
// and gets the current offset with size 0. Otherwise returns kInvalidPtr, turns status false and
// leaves the arena alone. Requests put their path text in with max 512.
nk_ptr_t Put(nk_arena& arena, std::span<const unsigned char> bytes, std::uint32_t max, Status& status);

// The used bytes that ref names: its offset lies below the used size and its size fits between
// offset and used size. Otherwise turns status false and returns an empty span.
std::span<const unsigned char> Get(const nk_arena& arena, const nk_ptr_t& ref, Status& status);

// Writes path, value and attrib, in that order, each within its limit. A member that doesn't fit
// gets kInvalidPtr and turns status false; if status was true on entry and is false on return, logs
// "[SM_P] ToNk(SMNode) fail: ..." at Warning (also when the arena is simply full).
hl_settings_manager_Types_NkNode ToNk(nk_arena& arena, const settings_manager::impl::RawItem& item,
                                      Status& status);

// Reads the three members (see Get); a failed bound turns status false.
settings_manager::impl::RawItem FromNk(const nk_arena& arena, const hl_settings_manager_Types_NkNode& node,
                                       Status& status);

}  // namespace conv

namespace impl {

using RawItems = std::vector<settings_manager::impl::RawItem>;

// Writes items from first up to last, then their records at the next multiple of 4, and returns the
// node list's reference. Stops at the first item that doesn't fit, with its record; first is left
// on the first item not written and the arena's position behind what was written. With no item to
// write (first == last) it takes 24 bytes at the aligned position and returns that offset with size
// 0; when not even one item fits it returns kInvalidPtr.
nk_ptr_t Write(nk_arena& arena, RawItems::const_iterator& first, RawItems::const_iterator last);

// Appends the nodes of the list to items and returns true. The list must lie inside the used bytes,
// at an offset that is a multiple of 4, with a size that is a multiple of 24; on any bad reference
// returns false and leaves items as it was.
bool Read(const nk_arena& arena, const nk_ptr_t& list, RawItems& items);

}  // namespace impl

}  // namespace hos::ipc::arena
