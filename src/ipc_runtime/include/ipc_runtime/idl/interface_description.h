#pragma once

// The vocabulary in which an IDL interface is described once: its methods with their ids, message
// sizes, field offsets, arena sizes and handle counts. Proxy<T> and Stub<T> are produced from such a
// description, so adding an interface costs a description and nothing else of the codec.
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
#include <string_view>
#include <type_traits>
#include <vector>

namespace hosipc_detail::idl_traits {

using ByteSequence = stdcpp_v1::Sequence<stdcpp_v1::Primitive<unsigned char, unsigned char>, 128ul>;
using stdcpp_v1::MessageHeader;

// A byte sequence of at most 128 bytes: an nk_ptr_t at Offset into the request arena. Input only.
template <std::uint32_t Offset>
struct SequenceArg {
    using Value = std::vector<unsigned char>;
    using In = const Value&;
    static constexpr std::uint32_t kOffset = Offset;
    static constexpr std::uint32_t kEnd = Offset + sizeof(nk_ptr_t);
    static constexpr std::uint32_t kArenaBytes = ByteSequence::kMaxBytes;
    static constexpr std::uint32_t kHandles = 0;

    static void Pack(nk_message* message, In value, nk_arena* arena) {
        nk_ptr_t ref{};
        ByteSequence::PackArgument(&value, &ref, arena);
        MessageHeader::Write(message, Offset, ref);
    }
    static Value Unpack(const nk_message* message, const nk_arena* arena) {
        return ByteSequence::UnpackArgument(MessageHeader::Read<nk_ptr_t>(message, Offset), arena);
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
    static void Store(nk_message* message, const Value& value) {
        MessageHeader::Write(message, Offset, value);
    }
    static void Load(const nk_message* message, Out out) { out = MessageHeader::Read<T>(message, Offset); }
};

// A handle descriptor of 16 bytes at Offset; the low 24 bits of its first word are the handle, and
// 0xffffff there stands for the invalid handle 0xffffffff. Output only.
template <std::uint32_t Offset>
struct HandleArg {
    using Value = unsigned int;
    using Out = unsigned int&;
    static constexpr std::uint32_t kOffset = Offset;
    static constexpr std::uint32_t kEnd = Offset + MessageHeader::kHandleDescriptorSize;
    static constexpr std::uint32_t kArenaBytes = 0;
    static constexpr std::uint32_t kHandles = 1;
    static constexpr std::uint32_t kHandleMask = 0xffffffU;
    static constexpr unsigned int kInvalidHandle = 0xffffffffU;

    static void Store(nk_message* message, const Value& handle) {
        std::uint32_t words[4] = {handle & kHandleMask, 0, 0, 0};
        MessageHeader::Write(message, Offset, words);
    }
    static void Load(const nk_message* message, Out out) {
        const std::uint32_t handle = MessageHeader::Read<std::uint32_t>(message, Offset) & kHandleMask;
        out = handle == kHandleMask ? kInvalidHandle : handle;
    }
};

template <typename Field>
concept FixedField = Field::kOffset >= MessageHeader::kHeaderSize&& Field::kEnd > Field::kOffset;

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
    constexpr std::uint32_t slotsEnd =
        MessageHeader::kHeaderSize + MessageHeader::kHandleDescriptorSize * (Fields::kHandles + ... + 0U);
    return (((Fields::kHandles != 0) ? Fields::kEnd <= slotsEnd : Fields::kOffset >= slotsEnd) && ...);
}

// The request of a method: its whole size, the size of its arena, and its input fields in order.
template <std::uint32_t Size, std::uint32_t ArenaSize, FixedField... Fields>
struct Request {
    static constexpr std::uint32_t kSize = Size;
    static constexpr std::uint32_t kArenaSize = ArenaSize;
    static constexpr std::uint32_t kHandles = (Fields::kHandles + ... + 0U);
    static_assert(kHandles == 0, "requests carry no handles");
    static_assert(Size >= MessageHeader::kHeaderSize, "a request is shorter than the message header");
    static_assert(((Fields::kEnd <= Size) && ...), "a request field lies behind the message");
    static_assert(FieldsApart<Fields...>(), "two request fields overlap");
    static_assert((Fields::kArenaBytes + ... + 0U) <= ArenaSize,
                  "the request arena can't hold its sequences");
};

// The response of a method: its whole size and its output fields in order.
template <std::uint32_t Size, FixedField... Fields>
struct Response {
    static constexpr std::uint32_t kSize = Size;
    static constexpr std::uint32_t kHandles = (Fields::kHandles + ... + 0U);
    static constexpr std::uint32_t kSizeWord = MessageHeader::MakeSizeWord(Size, kHandles);
    static_assert(Size >= MessageHeader::kHeaderSize, "a response is shorter than the message header");
    static_assert(((Fields::kEnd <= Size) && ...), "a response field lies behind the message");
    static_assert(FieldsApart<Fields...>(), "two response fields overlap");
    static_assert(HandlesInDescriptorSlots<Fields...>(),
                  "a plain response field overlaps the handle descriptors, or a handle lies behind them");
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
