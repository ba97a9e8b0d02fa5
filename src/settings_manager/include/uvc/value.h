#pragma once
// uvc::TValue<T>, the value variant of a node of a value tree. T is the node type, which holds a
// TValue<T> and whatever else a node carries (settings_manager::Setting adds its attributes).
//
// The sixteen alternatives and their numbers are a wire contract (the raw item form); the order is
// fixed:
//    0 uvc_sm::None             4 int8_t     8 double                12 uint8_t
//    1 std::vector<T> (list)    5 int16_t    9 hos::rtl::Timestamp   13 uint16_t
//    2 map string -> T (map)    6 int32_t   10 std::string           14 uint32_t
//    3 bool                     7 int64_t   11 bytes                 15 uint64_t
// List children are addressed by numeric id, map children by name; a map iterates in key order and
// looks keys up transparently.
//
// uvc::UValue instantiates the same alternatives over the tag aux::impl::UValueTag, with the integers
// of 8, 16 and 32 bits wrapped in uvc_sm::BanInt, so that no implicit integer conversion picks an
// alternative by accident.

#include <platform/hos_rtl/timestamp.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

namespace uvc_sm {

// No value; an empty tag type.
struct None {
    friend bool operator==(const None&, const None&) = default;
};

// An integer that must be constructed from exactly its own type.
template <typename Int>
struct BanInt {
    Int value{};

    BanInt() = default;
    template <typename Same>
    requires std::is_same_v<Same, Int>
    explicit BanInt(Same v) : value(v) {}

    friend bool operator==(const BanInt&, const BanInt&) = default;
};

}  // namespace uvc_sm

namespace uvc {

namespace aux::impl {
struct UValueTag {};
}  // namespace aux::impl

template <typename T>
struct ValueTypes {
    using I8 = std::int8_t;
    using I16 = std::int16_t;
    using I32 = std::int32_t;
    using U8 = std::uint8_t;
    using U16 = std::uint16_t;
    using U32 = std::uint32_t;
};

template <>
struct ValueTypes<aux::impl::UValueTag> {
    using I8 = uvc_sm::BanInt<std::int8_t>;
    using I16 = uvc_sm::BanInt<std::int16_t>;
    using I32 = uvc_sm::BanInt<std::int32_t>;
    using U8 = uvc_sm::BanInt<std::uint8_t>;
    using U16 = uvc_sm::BanInt<std::uint16_t>;
    using U32 = uvc_sm::BanInt<std::uint32_t>;
};

template <typename T>
using TList = std::vector<T>;
template <typename T>
using TMap = std::map<std::string, T, std::less<>>;
using Bytes = std::vector<unsigned char>;

template <typename T>
using TValue = std::variant<uvc_sm::None, TList<T>, TMap<T>, bool, typename ValueTypes<T>::I8,
                            typename ValueTypes<T>::I16, typename ValueTypes<T>::I32, std::int64_t, double,
                            hos::rtl::Timestamp, std::string, Bytes, typename ValueTypes<T>::U8,
                            typename ValueTypes<T>::U16, typename ValueTypes<T>::U32, std::uint64_t>;

// Alternative numbers, as they travel.
enum ValueIndex : std::size_t {
    IndexNone = 0,
    IndexList = 1,
    IndexMap = 2,
    IndexBool = 3,
    IndexI8 = 4,
    IndexI16 = 5,
    IndexI32 = 6,
    IndexI64 = 7,
    IndexDouble = 8,
    IndexTimestamp = 9,
    IndexString = 10,
    IndexBytes = 11,
    IndexU8 = 12,
    IndexU16 = 13,
    IndexU32 = 14,
    IndexU64 = 15,
};

using UValue = TValue<aux::impl::UValueTag>;

}  // namespace uvc
