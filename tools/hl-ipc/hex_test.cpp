// The command line's hex and number parsing.
#include <gtest/gtest.h>

#include "hex.h"

namespace hl_ipc {
namespace {

TEST(HexTest, PairsOfDigitsBecomeBytesIgnoringSeparatorsAndPrefix) {
    EXPECT_EQ(ParseHex("0x01aB ff:10"), (std::vector<unsigned char>{0x01, 0xab, 0xff, 0x10}));
    EXPECT_EQ(ParseHex("-"), std::vector<unsigned char>{});
    EXPECT_EQ(ParseHex(""), std::vector<unsigned char>{});
}

TEST(HexTest, OddDigitCountOrForeignCharacterIsRefused) {
    EXPECT_FALSE(ParseHex("abc").has_value());
    EXPECT_FALSE(ParseHex("zz").has_value());
    EXPECT_FALSE(ParseHex("0g").has_value());
}

TEST(HexTest, FormattingGroupsFourBytesAndBreaksLinesAfterThirtyTwo) {
    const std::vector<unsigned char> bytes{0, 1, 2, 3, 0xfe};
    EXPECT_EQ(FormatHex(bytes.data(), bytes.size()), "00010203 fe");
    const std::vector<unsigned char> many(33, 0xaa);
    const std::string text = FormatHex(many.data(), many.size());
    EXPECT_NE(text.find("\n  aa"), std::string::npos);
}

TEST(HexTest, NumbersAcceptDecimalAndHexWithinTheLimit) {
    EXPECT_EQ(ParseNumber("65535", 0xFFFF), 65535ul);
    EXPECT_EQ(ParseNumber("0x10", 0xFFFF), 16ul);
    EXPECT_FALSE(ParseNumber("65536", 0xFFFF).has_value());
    EXPECT_FALSE(ParseNumber("-1", 0xFFFF).has_value());
    EXPECT_FALSE(ParseNumber("12x", 0xFFFF).has_value());
    EXPECT_FALSE(ParseNumber("", 0xFFFF).has_value());
}

}  // namespace
}  // namespace hl_ipc
