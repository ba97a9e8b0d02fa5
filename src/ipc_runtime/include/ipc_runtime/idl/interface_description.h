#pragma once

// The vocabulary in which an IDL interface is described once: its methods with their ids, message
// sizes, field offsets, arena sizes (of requests and responses) and handle counts (both ways). Proxy<T> and
// Stub<T> are produced from such a description, so adding an interface costs a description and nothing else
// of the codec.
//
// An interface T is described by specialising InterfaceDescription<T>:
//
//   template <>
//   struct InterfaceDescription<hl::app_manager::ApplicationWatchdog> {
//       static constexpr std::string_view kFailurePrefix = "hl_app_manager_ApplicationWatchdog_";
//       using Ping = Method<"Ping", 0, &hl::app_manager::ApplicationWatchdog::Ping,
//                           Request<32, 128, SequenceArg<24>>, Response<32, ValueArg<std::int32_t, 24>>>;
//       using Methods = MethodList<Ping>;
//   };
//
// Fields may carry their names (Named<"decision", ValueArg<unsigned char, 24>>), which the runtime
// table of descriptions (description_table.h) gives to tools such as hl-ipc.
//
// The method's C++ signature follows from its fields: the request's inputs in order, then a reference
// for each response field. A description whose member function doesn't match fails to compile, and so
// does one in which two methods share an id, two fields of a message overlap (handle descriptors
// included), or a field lies outside its message. The checks look only at a field's kOffset, kEnd and
// kHandles, so a new kind of field is checked as soon as it states those three.
//
// Beside the description an interface header holds only what C++ can't derive by itself: one
// forwarding override per method in its Proxy<T> specialisation (`Invoke<Description::Ping>(...)`,
// proxy_base.h), and the declaration of its MakeProxyImpl overload, whose body is
// MakeGeneratedProxy<T> (make_proxy.h). Stub<T> (stub.h) needs nothing more. See
// idl/hl/app_manager/application_watchdog.h for a complete interface.

#include <ipc_runtime/fixed_string.h>
#include <ipc_runtime/message_header.h>
#include <ipc_runtime/sequence.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <vector>

namespace hosipc_detail::idl_traits {

using ByteSequence = stdcpp_v1::Sequence<stdcpp_v1::Primitive<unsigned char, unsigned char>, 128ul>;
using stdcpp_v1::MessageHeader;

// Every field states kOffset, kEnd (its bytes in the message), kArenaBytes (what it may take of its
// message's arena) and kHandles. An input field has In (the parameter type), Pack (proxy) and Unpack
// (stub); an output field has Out, Store (stub) and Load (proxy). Pack and Store write into the
// message's arena, Unpack and Load read the received one.

// A byte sequence of at most MaxBytes bytes: an nk_ptr_t at Offset into the message's arena. As an
// input it goes into the request arena; as an output into the response arena, which the proxy then
// allocates and the server loop provides.
template <std::uint32_t Offset, std::uint32_t MaxBytes = 128>
struct SequenceArg {
    using Codec = stdcpp_v1::Sequence<stdcpp_v1::Primitive<unsigned char, unsigned char>, MaxBytes>;
    using Value = std::vector<unsigned char>;
    using In = const Value&;
    using Out = Value&;
    static constexpr std::uint32_t kOffset = Offset;
    static constexpr std::uint32_t kEnd = Offset + sizeof(nk_ptr_t);
    static constexpr std::uint32_t kArenaBytes = MaxBytes;
    static constexpr std::uint32_t kHandles = 0;

    static void Pack(nk_message* message, In value, nk_arena* arena) {
        nk_ptr_t ref{};
        Codec::PackArgument(&value, &ref, arena);
        MessageHeader::Write(message, Offset, ref);
    }
    static Value Unpack(const nk_message* message, const nk_arena* arena) {
        return Codec::UnpackArgument(MessageHeader::Read<nk_ptr_t>(message, Offset), arena);
    }
    static void Store(nk_message* message, const Value& value, nk_arena* arena) {
        Pack(message, value, arena);
    }
    static void Load(const nk_message* message, Out out, const nk_arena* arena) {
        out = Unpack(message, arena);
    }
};

// A plain little-endian value at Offset, as input (by value) or as output (by reference).
template <typename T, std::uint32_t Offset>
struct ValueArg {
    static_assert(std::is_trivially_copyable_v<T>);
    using Value = T;
    using In = T;
    using Out = T&;
    static constexpr std::uint32_t kOffset = Offset;
    static constexpr std::uint32_t kEnd = Offset + sizeof(T);
    static constexpr std::uint32_t kArenaBytes = 0;
    static constexpr std::uint32_t kHandles = 0;

