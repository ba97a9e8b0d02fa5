#pragma once

// The descriptions of interface_description.h as a table at run time, for tools that call any
// described method by name (hl-ipc): each interface with its methods, each method with its ids,
// sizes and fields, and each field with its name, its kind and the description's own functions that
// put it into a message and take it out. A tool lays out a request and reads a response through these
// functions only, so it shares the one codec with Proxy<T> and Stub<T>.
//
//   const InterfaceInfo info = DescribeInterface<hl::access_arbiter::AccessArbiter>("hl.access_arbiter.AccessArbiter");
//
// Plain data built once; any thread may read it.

#include <ipc_runtime/idl/interface_description.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace hosipc_detail::idl_traits {

// What a field holds, as a tool reads and prints it.
enum class FieldKind {
    Signed,    // a signed integer of `size` bytes
    Unsigned,  // an unsigned integer of `size` bytes
    Float,     // a floating-point number of `size` bytes
    Struct,    // a plain structure of `size` bytes, as its bytes (nk_ptr_t into a caller's arena)
    Bytes,     // a byte sequence of at most `size` bytes in the message's arena
    Handle,    // a handle descriptor (`size` 0)
    Arena,     // the caller's own arena of at most `size` bytes, its bytes as they are
};

// A field's value on its way into or out of a message.
using FieldValue = std::variant<std::int64_t, std::uint64_t, double, std::vector<unsigned char>>;

struct FieldInfo {
    std::string_view name;  // "" when the description gives none
    FieldKind kind;
    std::uint32_t offset;   // in the message (0 for an arena)
    std::uint32_t size;
    // Writes value (of the alternative the kind takes: int64 for Signed, uint64 for Unsigned and
    // Handle, double for Float, bytes for the rest, of the field's size for Struct) into the message
    // and its arena; the caller has checked the alternative and the range. Throws what the
    // description's Pack throws (std::length_error for a sequence over its room).
    void (*pack)(nk_message* message, const FieldValue& value, nk_arena* arena);
    // Reads the field from a message and its arena.
    FieldValue (*unpack)(const nk_message* message, const nk_arena* arena);
};

struct MethodInfo {
    std::string_view name;
    std::uint16_t mid;
    std::uint32_t requestSize;
    std::uint32_t requestSizeWord;
    std::uint32_t requestArenaSize;
    std::uint32_t responseSize;
    std::uint32_t responseSizeWord;
    std::uint32_t responseArenaSize;
    std::vector<FieldInfo> inputs;
    std::vector<FieldInfo> outputs;
};

struct InterfaceInfo {
    std::string_view name;  // the IDL name, "hl.access_arbiter.AccessArbiter"
    std::vector<MethodInfo> methods;
};

template <typename Field>
constexpr std::string_view FieldName() {
    if constexpr (requires { Field::kName; }) {
        return Field::kName;
    } else {
        return {};
    }
}

template <typename T>
FieldValue ToFieldValue(const T& value) {
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<double>(value);
    } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
        return static_cast<std::int64_t>(value);
    } else if constexpr (std::is_integral_v<T>) {
        return static_cast<std::uint64_t>(value);
    } else {
        std::vector<unsigned char> bytes(sizeof(T));
        std::memcpy(bytes.data(), &value, sizeof(T));
        return bytes;
    }
}

template <typename T>
T FromFieldValue(const FieldValue& value) {
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(std::get<double>(value));
    } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
        return static_cast<T>(std::get<std::int64_t>(value));
    } else if constexpr (std::is_integral_v<T>) {
        return static_cast<T>(std::get<std::uint64_t>(value));
    } else {
        T out{};
        const auto& bytes = std::get<std::vector<unsigned char>>(value);
        std::memcpy(&out, bytes.data(), bytes.size() < sizeof(T) ? bytes.size() : sizeof(T));
        return out;
    }
}

template <typename T>
constexpr FieldKind ValueKind() {
    if constexpr (std::is_floating_point_v<T>) {
        return FieldKind::Float;
    } else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>) {
        return FieldKind::Signed;
    } else if constexpr (std::is_integral_v<T>) {
        return FieldKind::Unsigned;
    } else {
        return FieldKind::Struct;
    }
}

