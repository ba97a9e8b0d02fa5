#include <uvc/path.h>

#include <algorithm>
#include <utility>

namespace uvc {

Path& Path::Append(std::uint64_t index) {
    m_ids.emplace_back(std::in_place_index<0>, index);
    return *this;
}

Path& Path::Append(std::string name) {
    m_ids.emplace_back(std::in_place_index<1>, std::move(name));
    return *this;
}

Path& Path::Append(const char* name) {
    return Append(std::string(name));
}

Path& Path::Append(Id id) {
    m_ids.push_back(std::move(id));
    return *this;
}

void Path::RemoveLast() {
    m_ids.pop_back();
}

bool Path::StartsWith(const Path& prefix) const {
    return prefix.Size() <= Size() && std::equal(prefix.begin(), prefix.end(), begin());
}

}  // namespace uvc