    static void Pack(nk_message* message, In value, nk_arena* /*arena*/) {
        MessageHeader::Write(message, Offset, value);
    }
    static Value Unpack(const nk_message* message, const nk_arena* /*arena*/) {
        return MessageHeader::Read<T>(message, Offset);
    }
    static void Store(nk_message* message, const Value& value, nk_arena* /*arena*/ = nullptr) {
        MessageHeader::Write(message, Offset, value);
    }
    static void Load(const nk_message* message, Out out, const nk_arena* /*arena*/ = nullptr) {
        out = MessageHeader::Read<T>(message, Offset);
    }
};

// A handle descriptor of 16 bytes at Offset; the low 24 bits of its first word are the handle, and
// 0xffffff there stands for the invalid handle 0xffffffff. Input or output; the descriptors of a
// message lie right behind its header, and the size word counts them.
template <std::uint32_t Offset>
struct HandleArg {
    using Value = unsigned int;
    using In = unsigned int;
    using Out = unsigned int&;
    static constexpr std::uint32_t kOffset = Offset;
    static constexpr std::uint32_t kEnd = Offset + MessageHeader::kHandleDescriptorSize;
    static constexpr std::uint32_t kArenaBytes = 0;
    static constexpr std::uint32_t kHandles = 1;
    static constexpr std::uint32_t kHandleMask = 0xffffffU;
    static constexpr unsigned int kInvalidHandle = 0xffffffffU;

    static void Pack(nk_message* message, In handle, nk_arena* /*arena*/) {
        std::uint32_t words[4] = {handle & kHandleMask, 0, 0, 0};
        MessageHeader::Write(message, Offset, words);
    }
    static Value Unpack(const nk_message* message, const nk_arena* /*arena*/) {
        const std::uint32_t handle = MessageHeader::Read<std::uint32_t>(message, Offset) & kHandleMask;
        return handle == kHandleMask ? kInvalidHandle : handle;
    }
    static void Store(nk_message* message, const Value& handle, nk_arena* arena = nullptr) {
        Pack(message, handle, arena);
    }
    static void Load(const nk_message* message, Out out, const nk_arena* arena = nullptr) {
        out = Unpack(message, arena);
    }
};

// The caller's own request arena of at most MaxBytes, sent as it stands (start to cursor), for a
// method whose arena holds a structure the caller lays out itself; the fields that point into it are
// ValueArg<nk_ptr_t, ...>. Takes no message bytes and must be the request's only arena user. The
// server's implementation gets the received request arena (its cursor behind the received bytes).
template <std::uint32_t MaxBytes>
struct ArenaIn {
    using Value = nk_arena;
    using In = const nk_arena&;
    static constexpr bool kCallerArena = true;
    static constexpr std::uint32_t kOffset = 0;
    static constexpr std::uint32_t kEnd = 0;
    static constexpr std::uint32_t kArenaBytes = MaxBytes;
    static constexpr std::uint32_t kHandles = 0;

    // The proxy sends the argument itself as the request arena.
    static void Pack(nk_message* /*message*/, In /*value*/, nk_arena* /*arena*/) {}
    // A received arena with more bytes than the method allows is refused (a server failure).
    static Value Unpack(const nk_message* /*message*/, const nk_arena* arena) {
        if (nk_arena_used(arena) > MaxBytes) {
            throw std::runtime_error("the request's arena is larger than its method allows");
        }
        return arena != nullptr ? *arena : nk_arena{nullptr, nullptr, nullptr};
    }
};

// The caller's own response arena, of MaxBytes as the server loop must provide them: the proxy
// receives the response arena into the argument (start to end the room, cursor behind the received
// bytes afterwards). The server's implementation gets the response arena with its cursor at start,
// writes from there and moves the cursor behind what it wrote. Takes no message bytes and must be the
// response's only arena user.
template <std::uint32_t MaxBytes>
struct ArenaOut {
    using Value = nk_arena;
    using Out = nk_arena&;
    static constexpr bool kCallerArena = true;
    static constexpr std::uint32_t kOffset = 0;
    static constexpr std::uint32_t kEnd = 0;
    static constexpr std::uint32_t kArenaBytes = MaxBytes;
    static constexpr std::uint32_t kHandles = 0;

