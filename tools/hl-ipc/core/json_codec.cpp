#include "core/json_codec.h"

#include <hl_cli/hex.h>

#include <fmt/format.h>

#include <exception>
#include <limits>

namespace hl_ipc {

namespace {

using interfaces::FieldInfo;
using interfaces::FieldKind;
using interfaces::FieldValue;

std::string FieldLabel(const FieldInfo& field, std::size_t index) {
    return field.name.empty() ? fmt::format("field{}", index) : std::string(field.name);
}

// The bytes of a JSON string or {"hex": ...}, or nothing.
std::optional<std::vector<unsigned char>> JsonBytes(const nlohmann::json& value) {
    if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        return std::vector<unsigned char>(text.begin(), text.end());
    }
    if (value.is_object() && value.size() == 1 && value.contains("hex") && value["hex"].is_string()) {
        return hl::cli::ParseHex(value["hex"].get_ref<const std::string&>());
    }
    return std::nullopt;
}

// The field value of a JSON value for field, or nothing with error set.
std::optional<FieldValue> ToFieldValue(const FieldInfo& field, const nlohmann::json& value, std::string& error) {
    const unsigned bits = field.size * 8;
    switch (field.kind) {
        case FieldKind::Signed: {
            const std::int64_t max = bits >= 64 ? std::numeric_limits<std::int64_t>::max()
                                                : (std::int64_t{1} << (bits - 1)) - 1;
            if (value.is_number_integer() && !value.is_number_unsigned() ) {
                const auto number = value.get<std::int64_t>();
                if (number >= -max - 1 && number <= max) {
                    return FieldValue(number);
                }
            } else if (value.is_number_unsigned() && value.get<std::uint64_t>() <= static_cast<std::uint64_t>(max)) {
                return FieldValue(static_cast<std::int64_t>(value.get<std::uint64_t>()));
            }
            error = fmt::format("takes an integer from {} to {}", -max - 1, max);
            return std::nullopt;
        }
        case FieldKind::Unsigned:
        case FieldKind::Handle: {
            const std::uint64_t max = field.kind == FieldKind::Handle ? std::numeric_limits<std::uint32_t>::max()
                                      : bits >= 64                    ? std::numeric_limits<std::uint64_t>::max()
                                                                      : (std::uint64_t{1} << bits) - 1;
            if (value.is_number_unsigned() && value.get<std::uint64_t>() <= max) {
                return FieldValue(value.get<std::uint64_t>());
            }
            if (value.is_number_integer() && !value.is_number_unsigned() && value.get<std::int64_t>() >= 0) {
                return FieldValue(static_cast<std::uint64_t>(value.get<std::int64_t>()));
            }
            error = fmt::format("takes an integer from 0 to {}", max);
            return std::nullopt;
        }
        case FieldKind::Float:
            if (value.is_number()) {
                return FieldValue(value.get<double>());
            }
            error = "takes a number";
            return std::nullopt;
        case FieldKind::Struct:
        case FieldKind::Bytes:
        case FieldKind::Arena: {
            auto bytes = field.kind == FieldKind::Struct && value.is_string() ? std::nullopt : JsonBytes(value);
            if (!bytes) {
                error = field.kind == FieldKind::Struct ? "takes {\"hex\": HEX}" : "takes a string or {\"hex\": HEX}";
                return std::nullopt;
            }
            if (field.kind == FieldKind::Struct ? bytes->size() != field.size : bytes->size() > field.size) {
                error = fmt::format("takes {} {} bytes, not {}", field.kind == FieldKind::Struct ? "exactly" : "at most",
                                    field.size, bytes->size());
                return std::nullopt;
            }
            return FieldValue(std::move(*bytes));
        }
    }
    error = "has a kind hl-ipc doesn't know";
    return std::nullopt;
}

nlohmann::json BytesJson(const std::vector<unsigned char>& bytes, bool asText) {
    if (asText) {
        std::string text(bytes.begin(), bytes.end());
        bool printable = true;
        for (const unsigned char c : text) {
            printable = printable && (c >= 0x20 || c == '\t' || c == '\n') && c != 0x7f;
        }
        if (printable) {
            try {
                nlohmann::json(text).dump();  // throws on bytes that are not UTF-8
                return text;
            } catch (const nlohmann::json::type_error&) {
            }
        }
    }
    return nlohmann::json{{"hex", hl::cli::FormatHex(bytes.data(), bytes.size())}};
}

}  // namespace

