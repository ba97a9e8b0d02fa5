#include <diagnostics/check.h>
#include <diagnostics/process_exception.h>
#include <diagnostics/result_code.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace {

using namespace hca::result_code;
using Result = std::pair<int, std::string>;

TEST(ProcessException, BothVariantsMapEachExceptionKindToItsCodeAndText) {
    const struct {
        void (*doThrow)();
        Result expected;
    } cases[] = {
        {[] { throw hca::CheckResultFailedException("file.cpp", 12, kOperationTimeout); },
         {kOperationTimeout,
          "CheckResultFailedException - 0x80000221 (Operation timeout). At file.cpp(12) "}},
        // No result code of its own, yet reported as an unspecified error.
        {[] { throw hca::CheckFailedException("f.cpp", 3) << "PaletteFactory is nullptr"; },
         {kUnspecifiedError, "CheckFailedException - PaletteFactory is nullptr. At f.cpp(3) "}},
        {[] { throw std::invalid_argument("bad arg"); }, {kInvalidArgument, "bad arg"}},
        {[] { throw std::length_error("too long"); }, {kInvalidSize, "too long"}},
        {[] { throw std::out_of_range("beyond"); }, {kOutOfRange, "beyond"}},
        {[] { throw std::runtime_error("boom"); }, {kUnspecifiedError, "std::exception: boom"}},
        // Derived from a mapped class: the first matching handler wins.
        {[] { throw std::domain_error("dom"); }, {kUnspecifiedError, "std::exception: dom"}},
        {[] { throw hca::exception("f", 1, "plain"); }, {kUnspecifiedError, "std::exception: plain"}},
        {[] { throw hca::exception("f", 1); }, {kUnspecifiedError, "std::exception: Unknown exception"}},
        {[] { throw 42; }, {kUnspecifiedError, "non-std exception"}}};
    for (Result (*process)() : {&fdn::utils::ProcessException, &common::utils::ProcessException}) {
        for (const auto& c : cases) {
            try {
                c.doThrow();
            } catch (...) {
                EXPECT_EQ(process(), c.expected);
            }
        }
    }
}

TEST(ProcessExceptionDeathTest, OutsideACatchBlockEndsTheProcess) {
    EXPECT_DEATH(fdn::utils::ProcessException(), "");
}

}  // namespace