    static void Store(nk_message* /*message*/, const Value& written, nk_arena* arena) {
        if (arena != nullptr && written.start == arena->start && written.cursor >= arena->start &&
            written.cursor <= arena->end) {
            arena->cursor = written.cursor;
        }
    }
    // The transport has received into the argument already.
    static void Load(const nk_message* /*message*/, Out /*out*/, const nk_arena* /*arena*/) {}
};

// A field with its name, as tools show it and take it by ("decision", "path"): the field itself in
// every other respect.
//   using Path = Named<"path", SequenceArg<24, 512>>;
template <FixedString Name, typename Field>
struct Named : Field {
    static constexpr std::string_view kName = Name.View();
};

template <typename Field>
concept CallerArenaField = Field::kCallerArena;

// Position of the caller-arena field among Fields, or sizeof...(Fields) when there is none.
template <typename... Fields>
constexpr std::size_t CallerArenaIndex() {
    constexpr bool flags[] = {CallerArenaField<Fields>..., false};
    for (std::size_t i = 0; i < sizeof...(Fields); ++i) {
        if (flags[i]) {
            return i;
        }
    }
    return sizeof...(Fields);
}

// True when a caller arena, if any, is the only field that uses the message's arena.
template <typename... Fields>
constexpr bool CallerArenaAlone() {
    constexpr std::size_t callerArenas = ((CallerArenaField<Fields> ? 1U : 0U) + ... + 0U);
    constexpr std::size_t arenaUsers = ((Fields::kArenaBytes != 0 ? 1U : 0U) + ... + 0U);
    return callerArenas == 0 || (callerArenas == 1 && arenaUsers == 1);
}

template <typename Field>
concept FixedField = CallerArenaField<Field> ||
    (Field::kOffset >= MessageHeader::kHeaderSize && Field::kEnd > Field::kOffset);

// True when no two of the fields share a byte: [kOffset, kEnd) ranges pairwise apart.
template <FixedField... Fields>
constexpr bool FieldsApart() {
    constexpr std::array<std::uint32_t, sizeof...(Fields)> offsets{Fields::kOffset...};
    constexpr std::array<std::uint32_t, sizeof...(Fields)> ends{Fields::kEnd...};
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        for (std::size_t j = i + 1; j < offsets.size(); ++j) {
            if (offsets[i] < ends[j] && offsets[j] < ends[i]) {
                return false;
            }
        }
    }
    return true;
}

// True when the handle fields fill the descriptor slots behind the header (each field inside them)
// and the plain fields stay behind the last slot.
template <FixedField... Fields>
constexpr bool HandlesInDescriptorSlots() {
    [[maybe_unused]] constexpr std::uint32_t slotsEnd =
        MessageHeader::kHeaderSize + MessageHeader::kHandleDescriptorSize * (Fields::kHandles + ... + 0U);
    return (((Fields::kHandles != 0) ? Fields::kEnd <= slotsEnd
                                     : (Fields::kOffset == Fields::kEnd || Fields::kOffset >= slotsEnd)) &&
            ...);
}

