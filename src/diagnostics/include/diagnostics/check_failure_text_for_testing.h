#pragma once
// Test helper: runs action and returns the text streamed into the hca::CheckFailedException it
// throws (UTF-8), or "<no exception>". Any other exception passes through and fails the test.

#include <diagnostics/check_failed_exception.h>
#include <diagnostics/text_cast.h>

#include <string>
#include <utility>

namespace hca::testing {

template <typename Action>
std::string CheckFailureTextForTesting(Action&& action) {
    try {
        std::forward<Action>(action)();
    } catch (const hca::CheckFailedException& e) {
        return hca::text::Cast<std::string>(e.Text());
    }
    return "<no exception>";
}

}  // namespace hca::testing
