#include <diagnostics/check.h>
#include <diagnostics/exception.h>
#include <diagnostics/result_code.h>
#include <diagnostics/result_code_exception.h>
#include <diagnostics/text_cast.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <typeinfo>

namespace {

using namespace hca::result_code;

std::string Bytes(const std::u16string& text) { return hca::text::Cast<std::string>(text); }

TEST(CheckFailedException, DisplayTextWithoutStreamedTextKeepsTheTrailingBlank) {
  const hca::CheckFailedException e("/src/palette_factory.cpp", 42);
  EXPECT_EQ(Bytes(e.DisplayText()), "CheckFailedException - . At /src/palette_factory.cpp(42) ");
  EXPECT_STREQ(e.what(), "CheckFailedException");
  EXPECT_TRUE(e.Text().empty());
  EXPECT_EQ(e.Context(), nullptr);
}

TEST(CheckFailedException, StreamedValuesAreJoinedWithoutSeparator) {
  const hca::CheckFailedException e("f.cpp", 7);
  const char* server = "hl.settings_manager.MSmgr";
  e << "ServiceLocatorConnect() fail: " << server << 12 << 34u << -5 << static_cast<const char*>(nullptr);
  EXPECT_EQ(Bytes(e.Text()), "ServiceLocatorConnect() fail: hl.settings_manager.MSmgr1234-5");
  EXPECT_EQ(Bytes(e.DisplayText()),
            "CheckFailedException - ServiceLocatorConnect() fail: hl.settings_manager.MSmgr1234-5. At f.cpp(7) ");
}

TEST(CheckFailedException, CheckRecordsFileAndLineAndNoContext) {
  const int expectedLine = __LINE__ + 2;
  try {
    HCA_CHECK(1 + 1 == 3) << "translation installer is null";
    FAIL() << "no throw";
  } catch (const hca::CheckFailedException& e) {
    EXPECT_STREQ(e.File(), __FILE__);
    EXPECT_EQ(e.Line(), static_cast<std::uint32_t>(expectedLine));
    EXPECT_EQ(Bytes(e.Text()), "translation installer is null");
    EXPECT_EQ(e.Context(), nullptr);
    EXPECT_EQ(hca::get_result_code(e), kExceptionHasNoResultCode);
  }
}

TEST(CheckFailedException, PassingCheckEvaluatesConditionOnceAndStreamsNothing) {
  int evaluated = 0;
  int streamed = 0;
  const auto stream = [&streamed] { return ++streamed; };
  HCA_CHECK(++evaluated > 0) << stream();
  EXPECT_EQ(evaluated, 1);
  EXPECT_EQ(streamed, 0);
}

TEST(CheckResultFailedException, TextBeginsWithHexCodeWhenNothingWasStreamed) {
  const hca::CheckResultFailedException e("file.cpp", 3, kNotFound);
  EXPECT_EQ(Bytes(e.Text()), "0x8000004c (Not found)");
  EXPECT_EQ(Bytes(e.DisplayText()), "CheckResultFailedException - 0x8000004c (Not found). At file.cpp(3) ");
  EXPECT_STREQ(e.what(), "CheckResultFailedException");
}

TEST(CheckResultFailedException, CheckCarriesCodeAndStreamedText) {
  try {
    HCA_CHECK_RESULT(kUnspecifiedError) << "Failed to create non persistent settings manager";
    FAIL() << "no throw";
  } catch (const hca::CheckResultFailedException& e) {
    EXPECT_EQ(Bytes(e.Text()), "Failed to create non persistent settings manager: 0x8000004b (Unspecified error)");
    EXPECT_EQ(hca::get_result_code(e), kUnspecifiedError);
    ASSERT_NE(e.Context(), nullptr);
    // The context's message is kept but hidden behind the overridden what().
    EXPECT_EQ(e.Context()->message, "Expression failed");
    EXPECT_STREQ(e.hca::exception::what(), "Expression failed");
    const hca::property* result = e.Context()->properties.Find("hca.result");
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->TypeId(), 0x2B193A6Fu);
    EXPECT_EQ(result->Tag(), 0x14u);
    EXPECT_EQ(result->Value<int>(), std::optional<int>(kUnspecifiedError));
  }
}

