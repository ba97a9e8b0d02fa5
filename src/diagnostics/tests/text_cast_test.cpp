#include <diagnostics/result_code.h>
#include <diagnostics/text_cast.h>

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <typeinfo>

namespace {

using namespace hca::result_code;
using hca::text::Cast;

// Switches the C locale while alive.
struct LocaleScope {
    explicit LocaleScope(const char* name)
        : previous(std::setlocale(LC_ALL, nullptr)), active(std::setlocale(LC_ALL, name) != nullptr) {}
    ~LocaleScope() { std::setlocale(LC_ALL, previous.c_str()); }
    std::string previous;
    bool active;
};

TEST(TextCast, CLocaleRoundTripsAsciiWithZerosAndRejectsEverythingElse) {
    LocaleScope locale("C");
    const std::string bytes("Expression failed\0end", 21);
    const std::u16string utf16 = Cast<std::u16string>(std::string_view(bytes));
    EXPECT_EQ(utf16, std::u16string(u"Expression failed\0end", 21));
    EXPECT_EQ(Cast<std::string>(utf16), bytes);
    std::string outBytes;
    EXPECT_EQ(hca::text::Utf16ToBytes(u"caf\u00E9", outBytes), kInvalidArgument);
    std::u16string out;
    EXPECT_EQ(hca::text::BytesToUtf16("caf\xC3\xA9", out), kInvalidArgument);
    EXPECT_THROW(Cast<std::u16string>(std::string_view("\xFF")), std::bad_cast);
    EXPECT_EQ(hca::text::WideToUtf16(std::wstring(1, static_cast<wchar_t>(0x110000)), out), kInvalidArgument);
}

TEST(TextCast, Utf8LocaleJoinsAndSplitsSurrogatePairsButRejectsLoneOnes) {
    LocaleScope locale("C.UTF-8");
    ASSERT_TRUE(locale.active);
    const std::u16string smiley = u"a\U0001F600b\u00E9";
    const std::string_view utf8(
        "a\xF0\x9F\x98\x80"
        "b\xC3\xA9");  // "b" apart: \x80b would be one escape
    EXPECT_EQ(Cast<std::string>(smiley), utf8);
    EXPECT_EQ(Cast<std::u16string>(utf8), smiley);
    EXPECT_EQ(Cast<std::u16string>(std::wstring_view(L"a\U0001F600b\u00E9")), smiley);
    // A high surrogate without its low one, a lone low one, two highs: each reaches wcrtomb as it stands.
    std::string out;
    EXPECT_EQ(hca::text::Utf16ToBytes(u"x\xD83Dy", out), kInvalidArgument);
    EXPECT_EQ(hca::text::Utf16ToBytes(u"\xDE00", out), kInvalidArgument);
    EXPECT_EQ(hca::text::Utf16ToBytes(u"\xD83D\xD83D", out), kInvalidArgument);
    EXPECT_THROW(Cast<std::string>(std::u16string_view(u"\xD83D")), std::bad_cast);
    std::u16string utf16;
    EXPECT_EQ(hca::text::BytesToUtf16("ab\xE2\x82", utf16), kInvalidArgument);
}

}  // namespace
