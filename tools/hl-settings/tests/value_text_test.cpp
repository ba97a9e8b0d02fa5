// What hl-settings reads from its command line and prints: values of every type at their limits,
// the plain JSON of `set --type json`, the typed JSON and the readable tree, quoted strings of any
// bytes and the dump's faults.
#include "core/value_text.h"
#include "core/dump_text.h"
#include "core/quoted_text.h"
#include "core/path_argument.h"
#include "core/tree_json.h"
#include "core/tree_text.h"

#include <uvc/set_item.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using hl_settings::ParseValue;
using hl_settings::TypeFromName;
using settings_manager::Setting;

struct Case {
    const char* type;
    const char* text;
    bool ok;
    std::size_t index;    // alternative read, when ok
    const char* printed;  // ValueText of the result, when ok
};

// Tests that every type reads its limits and prints them back in the form it reads, and refuses
// what lies just outside. The limits that hl-settings' end-to-end test sets and gets back through a
// service (i8, i32 and i64 minimum, u64 maximum, 0.1, true, a timestamp) are not repeated here.
TEST(ValueText, EveryTypeReadsItsLimitsAndPrintsThemBack) {
    const Case cases[] = {
        {"bool", "0", true, uvc::IndexBool, "false"},
        {"bool", "yes", false, 0, ""},
        {"i8", "127", true, uvc::IndexI8, "127"},
        {"i8", "128", false, 0, ""},
        {"i8", "-129", false, 0, ""},
        {"u8", "255", true, uvc::IndexU8, "255"},
        {"u8", "-1", false, 0, ""},
        {"i16", "-32768", true, uvc::IndexI16, "-32768"},
        {"u16", "0xffff", true, uvc::IndexU16, "65535"},
        {"i32", "2147483648", false, 0, ""},
        {"u32", "4294967295", true, uvc::IndexU32, "4294967295"},
        {"i64", "9223372036854775808", false, 0, ""},
        {"u64", "18446744073709551616", false, 0, ""},
        {"i32", "12x", false, 0, ""},
        {"i32", "", false, 0, ""},
        {"i32", "-", false, 0, ""},
        {"double", "-2e3", true, uvc::IndexDouble, "-2000"},
        {"double", "1.5.", false, 0, ""},
        {"string", "", true, uvc::IndexString, ""},
        {"string", "en US", true, uvc::IndexString, "en US"},
        {"bytes", "de:ad BE ef", true, uvc::IndexBytes, "de ad be ef"},
        {"bytes", "", true, uvc::IndexBytes, ""},
        {"bytes", "abc", false, 0, ""},
        {"bytes", "a bc", false, 0, ""},
        {"bytes", "zz", false, 0, ""},
        {"none", "", true, uvc::IndexNone, "none"},
        {"none", "x", false, 0, ""},
        {"list", "", true, uvc::IndexList, "[0 elements]"},
        {"map", "", true, uvc::IndexMap, "{0 entries}"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.type) + " '" + c.text + "'");
        const auto type = TypeFromName(c.type);
        ASSERT_TRUE(type);
        std::string error;
        const auto value = ParseValue(*type, c.text, error);
        ASSERT_EQ(value.has_value(), c.ok) << error;
        if (!c.ok) {
            EXPECT_FALSE(error.empty());
            continue;
        }
        EXPECT_EQ(value->index(), c.index);
        EXPECT_EQ(hl_settings::ValueText(*value), c.printed);
        // What is printed reads back to the same value.
        if (c.index != uvc::IndexList && c.index != uvc::IndexMap && c.index != uvc::IndexNone) {
            EXPECT_EQ(ParseValue(*type, c.printed, error), value);
        }
    }
    EXPECT_FALSE(TypeFromName("int"));
}

// Tests that a JSON document becomes the tree it describes, and that a key no settings path can
// hold is refused before anything is sent.
TEST(ValueText, PlainJsonBecomesATreeAndBadKeysAreRefused) {
    std::string error;
    const auto tree =
        ParseValue(hl_settings::kJsonType,
                   R"({"a": {"b": [1, 2.5, "x", true, null]}, "big": 18446744073709551615})", error);
    ASSERT_TRUE(tree) << error;
    const auto& root = std::get<settings_manager::SettingMap>(*tree);
    const auto& list =
        std::get<settings_manager::SettingList>(std::get<settings_manager::SettingMap>(root.at("a")).at("b"));
    ASSERT_EQ(list.size(), 5u);
    EXPECT_EQ(list[0], Setting(std::int64_t{1}));
    EXPECT_EQ(list[1], Setting(2.5));
    EXPECT_EQ(list[2], Setting(std::string("x")));
    EXPECT_EQ(list[3], Setting(true));
    EXPECT_EQ(list[4].index(), uvc::IndexNone);
    EXPECT_EQ(root.at("big"), Setting(std::uint64_t{18446744073709551615u}));

    for (const char* bad : {R"({"a_b": 1})", R"({"x": {"1a": 1}})", R"({"": 1})", "{", "[1,"}) {
        SCOPED_TRACE(bad);
        EXPECT_FALSE(ParseValue(hl_settings::kJsonType, bad, error));
    }
}