// The request of a method: its whole size, the size of its arena, and its input fields in order.
template <std::uint32_t Size, std::uint32_t ArenaSize, FixedField... Fields>
struct Request {
    static constexpr std::uint32_t kSize = Size;
    static constexpr std::uint32_t kArenaSize = ArenaSize;
    static constexpr std::uint32_t kHandles = (Fields::kHandles + ... + 0U);
    static constexpr std::uint32_t kSizeWord = MessageHeader::MakeSizeWord(Size, kHandles);
    static constexpr std::size_t kCallerArena = CallerArenaIndex<Fields...>();
    static_assert(Size >= MessageHeader::kHeaderSize, "a request is shorter than the message header");
    static_assert(((Fields::kEnd <= Size) && ...), "a request field lies behind the message");
    static_assert(FieldsApart<Fields...>(), "two request fields overlap");
    static_assert((Fields::kArenaBytes + ... + 0U) <= ArenaSize,
                  "the request arena can't hold its sequences");
    static_assert(HandlesInDescriptorSlots<Fields...>(),
                  "a plain request field overlaps the handle descriptors, or a handle lies behind them");
    static_assert(CallerArenaAlone<Fields...>(),
                  "a caller's request arena shares the arena with another field");
};

// The response of a method: its whole size and its output fields in order. Its arena is as large as
// its fields need (0: the response has none).
template <std::uint32_t Size, FixedField... Fields>
struct Response {
    static constexpr std::uint32_t kSize = Size;
    static constexpr std::uint32_t kArenaSize = (Fields::kArenaBytes + ... + 0U);
    static constexpr std::size_t kCallerArena = CallerArenaIndex<Fields...>();
    static constexpr std::uint32_t kHandles = (Fields::kHandles + ... + 0U);
    static constexpr std::uint32_t kSizeWord = MessageHeader::MakeSizeWord(Size, kHandles);
    static_assert(Size >= MessageHeader::kHeaderSize, "a response is shorter than the message header");
    static_assert(((Fields::kEnd <= Size) && ...), "a response field lies behind the message");
    static_assert(FieldsApart<Fields...>(), "two response fields overlap");
    static_assert(HandlesInDescriptorSlots<Fields...>(),
                  "a plain response field overlaps the handle descriptors, or a handle lies behind them");
    static_assert(CallerArenaAlone<Fields...>(),
                  "a caller's response arena shares the arena with another field");
};

template <typename MemberFunction>
struct MemberClass;
template <typename Class, typename Signature>
struct MemberClass<Signature Class::*> {
    using Type = Class;
};

template <typename Interface, typename RequestT, typename ResponseT>
struct MethodSignature;
template <typename Interface, std::uint32_t RS, std::uint32_t RA, typename... In, std::uint32_t PS,
          typename... Out>
struct MethodSignature<Interface, Request<RS, RA, In...>, Response<PS, Out...>> {
    using Type = void (Interface::*)(typename In::In..., typename Out::Out...);
};

// One method: its name (for failure texts), its id, the member function of the abstract class, and
// its two messages.
template <FixedString Name, std::uint16_t Mid, auto Function, typename RequestT, typename ResponseT>
struct Method {
    using Interface = typename MemberClass<decltype(Function)>::Type;
    using Request = RequestT;
    using Response = ResponseT;
    static constexpr std::string_view kName = Name.View();
    static constexpr std::uint16_t kMid = Mid;
    static constexpr auto kFunction = Function;

    static_assert(
        std::is_same_v<decltype(Function), typename MethodSignature<Interface, Request, Response>::Type>,
        "the member function's parameters don't match the method's fields");
};

template <std::uint16_t... Mids>
constexpr bool MidsUnique() {
    constexpr std::array<std::uint16_t, sizeof...(Mids)> mids{Mids...};
    for (std::size_t i = 0; i < mids.size(); ++i) {
        for (std::size_t j = i + 1; j < mids.size(); ++j) {
            if (mids[i] == mids[j]) {
                return false;
            }
        }
    }
    return true;
}

// The methods of an interface. Instantiating the list checks the whole description: the ids, and
// (by naming their sizes) every request and response with its fields. Proxy<T> and Stub<T> do so.
template <typename... Methods>
struct MethodList {
    static_assert(MidsUnique<Methods::kMid...>(), "two methods of the interface share a method id");
    static_assert(((Methods::Request::kSize != 0 && Methods::Response::kSize != 0) && ...));
};

// Specialised once per IDL interface; see the top of this file.
template <typename T>
struct InterfaceDescription;

}  // namespace hosipc_detail::idl_traits
