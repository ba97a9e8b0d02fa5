#include <settings_manager/raw_item.h>

#include <diagnostics/result_code.h>
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/raw.h>
#include <uvc/error.h>
#include <uvc/path_text.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <type_traits>

namespace settings_manager::impl {
namespace {

using namespace hca::result_code;

// A list can't have more elements than numeric ids exist under the settings id rules, so a larger
// aux from a peer reserves no more than that.
constexpr std::uint64_t kMaxListReservation = 0x10000;

void AppendWord(std::vector<unsigned char>& bytes, std::uint64_t word) {
    unsigned char raw[sizeof word];
    std::memcpy(raw, &word, sizeof word);
    bytes.insert(bytes.end(), raw, raw + sizeof raw);
}

template <typename V>
std::uint64_t AuxOf(const V& value) {
    return Raw::Data(std::span(reinterpret_cast<const unsigned char*>(&value), sizeof value));
}

template <typename V>
V FromAux(std::uint64_t aux) {
    if constexpr (std::is_same_v<V, hos::rtl::Timestamp>) {
        return V{aux};
    } else {
        V value;
        std::memcpy(&value, &aux, sizeof value);
        return value;
    }
}

std::uint64_t FixedAux(const Setting& setting) {
    switch (setting.index()) {
        case uvc::IndexBool:
            return std::get<uvc::IndexBool>(setting) ? 1 : 0;
        case uvc::IndexI8:
            return AuxOf(std::get<uvc::IndexI8>(setting));
        case uvc::IndexI16:
            return AuxOf(std::get<uvc::IndexI16>(setting));
        case uvc::IndexI32:
            return AuxOf(std::get<uvc::IndexI32>(setting));
        case uvc::IndexI64:
            return AuxOf(std::get<uvc::IndexI64>(setting));
        case uvc::IndexDouble:
            return AuxOf(std::get<uvc::IndexDouble>(setting));
        case uvc::IndexTimestamp:
            return AuxOf(std::get<uvc::IndexTimestamp>(setting));
        case uvc::IndexU8:
            return AuxOf(std::get<uvc::IndexU8>(setting));
        case uvc::IndexU16:
            return AuxOf(std::get<uvc::IndexU16>(setting));
        case uvc::IndexU32:
            return AuxOf(std::get<uvc::IndexU32>(setting));
        case uvc::IndexU64:
            return AuxOf(std::get<uvc::IndexU64>(setting));
        default:
            return 0;
    }
}

}  // namespace

std::vector<unsigned char> RawAttrib::SerializeAttrib(const Attributes& attributes) {
    std::vector<unsigned char> bytes;
    bytes.reserve(kSize);
    AppendWord(bytes, kVersion);
    AppendWord(bytes, attributes.flag ? 1 : 0);
    return bytes;
}

void RawAttrib::DeserializeAttrib(Attributes& attributes) const {
    Raw::Check(attrib, kSize);
    const std::uint64_t version = Raw::Word(attrib, 0);
    if (version != kVersion) {
        throw uvc::Error(kInvalidVersion, fmt::format("[RawSetting] Invalid attrib version: {:#x}", version));
    }
    attributes.flag = (attrib[8] & 1) != 0;
}

RawItem::RawItem(const uvc::Path& itemPath, const Setting& setting) {
    attrib = SerializeAttrib(setting.attributes);
    value = SerializeValue(setting);
    path = SerializePath(itemPath);
}

std::vector<unsigned char> RawItem::SerializeValue(const Setting& setting) {
    if (setting.valueless_by_exception()) {
        throw uvc::Error(kInvalidState, "[RawSetting] Invalid value state");
    }
    const std::size_t index = setting.index();
    if (index > uvc::IndexU64) {
        throw uvc::Error(kOutOfRange, fmt::format("[RawSetting] Invalid value index: {}", index));
    }
    std::vector<unsigned char> bytes;
    AppendWord(bytes, index);
    switch (index) {
        case uvc::IndexNone:
        case uvc::IndexMap:
            AppendWord(bytes, 0);
            break;
        case uvc::IndexList:
            AppendWord(bytes, std::get<uvc::IndexList>(setting).size());
            break;
        case uvc::IndexString: {
            const std::string& text = std::get<uvc::IndexString>(setting);
            AppendWord(bytes, text.size() + 1);
            bytes.insert(bytes.end(), text.begin(), text.end());
            bytes.push_back(0);
            break;
        }
        case uvc::IndexBytes: {
            const uvc::Bytes& raw = std::get<uvc::IndexBytes>(setting);
            AppendWord(bytes, raw.size());
            bytes.insert(bytes.end(), raw.begin(), raw.end());
            break;
        }
        default:
            AppendWord(bytes, FixedAux(setting));
            break;
    }
    return bytes;
}

std::string RawItem::SerializePath(const uvc::Path& itemPath) {
    auto [text, state] = uvc::ToString(itemPath, meta::GetIdSpecification());
    if (state != uvc::IdStateOk) {
        throw uvc::Error(kInvalidArgument, fmt::format("[RawSetting] Path to str fail: state = {}", state));
    }
    return std::move(text);
}

void RawItem::DeserializeValue(Setting& setting) const {
    Raw::Check(value, kHeaderSize);
    const std::uint64_t index = Raw::Word(value, 0);
    const std::uint64_t aux = Raw::Word(value, 8);
    switch (index) {
        case uvc::IndexNone:
            setting.emplace<uvc::IndexNone>();
            break;
        case uvc::IndexList:
            setting.emplace<uvc::IndexList>().reserve(
                static_cast<std::size_t>(std::min(aux, kMaxListReservation)));
            break;
        case uvc::IndexMap:
            setting.emplace<uvc::IndexMap>();
            break;
        case uvc::IndexBool:
            setting.emplace<uvc::IndexBool>((aux & 1) != 0);
            break;
        case uvc::IndexI8:
            setting.emplace<uvc::IndexI8>(FromAux<std::int8_t>(aux));
            break;
        case uvc::IndexI16:
            setting.emplace<uvc::IndexI16>(FromAux<std::int16_t>(aux));
            break;
        case uvc::IndexI32:
            setting.emplace<uvc::IndexI32>(FromAux<std::int32_t>(aux));
            break;
        case uvc::IndexI64:
            setting.emplace<uvc::IndexI64>(FromAux<std::int64_t>(aux));
            break;
        case uvc::IndexDouble:
            setting.emplace<uvc::IndexDouble>(FromAux<double>(aux));
            break;
        case uvc::IndexTimestamp:
            setting.emplace<uvc::IndexTimestamp>(FromAux<hos::rtl::Timestamp>(aux));
            break;
        case uvc::IndexString: {
            // aux + 16 may wrap: that is part of the format. Reserving before copying turns a length
            // the string type can't hold (aux 0 gives the largest unsigned value) into its length
            // error without forming a pointer past the block.
            Raw::Check(value, aux + kHeaderSize);
            std::string text;
            text.reserve(static_cast<std::size_t>(aux - 1));
            text.assign(reinterpret_cast<const char*>(value.data()) + kHeaderSize,
                        static_cast<std::size_t>(aux - 1));
            setting.emplace<uvc::IndexString>(std::move(text));
            break;
        }
        case uvc::IndexBytes: {
            Raw::Check(value, aux + kHeaderSize);
            uvc::Bytes bytes;
            bytes.reserve(static_cast<std::size_t>(aux));
            bytes.insert(bytes.end(), value.begin() + kHeaderSize,
                         value.begin() + kHeaderSize + static_cast<std::ptrdiff_t>(aux));
            setting.emplace<uvc::IndexBytes>(std::move(bytes));
            break;
        }
        case uvc::IndexU8:
            setting.emplace<uvc::IndexU8>(FromAux<std::uint8_t>(aux));
            break;
        case uvc::IndexU16:
            setting.emplace<uvc::IndexU16>(FromAux<std::uint16_t>(aux));
            break;
        case uvc::IndexU32:
            setting.emplace<uvc::IndexU32>(FromAux<std::uint32_t>(aux));
            break;
        case uvc::IndexU64:
            setting.emplace<uvc::IndexU64>(aux);
            break;
        default:
            throw uvc::Error(kOutOfRange, fmt::format("[RawSetting] Invalid value index: {}", index));
    }
}

void RawItem::DeserializePath(uvc::Path& itemPath) const {
    auto [parsed, state] = uvc::FromString(path, meta::GetIdSpecification());
    if (state != uvc::IdStateOk) {
        throw uvc::Error(kInvalidArgument,
                         fmt::format("[RawSetting] Str to path fail: src = '{}', state = {}", path, state));
    }
    itemPath = std::move(parsed);
}

}  // namespace settings_manager::impl