TEST(CheckResultFailedException, NonNegativeResultsPassAndAreEvaluatedOnce) {
  int calls = 0;
  const auto call = [&calls](int rc) {
    ++calls;
    return rc;
  };
  HCA_CHECK_RESULT(call(0)) << "never";
  HCA_CHECK_RESULT(call(1)) << "never";
  HCA_CHECK_RESULT(call(0x7FFFFFFF)) << "never";
  EXPECT_EQ(calls, 3);
  EXPECT_THROW(HCA_CHECK_RESULT(call(-1)), hca::CheckResultFailedException);
  EXPECT_EQ(calls, 4);
}

TEST(ResultCodeException, ResultMessageAndTextFollowTheFacility) {
  const hca::ResultCodeException platform("f", 1, kPathNotFound);
  EXPECT_EQ(Bytes(platform.ResultMessage()), "Path not found");
  EXPECT_EQ(Bytes(platform.Text()), "0x80010103 (Path not found)");
  const hca::ResultCodeException system("f", 1, static_cast<int>(0x80060002u));
  EXPECT_EQ(Bytes(system.ResultMessage()), "Unknown result code");
  const hca::ResultCodeException small("f", 1, 5);
  // Padded to 8 digits here, unlike ResultCodeText.
  EXPECT_EQ(Bytes(small.Text()), "0x00000005 (Unknown result code)");
  EXPECT_STREQ(small.what(), "Expression failed");
}

TEST(GetResultCode, PrefersHcaResultThenOsResultThenModuleResult) {
  hca::exception e("f", 1, "message");
  EXPECT_EQ(hca::get_result_code(e), kExceptionHasNoResultCode);
  auto& properties = e.Context()->properties;

  properties.Set("os.module_result", 0, 7, static_cast<unsigned char>(1));
  EXPECT_EQ(hca::get_result_code(e), kUnspecifiedPlatformError);
  properties.Set("os.module_result", 0, 7, static_cast<unsigned char>(0));
  EXPECT_EQ(hca::get_result_code(e), 0);

  properties.Set("os.result", 0, 0x15, 22u);
  EXPECT_EQ(hca::get_result_code(e), kInvalidArgument);

  e.SetResultCode(kNotReady);
  EXPECT_EQ(hca::get_result_code(e), kNotReady);
}

TEST(GetResultCode, MatchingNameWithWrongTagOrNoValueFallsThrough) {
  hca::exception e("f", 1, "message");
  auto& properties = e.Context()->properties;
  properties.Set("hca.result", 0x2B193A6F, 0x15, static_cast<int>(kNotFound));
  EXPECT_EQ(hca::get_result_code(e), kExceptionHasNoResultCode);

  properties.Set("os.result", 0, 0x15, 2u);
  EXPECT_EQ(hca::get_result_code(e), kFileNotFound);

  properties.SetWithoutValue("os.result", 0, 0x15);
  properties.Set("os.module_result", 0, 0x14, static_cast<unsigned char>(1));
  EXPECT_EQ(hca::get_result_code(e), kExceptionHasNoResultCode);

  // Replacing by name keeps one property and takes the new tag and value.
  properties.Set("hca.result", 0x2B193A6F, 0x14, static_cast<int>(kNotFound));
  EXPECT_EQ(hca::get_result_code(e), kNotFound);
  EXPECT_EQ(properties.Properties().size(), 3u);
}

