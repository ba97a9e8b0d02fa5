#include <diagnostics/code_text_pair_formatter.h>
#include <diagnostics/result_code.h>

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <string>
#include <utility>

namespace {

using namespace hca::result_code;

TEST(ResultCodeText, BothVariantsShowTheTableTextOrUnknownAndTheHexNumber) {
    // Besides table entries: gaps of the runtime table (among them codes that the settings client and the
    // stubs really return), the gap of the platform table and the value past its end, facility 1 with bit
    // 31 clear (the platform table is keyed by the whole code) and a facility above 1.
    const std::pair<unsigned, const char*> cases[] = {
        {0, "No error = 0x00"},
        {1, "False = 0x01"},
        {2, "Unknown result code = 0x02"},
        {kInvalidArgument, "Invalid argument = 0x80000046"},
        {kOperationTimeout, "Operation timeout = 0x80000221"},
        {kDateTimeSyntaxError, "DateTime syntax error = 0x80000313"},
        {kGuidSyntaxError, "GUID syntax error = 0x80000311"},
        {0x80000048, "Unknown result code = 0x80000048"},
        {0x80000074, "Unknown result code = 0x80000074"},
        {0x80008001, "Unknown result code = 0x80008001"},
        {kUnspecifiedPlatformError, "Unspecified platform error = 0x80010100"},
        {kCannotOpenAnAnonymousLevelSecurityToken,
         "Cannot open an anonymous level security token = 0x80010110"},
        {kSystemImageBadFormat, "System image bad format = 0x80010117"},
        {0x8001010A, "Unknown result code = 0x8001010a"},
        {0x80010118, "Unknown result code = 0x80010118"},
        {0x0001FFFF, "Unknown result code = 0x1ffff"},
        {0x00010100, "Unknown result code = 0x10100"},
        {0x80060002, "Unknown result code = 0x80060002"},
        {0xFFFFFFFF, "Unknown result code = 0xffffffff"}};
    for (const auto& [code, text] : cases) {
        EXPECT_EQ(hcax::ResultCodeText(static_cast<int>(code)), text);
        EXPECT_EQ(fdn::hcax::ResultCodeText(static_cast<int>(code)), text);
    }
}

TEST(RtlResultCodeMessage, LooksOnlyAtTheWholeValueNotTheFacility) {
    EXPECT_EQ(hca::rtl_result_code_message(kNotFound), "Not found");
    EXPECT_EQ(hca::rtl_result_code_message(kExceptionHasNoResultCode), "Exception has no result code");
    // Platform codes are not in this table, and the low half alone doesn't match either.
    EXPECT_EQ(hca::rtl_result_code_message(kFileNotFound), "Unknown result code");
    EXPECT_EQ(hca::rtl_result_code_message(0x46), "Unknown result code");
}

TEST(ResultCodeFromSystemError, MapsTheTableAndTurnsOtherNumbersIntoSystemOrPlatformErrors) {
    // Numbers outside the table (3, and Linux's ELOOP 40) are raw system errors up to 0xFFFF, platform errors
    // above.
    const std::pair<unsigned, unsigned> cases[] = {{0, 0},
                                                   {1, 0x80000045},
                                                   {2, 0x80010102},
                                                   {5, 0x80000059},
                                                   {8, 0x80010117},
                                                   {9, 0x80010101},
                                                   {12, 0x80000041},
                                                   {13, 0x80000045},
                                                   {16, 0x8000004F},
                                                   {17, 0x80010105},
                                                   {20, 0x80010103},
                                                   {22, 0x80000046},
                                                   {26, 0x8000004F},
                                                   {27, 0x80000078},
                                                   {28, 0x80000062},
                                                   {62, 0x8000006A},
                                                   {63, 0x8000005C},
                                                   {84, 0x80000044},
                                                   {3, 0x80060003},
                                                   {40, 0x80060028},
                                                   {0xFFFF, 0x8006FFFF},
                                                   {0x10000, 0x80010100},
                                                   {0xFFFFFFFE, 0x80010100}};
    for (const auto& [error, code] : cases) {
        EXPECT_EQ(static_cast<unsigned>(hca::posix::ResultCodeFromSystemError(error)), code)
            << "error " << error;
    }
}

TEST(CodeTextPairFormatter, PrintsTheCodeTextPaddedAsAskedAndDropsTheSecondMember) {
    EXPECT_EQ(fmt::format("result = {}", std::pair<int, std::string>{kNotFound, "dropped"}),
              "result = Not found = 0x8000004c");
    EXPECT_EQ(fmt::format("[{:>18}]", std::pair<int, std::string>{1, "x"}), "[      False = 0x01]");
}

}  // namespace
