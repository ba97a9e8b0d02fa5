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

template <typename Throw>
Result Process(Throw&& doThrow, Result (*process)() = &fdn::utils::ProcessException) {
  try {
    doThrow();
  } catch (...) {
    return process();
  }
  return {1, "nothing thrown"};
}

struct NotAnException {};

TEST(ProcessException, ResultCodeExceptionsReportTheirCodeAndDisplayText) {
  const Result result = Process([] { throw hca::CheckResultFailedException("file.cpp", 12, kOperationTimeout); });
  EXPECT_EQ(result.first, kOperationTimeout);
  EXPECT_EQ(result.second, "CheckResultFailedException - 0x80000221 (Operation timeout). At file.cpp(12) ");
}

TEST(ProcessException, CheckFailedReportsUnspecifiedErrorThoughItHasNoResultCode) {
  const Result result = Process([] { HCA_CHECK(false) << "PaletteFactory is nullptr"; });
  EXPECT_EQ(result.first, kUnspecifiedError);
  EXPECT_EQ(result.second.rfind("CheckFailedException - PaletteFactory is nullptr. At ", 0), 0u) << result.second;
  EXPECT_NE(result.second.find("process_exception_test.cpp("), std::string::npos);
  EXPECT_EQ(result.second.back(), ' ');
}

TEST(ProcessException, StandardExceptionsMapToTheirCodes) {
  EXPECT_EQ(Process([] { throw std::invalid_argument("bad arg"); }), Result(kInvalidArgument, "bad arg"));
  EXPECT_EQ(Process([] { throw std::length_error("too long"); }), Result(kInvalidSize, "too long"));
  EXPECT_EQ(Process([] { throw std::out_of_range("beyond"); }), Result(kOutOfRange, "beyond"));
  EXPECT_EQ(Process([] { throw std::runtime_error("boom"); }), Result(kUnspecifiedError, "std::exception: boom"));
  // Derived from a mapped class: the first matching handler wins.
  EXPECT_EQ(Process([] { throw std::domain_error("dom"); }).second, "std::exception: dom");
}

TEST(ProcessException, BaseHcaExceptionFallsToTheStdExceptionRow) {
  EXPECT_EQ(Process([] { throw hca::exception("f", 1, "plain"); }), Result(kUnspecifiedError, "std::exception: plain"));
  EXPECT_EQ(Process([] { throw hca::exception("f", 1); }),
            Result(kUnspecifiedError, "std::exception: Unknown exception"));
}

TEST(ProcessException, AnythingElseIsANonStdException) {
  EXPECT_EQ(Process([] { throw 42; }), Result(kUnspecifiedError, "non-std exception"));
  EXPECT_EQ(Process([] { throw NotAnException{}; }), Result(kUnspecifiedError, "non-std exception"));
}

TEST(ProcessException, CommonUtilsVariantBehavesTheSame) {
  const auto throwCheck = [] { throw hca::CheckResultFailedException("x.cpp", 5, kNotFound); };
  EXPECT_EQ(Process(throwCheck, &common::utils::ProcessException), Process(throwCheck));
  const auto throwStd = [] { throw std::out_of_range("r"); };
  EXPECT_EQ(Process(throwStd, &common::utils::ProcessException), Result(kOutOfRange, "r"));
}

TEST(ProcessExceptionDeathTest, OutsideACatchBlockEndsTheProcess) {
  EXPECT_DEATH(fdn::utils::ProcessException(), "");
}

}  // namespace