// Tests that the typed JSON and the readable tree show every node with its type, value and flag.
TEST(ValueText, TypedJsonAndTreeTextShowEveryNode) {
    Setting root = settings_manager::SettingMap{};
    uvc::SetItem(root, "name", Setting(std::string("a \"b\"")), uvc::SetItemInsert);
    Setting& list = uvc::SetItem(root, "list", Setting(settings_manager::SettingList{}), uvc::SetItemInsert);
    uvc::SetItem(list, 0, Setting(std::int8_t{-1}), uvc::SetItemAppend);
    Setting flagged(uvc::Bytes{0x01, 0xff}, settings_manager::Attributes{true});
    uvc::SetItem(list, 1, flagged, uvc::SetItemAppend);

    const auto json = hl_settings::TypedJson(root);
    EXPECT_EQ(json.dump(),
              R"({"flag":false,"type":"map","value":{"list":{"flag":false,"type":"list","value":[)"
              R"({"flag":false,"type":"i8","value":-1},{"flag":true,"type":"bytes","value":"01 ff"}]},)"
              R"("name":{"flag":false,"type":"string","value":"a \"b\""}}})");

    std::string error;
    const auto at = hl_settings::ParsePathArgument("cfg", error);
    ASSERT_TRUE(at);
    EXPECT_EQ(hl_settings::TreeText(*at, root),
              "cfg/         map     {2 entries}\n"
              "cfg/list/    list    [2 elements]\n"
              "cfg/list/0/  i8      -1\n"
              "cfg/list/1/  bytes   01 ff flag\n"
              "cfg/name/    string  \"a \\\"b\\\"\"\n");
}

// Tests that paths read as the settings text form, "/" is the root, and bad ones say why.
TEST(ValueText, PathArgumentsReadTheTextFormAndTheRoot) {
    std::string error;
    EXPECT_EQ(hl_settings::ParsePathArgument("locale/language", error),
              uvc::Path(uvc::Root).Append("locale").Append("language"));
    EXPECT_EQ(hl_settings::ParsePathArgument("list/3/", error),
              uvc::Path(uvc::Root).Append("list").Append(3));
    EXPECT_EQ(hl_settings::ParsePathArgument("/", error), uvc::Root);
    EXPECT_EQ(hl_settings::ParsePathArgument("", error), uvc::Root);
    for (const char* bad : {"/a", "a//b", "a_b", "65536", "a b"}) {
        SCOPED_TRACE(bad);
        EXPECT_FALSE(hl_settings::ParsePathArgument(bad, error));
        EXPECT_NE(error.find(bad), std::string::npos) << error;
    }
}

// Tests that every byte string, UTF-8 or not, quotes to one line and reads back unchanged, and that
// only the bytes outside UTF-8 take the \x form.
TEST(QuotedText, AnyBytesQuoteAndReadBack) {
    std::string every;
    for (int byte = 0; byte < 256; ++byte) {
        every += static_cast<char>(byte);
    }
    for (const std::string& text : {every, std::string("кириллица \xed\xa0\x80 \xf4\x90\x80\x80 \xc0\xaf")}) {
        const std::string quoted = hl_settings::Quote(text);
        EXPECT_EQ(quoted.find('\n'), std::string::npos);
        std::size_t pos = 0;
        EXPECT_EQ(hl_settings::Unquote(quoted, pos), text);
        EXPECT_EQ(pos, quoted.size());
    }
    EXPECT_EQ(hl_settings::Quote("\xd0\xba\xff\""), "\"\xd0\xba\\xff\\\"\"");
    for (const char* bad : {"\"open", "\"\\q\"", "\"\\x4\"", "\"\\ud800\"", "x\"\""}) {
        std::size_t pos = 0;
        EXPECT_FALSE(hl_settings::Unquote(bad, pos)) << bad;
    }
}

// Tests that a dump that can't make a tree is refused with the line at fault.
TEST(DumpText, FaultsNameTheirLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"/ map\na/b/ u8 1\n", "line 2: its parent '' has no entry 'a'"},
        {"/ list\n1/ u8 1\n", "line 2: list element 1 comes where element 0 is due"},
        {"/ map\na/ u8 1\na/ u8 2\n", "line 3: the node comes twice"},
        {"/ u8 1\na/ u8 1\n", "line 2: its parent is neither a list nor a map"},
        {"# c\n\na/ map\n", "line 3: the first node must be the dumped node itself, '/'"},
        {"/ map\na/ string x\n", "line 2: the string is not one quoted text"},
        {"/ u8 300\n", "line 1: the value '300' is out of range [0, 255]"},
        {"/ json {}\n", "line 1: 'json' is no node type"},
        {"", "the dump holds no node"},
    };
    for (const auto& [text, expected] : cases) {
        std::string error;
        EXPECT_FALSE(hl_settings::ParseDumpText(text, error)) << text;
        EXPECT_EQ(error, expected) << text;
    }
}

}  // namespace
