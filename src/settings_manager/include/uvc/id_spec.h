#pragma once
// What a valid id is (IdSpec), and the result states of the path conversions (IdState).

#include <fmt/format.h>

#include <cstdint>
#include <string>

namespace uvc {

struct IdSpec {
    // Every character that can't occur in a name. Its first character is also the delimiter of the
    // text form.
    std::string forbidden;
    // Largest numeric id; 0 means no limit.
    std::uint64_t max_index = 0;
};

// One unsigned byte; prints as its number.
enum IdState : std::uint8_t {
    IdStateOk = 0,           // valid
    IdStateBadVariant = 1,   // an id holds neither alternative
    IdStateIndexTooBig = 2,  // a numeric id exceeds max_index
    IdStateBadIndex = 3,     // a numeric id can't be read from text or written to text
    IdStateEmptyName = 4,    // a name id is empty (from a path object)
    IdStateEmptyId = 5,      // a text has an empty id between delimiters
    IdStateDigitName = 6,    // a name id begins with a digit (from a path object)
    IdStateBadChar = 7,      // a forbidden character in a name, or a non-digit in a numeric id
    IdStateEmptySpec = 8,    // the IdSpec has no forbidden characters, so no delimiter
};

}  // namespace uvc

template <>
struct fmt::formatter<uvc::IdState> : fmt::formatter<unsigned> {
    template <typename FormatContext>
    auto format(uvc::IdState state, FormatContext& context) const {
        return fmt::formatter<unsigned>::format(static_cast<unsigned>(state), context);
    }
};
