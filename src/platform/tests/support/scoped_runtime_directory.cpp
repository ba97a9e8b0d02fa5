#include "support/scoped_runtime_directory.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace hos::platform::testing {

ScopedRuntimeDirectory::ScopedRuntimeDirectory() {
    const char* previous = std::getenv("HL_RUNTIME_DIR");
    m_hadPrevious = previous != nullptr;
    m_previous = m_hadPrevious ? previous : "/tmp";
    std::filesystem::create_directories(m_previous);
    std::string pattern = m_previous + "/hlp-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("mkdtemp failed under " + m_previous);
    }
    m_path = pattern;
    ::setenv("HL_RUNTIME_DIR", m_path.c_str(), 1);
}

ScopedRuntimeDirectory::~ScopedRuntimeDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
    if (m_hadPrevious) {
        ::setenv("HL_RUNTIME_DIR", m_previous.c_str(), 1);
    } else {
        ::unsetenv("HL_RUNTIME_DIR");
    }
}

}  // namespace hos::platform::testing
