#pragma once
// hl-ipc's typed calls: a request of any described method laid out from a JSON object of its input
// fields by name, and a message's fields as a JSON object. The bytes are put in and taken out by the
// descriptions' own functions (interfaces/catalogue.h), so this is no second codec of the wire: it
// only maps JSON values onto the table's field values.
//
// JSON forms by field kind: integers as JSON integers, range-checked for their width; floating point
// as numbers; a handle as its number; a byte sequence or a caller's arena as a string (its UTF-8
// bytes) or {"hex": "de ad be ef"}; a plain structure (nk_ptr_t) as {"hex": ...} of its exact size.
// Output uses the string form for bytes that are valid UTF-8 without control characters other than
// tab and line feed, and the hex form for anything else.
//
// Pure functions; any thread.

#include <interfaces/catalogue.h>
#include <platform/nk_message.h>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace hl_ipc {

// A request laid out for the transport: the message (header with mid and size word, iid left 0 for
// the caller to set) and the request arena, its cursor behind the bytes put there.
class EncodedRequest {
public:
    explicit EncodedRequest(const interfaces::MethodInfo& method);
    EncodedRequest(const EncodedRequest&) = delete;
    EncodedRequest& operator=(const EncodedRequest&) = delete;

    nk_message* Message() { return reinterpret_cast<nk_message*>(m_message.data()); }
    nk_arena* Arena() { return &m_arena; }
    const std::vector<unsigned char>& MessageBytes() const { return m_message; }
    std::vector<unsigned char> ArenaBytes() const { return {m_arena.start, m_arena.cursor}; }

private:
    std::vector<unsigned char> m_message;
    std::vector<unsigned char> m_arenaRoom;
    nk_arena m_arena;
};

// Puts input (a JSON object naming every input field of method, or null for a method without
// inputs) into request; false with error set (a sentence naming the field) when a field is missing,
// unknown, of the wrong JSON type, out of range or too long for its room.
bool EncodeRequest(const interfaces::MethodInfo& method, const nlohmann::json& input, EncodedRequest& request,
                   std::string& error);

// The fields of a message (and its arena) as a JSON object by name; a field without a name is
// "field<N>". The message and arena must be one the fields' description may read (a response the
// transport accepted, or a request EncodeRequest made).
nlohmann::json DecodeFields(const std::vector<interfaces::FieldInfo>& fields, const nk_message* message,
                            const nk_arena* arena);

// A field's type as introspect shows it: "i32", "u8", "u64", "f64", "bytes[128]", "arena[4096]",
// "struct[8]", "handle".
std::string FieldTypeName(const interfaces::FieldInfo& field);

}  // namespace hl_ipc