// The table row of one field of the kinds above; Input says whether it is a request field.
template <typename Field, bool Input>
FieldInfo DescribeField() {
    FieldInfo info{FieldName<Field>(), FieldKind::Arena, Field::kOffset, Field::kArenaBytes, nullptr, nullptr};
    using Value = typename Field::Value;
    if constexpr (CallerArenaField<Field>) {
        info.kind = FieldKind::Arena;
        if constexpr (Input) {
            // The caller's request arena is the message's arena itself: its bytes go there.
            info.pack = [](nk_message*, const FieldValue& value, nk_arena* arena) {
                const auto& bytes = std::get<std::vector<unsigned char>>(value);
                if (bytes.empty()) {
                    return;
                }
                if (bytes.size() > Field::kArenaBytes || arena == nullptr || arena->cursor == nullptr ||
                    static_cast<std::size_t>(arena->end - arena->cursor) < bytes.size()) {
                    throw std::runtime_error("failed to allocate space in the arena");
                }
                std::memcpy(arena->cursor, bytes.data(), bytes.size());
                arena->cursor += bytes.size();
            };
        }
        info.unpack = [](const nk_message*, const nk_arena* arena) -> FieldValue {
            if (arena == nullptr || arena->start == nullptr) {
                return std::vector<unsigned char>{};
            }
            return std::vector<unsigned char>(arena->start, arena->cursor);
        };
    } else if constexpr (Field::kHandles != 0) {
        info.kind = FieldKind::Handle;
        info.size = 0;
        info.pack = [](nk_message* message, const FieldValue& value, nk_arena* arena) {
            Field::Pack(message, static_cast<unsigned int>(std::get<std::uint64_t>(value)), arena);
        };
        info.unpack = [](const nk_message* message, const nk_arena* arena) -> FieldValue {
            return static_cast<std::uint64_t>(Field::Unpack(message, arena));
        };
    } else if constexpr (std::is_same_v<Value, std::vector<unsigned char>>) {
        info.kind = FieldKind::Bytes;
        info.pack = [](nk_message* message, const FieldValue& value, nk_arena* arena) {
            Field::Pack(message, std::get<std::vector<unsigned char>>(value), arena);
        };
        info.unpack = [](const nk_message* message, const nk_arena* arena) -> FieldValue {
            return Field::Unpack(message, arena);
        };
    } else {
        info.kind = ValueKind<Value>();
        info.size = sizeof(Value);
        info.pack = [](nk_message* message, const FieldValue& value, nk_arena* arena) {
            Field::Pack(message, FromFieldValue<Value>(value), arena);
        };
        info.unpack = [](const nk_message* message, const nk_arena* arena) -> FieldValue {
            return ToFieldValue(Field::Unpack(message, arena));
        };
    }
    return info;
}

template <typename M, std::uint32_t RS, std::uint32_t RA, typename... In, std::uint32_t PS, typename... Out>
MethodInfo DescribeMethod(Request<RS, RA, In...>, Response<PS, Out...>) {
    using Req = Request<RS, RA, In...>;
    using Resp = Response<PS, Out...>;
    return MethodInfo{M::kName,       M::kMid,         RS, Req::kSizeWord, RA, PS, Resp::kSizeWord, Resp::kArenaSize,
                      {DescribeField<In, true>()...}, {DescribeField<Out, false>()...}};
}

template <typename... Methods>
std::vector<MethodInfo> DescribeMethods(MethodList<Methods...>*) {
    return {DescribeMethod<Methods>(typename Methods::Request{}, typename Methods::Response{})...};
}

// The table of the interface T, under its IDL name.
template <typename T>
InterfaceInfo DescribeInterface(std::string_view name) {
    using Description = InterfaceDescription<T>;
    return InterfaceInfo{name, DescribeMethods(static_cast<typename Description::Methods*>(nullptr))};
}

}  // namespace hosipc_detail::idl_traits
