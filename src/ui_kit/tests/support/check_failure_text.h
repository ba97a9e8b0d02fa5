#pragma once

#include <diagnostics/check_failed_exception.h>

#include <QString>

#include <string>
#include <utility>

namespace vdi::uikit::testing {

// Runs action and returns the text of the hca::CheckFailedException it throws, or "<no exception>".
// Any other exception passes through and fails the test.
template <typename Action>
std::string CheckFailureText(Action&& action) {
    try {
        std::forward<Action>(action)();
    } catch (const hca::CheckFailedException& e) {
        const auto text = e.Text();
        return QString::fromStdU16String(text).toStdString();
    }
    return "<no exception>";
}

}  // namespace vdi::uikit::testing
