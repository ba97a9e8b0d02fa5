#include <diagnostics/code_text_pair_formatter.h>
#include <diagnostics/result_code.h>

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <string>
#include <utility>

namespace {

using namespace hca::result_code;

TEST(ResultCodeText, ShowsTextAndHexNumberPaddedToTwoDigits) {
  EXPECT_EQ(hcax::ResultCodeText(0), "No error = 0x00");
  EXPECT_EQ(hcax::ResultCodeText(1), "False = 0x01");
  EXPECT_EQ(hcax::ResultCodeText(kInvalidArgument), "Invalid argument = 0x80000046");
  EXPECT_EQ(hcax::ResultCodeText(kOperationTimeout), "Operation timeout = 0x80000221");
  EXPECT_EQ(hcax::ResultCodeText(kDateTimeSyntaxError), "DateTime syntax error = 0x80000313");
  EXPECT_EQ(hcax::ResultCodeText(kGuidSyntaxError), "GUID syntax error = 0x80000311");
}

TEST(ResultCodeText, UsesThePlatformTableForFacilityOne) {
  EXPECT_EQ(hcax::ResultCodeText(kUnspecifiedPlatformError), "Unspecified platform error = 0x80010100");
  EXPECT_EQ(hcax::ResultCodeText(kCannotOpenAnAnonymousLevelSecurityToken),
            "Cannot open an anonymous level security token = 0x80010110");
  EXPECT_EQ(hcax::ResultCodeText(kSystemImageBadFormat), "System image bad format = 0x80010117");
  // The gap of the platform table and the value just past its end.
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x8001010Au)), "Unknown result code = 0x8001010a");
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x8001010Fu)), "Unknown result code = 0x8001010f");
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x80010118u)), "Unknown result code = 0x80010118");
}

TEST(ResultCodeText, CodesWithoutEntryAreUnknown) {
  // Gaps of the runtime table, among them codes that the settings client and the stubs really return.
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x80000048u)), "Unknown result code = 0x80000048");
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x80000074u)), "Unknown result code = 0x80000074");
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x80008001u)), "Unknown result code = 0x80008001");
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x80000018u)), "Unknown result code = 0x80000018");
  EXPECT_EQ(hcax::ResultCodeText(2), "Unknown result code = 0x02");
  // Facility 1 with bit 31 clear: the platform table is keyed by the whole code.
  EXPECT_EQ(hcax::ResultCodeText(0x0001FFFF), "Unknown result code = 0x1ffff");
  EXPECT_EQ(hcax::ResultCodeText(0x00010100), "Unknown result code = 0x10100");
  // Facilities above 1.
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x80060002u)), "Unknown result code = 0x80060002");
  EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(0x80020046u)), "Unknown result code = 0x80020046");
}

TEST(ResultCodeText, FoundationVariantBehavesTheSame) {
  for (const int code : {0, 1, static_cast<int>(kNotFound), static_cast<int>(kInvalidHandle), 0x0001FFFF,
                         static_cast<int>(0x80060002u), -1}) {
    EXPECT_EQ(fdn::hcax::ResultCodeText(code), hcax::ResultCodeText(code)) << code;
  }
  EXPECT_EQ(fdn::hcax::ResultCodeText(-1), "Unknown result code = 0xffffffff");
}

TEST(RtlResultCodeMessage, LooksOnlyAtTheWholeValueNotTheFacility) {
  EXPECT_EQ(hca::rtl_result_code_message(kUnspecifiedError), "Unspecified error");
  EXPECT_EQ(hca::rtl_result_code_message(kNotFound), "Not found");
  EXPECT_EQ(hca::rtl_result_code_message(kExceptionHasNoResultCode), "Exception has no result code");
  EXPECT_EQ(hca::rtl_result_code_message(kNonBase64Symbol), "Non base64 symbol");
  EXPECT_EQ(hca::rtl_result_code_message(kInterfaceNotSupported), "Interface not supported");
  // Platform codes are not in this table, and the low half alone doesn't match either.
  EXPECT_EQ(hca::rtl_result_code_message(kFileNotFound), "Unknown result code");
  EXPECT_EQ(hca::rtl_result_code_message(0x46), "Unknown result code");
  EXPECT_EQ(hca::rtl_result_code_message(static_cast<int>(0x80000314u)), "Unknown result code");
}

TEST(ResultCodeFromSystemError, MapsEachKnownPlatformErrorNumber) {
  using hca::posix::ResultCodeFromSystemError;
  const std::pair<unsigned, unsigned> expected[] = {
      {0, 0},           {1, 0x80000045},  {2, 0x80010102},  {5, 0x80000059},  {8, 0x80010117},
      {9, 0x80010101},  {12, 0x80000041}, {13, 0x80000045}, {16, 0x8000004F}, {17, 0x80010105},
      {20, 0x80010103}, {22, 0x80000046}, {26, 0x8000004F}, {27, 0x80000078}, {28, 0x80000062},
      {62, 0x8000006A}, {63, 0x8000005C}, {84, 0x80000044},
  };
  for (const auto& [error, code] : expected) {
    EXPECT_EQ(static_cast<unsigned>(ResultCodeFromSystemError(error)), code) << "error " << error;
  }
}

TEST(ResultCodeFromSystemError, OtherNumbersBecomeSystemFacilityOrPlatformError) {
  using hca::posix::ResultCodeFromSystemError;
  // Linux's numbers for ELOOP and ENAMETOOLONG are not the platform's: they are raw errors here.
  EXPECT_EQ(static_cast<unsigned>(ResultCodeFromSystemError(40)), 0x80060028u);
  EXPECT_EQ(static_cast<unsigned>(ResultCodeFromSystemError(3)), 0x80060003u);
  EXPECT_EQ(static_cast<unsigned>(ResultCodeFromSystemError(0xFFFF)), 0x8006FFFFu);
  EXPECT_EQ(static_cast<unsigned>(ResultCodeFromSystemError(0x10000)), 0x80010100u);
  EXPECT_EQ(static_cast<unsigned>(ResultCodeFromSystemError(0xFFFFFFFEu)), 0x80010100u);
}

TEST(CodeTextPairFormatter, PrintsTheCodeTextAndDropsTheSecondMember) {
  const std::pair<int, std::string> result{kNotFound, "the text that is dropped"};
  EXPECT_EQ(fmt::format("result = {}", result), "result = Not found = 0x8000004c");
  EXPECT_EQ(fmt::format("{}", std::pair<int, std::string>{0, ""}), "No error = 0x00");
  // Format specifications apply to the printed text.
  EXPECT_EQ(fmt::format("[{:>18}]", std::pair<int, std::string>{1, "x"}), "[      False = 0x01]");
}

}  // namespace