EncodedRequest::EncodedRequest(const interfaces::MethodInfo& method)
    : m_message(method.requestSize, 0), m_arenaRoom(method.requestArenaSize, 0),
      m_arena{m_arenaRoom.data(), m_arenaRoom.data(), m_arenaRoom.data() + m_arenaRoom.size()} {
    if (m_arenaRoom.empty()) {
        m_arena = {nullptr, nullptr, nullptr};
    }
    auto* header = Message();
    header->mid = method.mid;
    header->sizeFlags = method.requestSizeWord;
}

bool EncodeRequest(const interfaces::MethodInfo& method, const nlohmann::json& input, EncodedRequest& request,
                   std::string& error) {
    if (input.is_null() && method.inputs.empty()) {
        return true;
    }
    if (!input.is_object()) {
        error = fmt::format("{} takes a JSON object of its inputs by name", method.name);
        return false;
    }
    std::size_t used = 0;
    for (std::size_t i = 0; i < method.inputs.size(); ++i) {
        const FieldInfo& field = method.inputs[i];
        const std::string label = FieldLabel(field, i);
        const auto found = input.find(label);
        if (found == input.end()) {
            error = fmt::format("{} needs the field \"{}\" ({})", method.name, label, FieldTypeName(field));
            return false;
        }
        ++used;
        std::string why;
        const auto value = ToFieldValue(field, *found, why);
        if (!value) {
            error = fmt::format("the field \"{}\" of {} {}", label, method.name, why);
            return false;
        }
        if (field.pack == nullptr) {
            error = fmt::format("the field \"{}\" of {} can't be sent", label, method.name);
            return false;
        }
        try {
            field.pack(request.Message(), *value, request.Arena());
        } catch (const std::exception& failure) {
            error = fmt::format("the field \"{}\" of {} doesn't fit: {}", label, method.name, failure.what());
            return false;
        }
    }
    if (used != input.size()) {
        for (const auto& [key, unused] : input.items()) {
            bool known = false;
            for (std::size_t i = 0; i < method.inputs.size(); ++i) {
                known = known || FieldLabel(method.inputs[i], i) == key;
            }
            if (!known) {
                error = fmt::format("{} has no input field \"{}\"", method.name, key);
                return false;
            }
        }
    }
    return true;
}

nlohmann::json DecodeFields(const std::vector<FieldInfo>& fields, const nk_message* message, const nk_arena* arena) {
    nlohmann::json out = nlohmann::json::object();
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const FieldInfo& field = fields[i];
        const FieldValue value = field.unpack(message, arena);
        nlohmann::json& slot = out[FieldLabel(field, i)];
        if (const auto* bytes = std::get_if<std::vector<unsigned char>>(&value)) {
            slot = BytesJson(*bytes, field.kind != FieldKind::Struct);
        } else {
            std::visit([&slot](const auto& number) {
                if constexpr (!std::is_same_v<std::decay_t<decltype(number)>, std::vector<unsigned char>>) {
                    slot = number;
                }
            }, value);
        }
    }
    return out;
}

std::string FieldTypeName(const FieldInfo& field) {
    switch (field.kind) {
        case FieldKind::Signed: return fmt::format("i{}", field.size * 8);
        case FieldKind::Unsigned: return fmt::format("u{}", field.size * 8);
        case FieldKind::Float: return fmt::format("f{}", field.size * 8);
        case FieldKind::Struct: return fmt::format("struct[{}]", field.size);
        case FieldKind::Bytes: return fmt::format("bytes[{}]", field.size);
        case FieldKind::Arena: return fmt::format("arena[{}]", field.size);
        case FieldKind::Handle: return "handle";
    }
    return "?";
}

}  // namespace hl_ipc
