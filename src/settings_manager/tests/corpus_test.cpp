// Tests that each malformed raw item list of the corpus (tests/corpus/*.items, one case per file)
// fails to rebuild with exactly the code and text the file expects, and leaves the out arguments
// alone.
//
// File form, one entry per line: "# comment"; "expect <hex code> <text>"; then per item
// "path <text to the end of the line>", "value <hex bytes>", "attrib <hex bytes>".
#include <settings_manager/serialize.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using settings_manager::impl::RawItem;

struct CorpusCase {
    std::string name;
    uvc::Result expected;
    std::vector<RawItem> items;
};

std::vector<unsigned char> ParseHex(const std::string& text) {
    std::istringstream in(text);
    std::vector<unsigned char> bytes;
    std::string token;
    while (in >> token) {
        bytes.push_back(static_cast<unsigned char>(std::stoul(token, nullptr, 16)));
    }
    return bytes;
}

CorpusCase Load(const std::filesystem::path& file) {
    CorpusCase c{file.stem().string(), {}, {}};
    std::ifstream in(file);
    std::string line;
    while (std::getline(in, line)) {
        const auto space = line.find(' ');
        const std::string key = line.substr(0, space);
        const std::string rest = space == std::string::npos ? "" : line.substr(space + 1);
        if (key == "expect") {
            const auto gap = rest.find(' ');
            c.expected = {static_cast<int>(std::stoul(rest.substr(0, gap), nullptr, 16)),
                          rest.substr(gap + 1)};
        } else if (key == "path") {
            c.items.emplace_back();
            c.items.back().path = rest;
        } else if (key == "value") {
            c.items.back().value = ParseHex(rest);
        } else if (key == "attrib") {
            c.items.back().attrib = ParseHex(rest);
        }
    }
    return c;
}

std::vector<CorpusCase> LoadCorpus() {
    std::vector<CorpusCase> cases;
    for (const auto& entry :
         std::filesystem::directory_iterator(HL_SOURCE_DIR "/src/settings_manager/tests/corpus")) {
        if (entry.path().extension() == ".items") {
            cases.push_back(Load(entry.path()));
        }
    }
    return cases;
}

class MalformedRawItems : public ::testing::TestWithParam<CorpusCase> {};

TEST_P(MalformedRawItems, FailWithTheExpectedCodeAndText) {
    const CorpusCase& c = GetParam();
    ASSERT_LT(c.expected.first, 0) << "no expect line";
    uvc::Path path = uvc::Path().Append("untouched");
    settings_manager::Setting setting(std::string("untouched"));
    EXPECT_EQ(settings_manager::Deserialize(c.items, path, setting), c.expected);
    EXPECT_EQ(path, uvc::Path().Append("untouched"));
    EXPECT_EQ(setting, settings_manager::Setting(std::string("untouched")));
}

INSTANTIATE_TEST_SUITE_P(Corpus, MalformedRawItems, ::testing::ValuesIn(LoadCorpus()),
                         [](const ::testing::TestParamInfo<CorpusCase>& info) { return info.param.name; });

}  // namespace
