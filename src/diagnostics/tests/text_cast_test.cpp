#include <diagnostics/result_code.h>
#include <diagnostics/text_cast.h>

#include <gtest/gtest.h>

#include <clocale>
#include <new>
#include <string>
#include <typeinfo>

namespace {

using namespace hca::result_code;

// Runs a test body in the given C locale and restores the previous one.
class LocaleScope {
 public:
  explicit LocaleScope(const char* name) : m_previous(std::setlocale(LC_ALL, nullptr)) {
    m_active = std::setlocale(LC_ALL, name) != nullptr;
  }
  ~LocaleScope() { std::setlocale(LC_ALL, m_previous.c_str()); }
  bool Active() const { return m_active; }

 private:
  std::string m_previous;
  bool m_active = false;
};

TEST(TextCast, AsciiRoundTripsInTheCLocale) {
  LocaleScope locale("C");
  const std::string bytes("Expression failed\0end", 21);
  const std::u16string utf16 = hca::text::Cast<std::u16string>(std::string_view(bytes));
  EXPECT_EQ(utf16, std::u16string(u"Expression failed\0end", 21));
  EXPECT_EQ(hca::text::Cast<std::string>(utf16), bytes);
  EXPECT_EQ(hca::text::Cast<std::string>(std::u16string_view()), "");
}

TEST(TextCast, SurrogatePairsJoinAndSplitInUtf8) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.Active());
  const std::u16string smiley = u"a\U0001F600b\u00E9";
  ASSERT_EQ(smiley.size(), 5u);  // a, high, low, b, e-acute
  EXPECT_EQ(hca::text::Cast<std::string>(smiley), "a\xF0\x9F\x98\x80" "b\xC3\xA9");
  EXPECT_EQ(hca::text::Cast<std::u16string>(std::string_view("a\xF0\x9F\x98\x80" "b\xC3\xA9")), smiley);
  EXPECT_EQ(hca::text::Cast<std::u16string>(std::wstring_view(L"a\U0001F600b\u00E9")), smiley);
}

TEST(TextCast, LoneSurrogateIsPassedOnAndRejectedByTheLocale) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.Active());
  std::string out;
  // A high surrogate followed by no low one, and a low one on its own: each goes to wcrtomb as it
  // stands, and UTF-8 has no encoding for it.
  EXPECT_EQ(hca::text::Utf16ToBytes(u"x\xD83Dy", out), kInvalidArgument);
  EXPECT_EQ(hca::text::Utf16ToBytes(u"\xDE00", out), kInvalidArgument);
  EXPECT_THROW(hca::text::Cast<std::string>(std::u16string_view(u"\xD83D")), std::bad_cast);
  // Two highs in a row don't form a pair either.
  EXPECT_EQ(hca::text::Utf16ToBytes(u"\xD83D\xD83D", out), kInvalidArgument);
}

TEST(TextCast, RejectedCharactersGiveInvalidArgumentAndBadCast) {
  LocaleScope locale("C");
  std::string bytes;
  EXPECT_EQ(hca::text::Utf16ToBytes(u"caf\u00E9", bytes), kInvalidArgument);
  std::u16string utf16;
  EXPECT_EQ(hca::text::BytesToUtf16("caf\xC3\xA9", utf16), kInvalidArgument);
  EXPECT_THROW(hca::text::Cast<std::u16string>(std::string_view("\xFF")), std::bad_cast);
  EXPECT_EQ(hca::text::WideToUtf16(std::wstring(1, static_cast<wchar_t>(0x110000)), utf16), kInvalidArgument);
  EXPECT_EQ(hca::text::WideToUtf16(L"ok", utf16), kNoError);
  EXPECT_EQ(utf16, u"ok");
}

TEST(TextCast, IncompleteMultibyteSequenceIsRejected) {
  LocaleScope locale("C.UTF-8");
  ASSERT_TRUE(locale.Active());
  std::u16string out;
  EXPECT_EQ(hca::text::BytesToUtf16("ab\xE2\x82", out), kInvalidArgument);
  EXPECT_EQ(hca::text::BytesToUtf16("ab\xE2\x82\xAC", out), kNoError);
  EXPECT_EQ(out, u"ab\u20AC");
}

}  // namespace
