#pragma once
// uvc::Path addresses a node of a value tree: an ordered sequence of ids, where a numeric id selects
// an element of a list and a name selects a key of a map.
//
//   const uvc::Path language = uvc::Path(uvc::Root).Append("locale").Append("language");
//
// A path object checks nothing: it may hold ids that the text form refuses (path_text.h tells which).
// Plain value type; not synchronised.

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace uvc {

// Alternative 0: a numeric id (list element); alternative 1: a name (map key). An id left valueless
// by a failed assignment holds neither.
using Id = std::variant<std::uint64_t, std::string>;

class Path {
public:
    constexpr Path() = default;

    // Appends one id and returns this path. A zero-terminated text becomes a name id.
    Path& Append(std::uint64_t index);
    Path& Append(std::string name);
    Path& Append(const char* name);
    Path& Append(Id id);

    // Removes the last id; the path must not be empty.
    void RemoveLast();

    const std::vector<Id>& Ids() const { return m_ids; }
    std::size_t Size() const { return m_ids.size(); }
    bool Empty() const { return m_ids.empty(); }
    std::vector<Id>::const_iterator begin() const { return m_ids.begin(); }
    std::vector<Id>::const_iterator end() const { return m_ids.end(); }

    // True when the first ids of this path are those of prefix (any path starts with the root).
    bool StartsWith(const Path& prefix) const;

    // Same length, and each pair of ids holds the same alternative with the same value.
    friend bool operator==(const Path&, const Path&) = default;

private:
    std::vector<Id> m_ids;
};

// The empty path: the root of a tree. Constant-initialised, so usable during static initialisation.
inline const Path Root{};

}  // namespace uvc