TEST(PropertyBag, NamesAreComparedByBytesAndLengthAndCutAt31) {
  hca::property_bag bag;
  bag.Set("hca.result", 1, 0x14, 1);
  bag.Set("hca.resul", 1, 0x14, 2);
  bag.Set("hca.result2", 1, 0x14, 3);
  ASSERT_EQ(bag.Properties().size(), 3u);
  EXPECT_EQ(bag.Find("hca.result")->Value<int>(), 1);
  const std::string longName(40, 'n');
  bag.Set(longName, 1, 0x14, 4);
  EXPECT_EQ(bag.Find(longName)->Name().size(), 31u);
  bag.Set(std::string(31, 'n'), 1, 0x14, 5);
  EXPECT_EQ(bag.Properties().size(), 4u);
  EXPECT_EQ(bag.Find(longName)->Value<int>(), 5);
}

TEST(Exception, WhatWithoutContextIsUnknownException) {
  const hca::exception bare("f", 1);
  EXPECT_STREQ(bare.what(), "Unknown exception");
  const hca::exception withMessage("f", 1, "something broke");
  EXPECT_STREQ(withMessage.what(), "something broke");
}

TEST(Exception, CopyOutlivesItsSourceOnAnotherThread) {
  auto source = std::make_unique<hca::ResultCodeException>("f", 1, kLocked);
  const hca::exception::ctx* shared = source->Context();
  hca::ResultCodeException copy(*source);
  EXPECT_EQ(copy.Context(), shared);
  EXPECT_EQ(shared->refCount.load(), 2u);

  std::string whatInThread;
  int codeInThread = 0;
  std::thread reader([&whatInThread, &codeInThread, copy = std::move(copy)]() mutable {
    hca::ResultCodeException another(copy);  // a third holder on this thread
    whatInThread = copy.hca::exception::what();
    codeInThread = hca::get_result_code(another);
  });
  source.reset();
  reader.join();
  EXPECT_EQ(whatInThread, "Expression failed");
  EXPECT_EQ(codeInThread, kLocked);
}

TEST(Exception, AssignmentReleasesTheOldContextAndSharesTheNew) {
  hca::exception a("a", 1, "first");
  hca::exception b("b", 2, "second");
  const hca::exception::ctx* second = b.Context();
  a = b;
  EXPECT_EQ(a.Context(), second);
  EXPECT_EQ(second->refCount.load(), 2u);
  EXPECT_STREQ(a.what(), "second");
  EXPECT_STREQ(a.File(), "b");
  a = a;
  EXPECT_EQ(second->refCount.load(), 2u);
}

TEST(ExceptionBase, CloneAndThrowKeepTheDynamicType) {
  const hca::CheckResultFailedException original("f", 9, kNotFound);
  original << "text";
  const std::unique_ptr<hca::Exception> clone = original.Clone();
  ASSERT_NE(dynamic_cast<hca::CheckResultFailedException*>(clone.get()), nullptr);
  EXPECT_EQ(clone->Text(), original.Text());
  EXPECT_EQ(clone->Context(), original.Context());
  try {
    clone->Throw();
  } catch (const hca::CheckResultFailedException& e) {
    EXPECT_EQ(hca::get_result_code(e), kNotFound);
    EXPECT_EQ(e.Line(), 9u);
    return;
  } catch (...) {
  }
  FAIL() << "Throw didn't throw the dynamic type";
}

// An exception whose Text fails with a chosen exception, for DisplayText's failure rules.
template <typename Failure>
class FailingText : public hca::ExceptionBase<FailingText<Failure>, hca::Exception> {
 public:
  FailingText() : hca::ExceptionBase<FailingText<Failure>, hca::Exception>("f", 1) {}
  hca::Exception::text_t Text() const override { throw Failure(); }
};

TEST(Exception, DisplayTextSwallowsOnlyOutOfMemory) {
  EXPECT_TRUE(FailingText<std::bad_alloc>().DisplayText().empty());
  EXPECT_THROW(FailingText<std::bad_cast>().DisplayText(), std::bad_cast);
}

}  // namespace
