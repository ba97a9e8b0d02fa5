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
#include <tuple>

namespace {

using namespace hca::result_code;

std::string Bytes(const std::u16string& text) {
    return hca::text::Cast<std::string>(text);
}

TEST(CheckFailedException, TextAndDisplayTextWithAndWithoutStreamedValues) {
    const hca::CheckFailedException bare("/src/palette_factory.cpp", 42);
    EXPECT_TRUE(bare.Text().empty());
    EXPECT_EQ(Bytes(bare.DisplayText()), "CheckFailedException - . At /src/palette_factory.cpp(42) ");
    EXPECT_STREQ(bare.what(), "CheckFailedException");
    const hca::CheckFailedException e("f.cpp", 7);
    e << "Connect() fail: "
      << "hl.MSmgr" << 12 << 34u << -5 << static_cast<const char*>(nullptr);
    EXPECT_EQ(Bytes(e.Text()), "Connect() fail: hl.MSmgr1234-5");
    EXPECT_EQ(Bytes(e.DisplayText()), "CheckFailedException - Connect() fail: hl.MSmgr1234-5. At f.cpp(7) ");
}

TEST(CheckResultFailedException, TextAndDisplayTextWithAndWithoutStreamedValues) {
    // The code's text comes from its facility's table.
    const hca::CheckResultFailedException bare("file.cpp", 3, kPathNotFound);
    EXPECT_EQ(Bytes(bare.Text()), "0x80010103 (Path not found)");
    EXPECT_EQ(Bytes(bare.DisplayText()),
              "CheckResultFailedException - 0x80010103 (Path not found). At file.cpp(3) ");
    EXPECT_STREQ(bare.what(), "CheckResultFailedException");
    // Padded to 8 digits here, unlike ResultCodeText.
    EXPECT_EQ(Bytes(hca::CheckResultFailedException("f", 1, 5).Text()), "0x00000005 (Unknown result code)");
    const hca::CheckResultFailedException e("f.cpp", 9, kUnspecifiedError);
    e << "Failed to create " << 2;
    EXPECT_EQ(Bytes(e.Text()), "Failed to create 2: 0x8000004b (Unspecified error)");
    EXPECT_EQ(
        Bytes(e.DisplayText()),
        "CheckResultFailedException - Failed to create 2: 0x8000004b (Unspecified error). At f.cpp(9) ");
}

TEST(Check, ThrowsOnlyOnFailureWithFileLineAndCodeEvaluatingEachArgumentOnce) {
    int evaluated = 0;
    const auto count = [&evaluated](int value) { return ++evaluated, value; };
    // A passing check evaluates its condition once and its streamed values never.
    HCA_CHECK(count(1) > 0) << count(0);
    for (const int rc : {0, 1, 0x7FFFFFFF}) {
        HCA_CHECK_RESULT(count(rc)) << count(0);
    }
    EXPECT_EQ(evaluated, 4);
    const std::uint32_t line = __LINE__ + 2;
    try {
        HCA_CHECK(count(1) == 3) << "translation installer is null";
        ADD_FAILURE() << "no throw";
    } catch (const hca::CheckFailedException& e) {
        EXPECT_STREQ(e.File(), __FILE__);
        EXPECT_EQ(e.Line(), line);
        EXPECT_EQ(Bytes(e.Text()), "translation installer is null");
        EXPECT_EQ(e.Context(), nullptr);
    }
    try {
        HCA_CHECK_RESULT(count(kUnspecifiedError)) << "failed";
        ADD_FAILURE() << "no throw";
    } catch (const hca::CheckResultFailedException& e) {
        EXPECT_EQ(evaluated, 6);
        EXPECT_EQ(hca::get_result_code(e), kUnspecifiedError);
        // The context's message is kept but hidden behind the overridden what().
        EXPECT_STREQ(e.hca::exception::what(), "Expression failed");
        const hca::property* result = e.Context()->properties.Find("hca.result");
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(std::make_tuple(result->TypeId(), result->Tag(), result->Value<int>()),
                  std::make_tuple(0x2B193A6Fu, 0x14u, std::optional<int>(kUnspecifiedError)));
    }
}

TEST(GetResultCode, TakesHcaResultThenOsResultThenModuleResultWhenNameTagAndValueMatch) {
    const hca::exception bare("f", 1);  // no context at all
    EXPECT_STREQ(bare.what(), "Unknown exception");
    EXPECT_EQ(hca::get_result_code(bare), kExceptionHasNoResultCode);
    hca::exception e("f", 1, "message");
    EXPECT_EQ(hca::get_result_code(e), kExceptionHasNoResultCode);
    auto& properties = e.Context()->properties;
    properties.Set("os.module_result", 0, 7, static_cast<unsigned char>(1));
    EXPECT_EQ(hca::get_result_code(e), kUnspecifiedPlatformError);
    properties.Set("os.result", 0, 0x14, 22u);  // wrong tag
    EXPECT_EQ(hca::get_result_code(e), kUnspecifiedPlatformError);
    properties.Set("os.result", 0, 0x15, 22u);
    EXPECT_EQ(hca::get_result_code(e), kInvalidArgument);
    properties.Set("hca.result", 0x2B193A6F, 0x15, static_cast<int>(kNotFound));  // wrong tag
    EXPECT_EQ(hca::get_result_code(e), kInvalidArgument);
    properties.SetWithoutValue("os.result", 0, 0x15);
    EXPECT_EQ(hca::get_result_code(e), kUnspecifiedPlatformError);
    properties.Set("os.module_result", 0, 0x14, static_cast<unsigned char>(1));  // wrong tag
    EXPECT_EQ(hca::get_result_code(e), kExceptionHasNoResultCode);
    e.SetResultCode(kNotReady);
    EXPECT_EQ(hca::get_result_code(e), kNotReady);
    EXPECT_EQ(properties.Properties().size(), 3u);  // replaced by name
}

TEST(Exception, CopiesShareOneContextThatOutlivesTheSourceOnAnotherThread) {
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

}  // namespace
