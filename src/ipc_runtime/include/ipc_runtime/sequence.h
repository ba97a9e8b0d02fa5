#pragma once

#include <platform/nk_message.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace hosipc_detail::stdcpp_v1 {

// Element codec of a sequence: the C++ type and the wire type, stored as they are.
template <typename CppType, typename WireType>
struct Primitive {
    using Cpp = CppType;
    using Wire = WireType;
};

// Codec of a sequence of at most MaxCount elements, carried in the request arena and referenced from
// the message by an nk_ptr_t.
template <typename Element, std::size_t MaxCount>
class Sequence;

template <typename T, std::size_t MaxCount>
class Sequence<Primitive<T, T>, MaxCount> {
public:
    static constexpr std::size_t kMaxCount = MaxCount;
    static constexpr std::size_t kMaxBytes = MaxCount * sizeof(T);
    static constexpr const char* kTooLongText = "?";
    static constexpr const char* kNoSpaceText = "failed to allocate space in the arena";

    // Reserves the sequence's bytes at the arena's cursor, copies the elements there and stores their
    // place in out. Throws std::length_error "?" for more than MaxCount elements and std::runtime_error
    // when the arena can't hold them; in both cases before anything of the arena is written.
    static void PackArgument(const std::vector<T>* value, nk_ptr_t* out, nk_arena* arena) {
        if (value->size() > MaxCount) {
            throw std::length_error(kTooLongText);
        }
        const std::size_t bytes = value->size() * sizeof(T);
        unsigned char* const start = static_cast<unsigned char*>(arena->start);
        unsigned char* const cursor = static_cast<unsigned char*>(arena->cursor);
        unsigned char* const end = static_cast<unsigned char*>(arena->end);
        // Compared as addresses: forming cursor + bytes past the end would itself be undefined.
        const auto startAddress = reinterpret_cast<std::uintptr_t>(start);
        const auto cursorAddress = reinterpret_cast<std::uintptr_t>(cursor);
        const auto endAddress = reinterpret_cast<std::uintptr_t>(end);
        if (cursorAddress < startAddress || cursorAddress > endAddress ||
            endAddress - cursorAddress < bytes) {
            throw std::runtime_error(kNoSpaceText);
        }
        if (bytes != 0) {
            std::memset(cursor, 0, bytes);
            arena->cursor = cursor + bytes;
        }

        const auto offset = static_cast<std::uint32_t>(cursorAddress - startAddress);
        const std::uint64_t last = std::uint64_t{offset} + bytes;
        if (last > UINT32_MAX || start == nullptr || startAddress + last > endAddress) {
            throw std::runtime_error(kNoSpaceText);
        }
        unsigned char* destination = start + offset;
        for (const T& element : *value) {
            std::memcpy(destination, &element, sizeof(T));
            destination += sizeof(T);
        }
        out->offset = offset;
        out->size = static_cast<std::uint32_t>(bytes);
    }

    // Reads the elements that ref names among the arena's received bytes, from its start to its
    // cursor: the bytes behind the cursor are left over from an earlier message (perhaps another
    // client's) and are never read. Throws std::runtime_error when ref lies outside those bytes or
    // names more than MaxCount elements.
    static std::vector<T> UnpackArgument(const nk_ptr_t& ref, const nk_arena* arena) {
        if (ref.size > kMaxBytes || ref.size % sizeof(T) != 0) {
            throw std::runtime_error("sequence in the request is too long");
        }
        std::vector<T> value(ref.size / sizeof(T));
        if (ref.size == 0) {
            return value;
        }
        if (arena == nullptr) {
            throw std::runtime_error("sequence in the request lies outside its arena");
        }
        const auto* start = static_cast<const unsigned char*>(arena->start);
        const auto* received = static_cast<const unsigned char*>(arena->cursor);
        const auto* end = static_cast<const unsigned char*>(arena->end);
        if (start == nullptr || received < start || received > end ||
            std::uint64_t{ref.offset} + ref.size > static_cast<std::uint64_t>(received - start)) {
            throw std::runtime_error("sequence in the request lies outside its arena");
        }
        std::memcpy(value.data(), start + ref.offset, ref.size);
        return value;
    }
};

}  // namespace hosipc_detail::stdcpp_v1
