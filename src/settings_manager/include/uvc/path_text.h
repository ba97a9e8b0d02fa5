#pragma once
// The one text form of a path, which is also its wire form: every id is followed by the delimiter
// (the first character of IdSpec::forbidden), the last one too. "locale/language/", "list/3/x/"; the
// empty path is the empty text. Numeric ids are decimal.
//
// The conversions report by state and throw nothing of their own (only memory exhaustion escapes).
// On any state but IdStateOk the result is empty: never the ids or text made so far.
//
// Reading is lenient where writing is strict: the final delimiter is optional ("a/b" reads as
// "a/b/"), and leading zeros are allowed ("007" is 7). A name that begins with a digit is refused
// with IdStateBadChar from text but with IdStateDigitName from a path object; IdStateEmptyName and
// IdStateDigitName arise only from path objects, IdStateEmptyId only from text.

#include <uvc/id_spec.h>
#include <uvc/path.h>

#include <string>
#include <string_view>
#include <utility>

namespace uvc {

std::pair<Path, IdState> FromString(std::string_view text, const IdSpec& spec);

// A numeric id of more than 19 decimal digits is refused with IdStateBadIndex, although it fits the
// type (this matters only for a spec without max_index).
std::pair<std::string, IdState> ToString(const Path& path, const IdSpec& spec);

namespace aux {
// Numeric id: IdStateIndexTooBig over a non-zero max_index. Name: IdStateEmptyName, IdStateDigitName
// (first character 0-9), IdStateBadChar (a forbidden character). Valueless id: IdStateBadVariant.
IdState CheckId(const Id& id, const IdSpec& spec);
}  // namespace aux

}  // namespace uvc
