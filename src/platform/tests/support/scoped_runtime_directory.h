// A fresh runtime directory for one test: made with mkdtemp under $HL_RUNTIME_DIR (or /tmp) and
// set as HL_RUNTIME_DIR for the process and the peers it starts; removed and restored at the end.
#pragma once

#include <string>

namespace hos::platform::testing {

class ScopedRuntimeDirectory {
public:
    ScopedRuntimeDirectory();
    ~ScopedRuntimeDirectory();

    ScopedRuntimeDirectory(const ScopedRuntimeDirectory&) = delete;
    ScopedRuntimeDirectory& operator=(const ScopedRuntimeDirectory&) = delete;

    const std::string& Path() const { return m_path; }
    std::string ServerSocket(const std::string& name) const { return m_path + "/servers/" + name; }

private:
    std::string m_previous;
    bool m_hadPrevious = false;
    std::string m_path;
};

}  // namespace hos::platform::testing
