#pragma once
// The raw item: the flat form of one node of a settings tree, as it travels to and from the settings
// service. Each item holds three byte strings: the node's attributes, its value, and its full path
// as text. The byte formats are a contract with the service.
//
// Attribute block, always 16 bytes: version (8 bytes, 0x10000), flags (8 bytes: the byte of
// Attributes::flag, zero-extended; a reader takes bit 0 of the byte at offset 8 and nothing else).
//
// Value block: index (8 bytes, the alternative's number of uvc/value.h), aux (8 bytes), payload.
//   none, map: aux 0. list: aux the number of elements (the elements are items of their own).
//   bool, integers, double, timestamp: aux holds the value's bytes, copied into a zeroed word, never
//   sign-extended (int8 -1 gives 0xFF). string: aux length + 1, payload the bytes and one zero byte.
//   bytes: aux length, payload the bytes.
//
// Path: the text form under the settings id rules, with its final delimiter, without a terminating
// zero ("locale/language/").
//
// Value types; the functions that throw, throw uvc::Error (codes and texts in serialize.h).

#include <settings_manager/attributes.h>
#include <settings_manager/setting.h>
#include <uvc/path.h>

#include <cstdint>
#include <string>
#include <vector>

namespace settings_manager::impl {

struct RawAttrib {
    static constexpr std::uint64_t kVersion = 0x10000;
    static constexpr std::size_t kSize = 16;

    static std::vector<unsigned char> SerializeAttrib(const Attributes& attributes);
    // Requires 16 bytes and the version 0x10000.
    void DeserializeAttrib(Attributes& attributes) const;

    friend bool operator==(const RawAttrib&, const RawAttrib&) = default;

    std::vector<unsigned char> attrib;
};

struct RawItem : RawAttrib {
    static constexpr std::size_t kHeaderSize = 16;

    RawItem() = default;
    // One item from one node: attributes, value, then path. The node's children are ignored.
    RawItem(const uvc::Path& path, const Setting& setting);

    static std::vector<unsigned char> SerializeValue(const Setting& setting);
    static std::string SerializePath(const uvc::Path& path);

    // Emplaces the value's alternative in setting; its attributes stay as they are.
    void DeserializeValue(Setting& setting) const;
    // Replaces path on success only.
    void DeserializePath(uvc::Path& path) const;

    friend bool operator==(const RawItem&, const RawItem&) = default;

    std::vector<unsigned char> value;
    std::string path;
};

}  // namespace settings_manager::impl
