// Tests that the run-time table of the descriptions lists each interface once and names every field
// once per message, and finds an interface by its IDL name, a published type that begins with it, or
// its last part.
#include <interfaces/catalogue.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(Catalogue, EveryFieldHasANameOfItsOwnInItsMessage) {
    std::set<std::string_view> interfaceNames;
    for (const auto& interface : interfaces::Catalogue()) {
        EXPECT_TRUE(interfaceNames.insert(interface.name).second) << interface.name;
        EXPECT_FALSE(interface.methods.empty()) << interface.name;
        for (const auto& method : interface.methods) {
            for (const auto* fields : {&method.inputs, &method.outputs}) {
                std::set<std::string_view> names;
                for (const auto& field : *fields) {
                    EXPECT_FALSE(field.name.empty()) << interface.name << "." << method.name;
                    EXPECT_TRUE(names.insert(field.name).second) << interface.name << "." << method.name;
                    EXPECT_NE(field.unpack, nullptr);
                }
            }
            for (const auto& field : method.inputs) {
                EXPECT_NE(field.pack, nullptr) << interface.name << "." << method.name << " " << field.name;
            }
        }
    }
}

TEST(Catalogue, FindsAnInterfaceByNameTypeOrLastPart) {
    const std::pair<const char*, const char*> cases[] = {
        {"hl.access_arbiter.AccessArbiter", "hl.access_arbiter.AccessArbiter"},
        {"hl.access_arbiter.AccessArbiter.accessArbiter", "hl.access_arbiter.AccessArbiter"},
        {"NkISMReg", "hl.settings_manager.NkISMReg"},
        {"hl.settings_manager.NkISM", "hl.settings_manager.NkISM"},
        {"hl.settings_manager.NkISMx", nullptr},
        {"hl.access_arbiter", nullptr},
    };
    for (const auto& [text, expected] : cases) {
        const auto* found = interfaces::FindInterface(text);
        EXPECT_EQ(found == nullptr ? std::string("none") : std::string(found->name),
                  expected == nullptr ? std::string("none") : std::string(expected))
            << text;
    }
    const auto* arbiter = interfaces::FindInterface("AccessArbiter");
    ASSERT_NE(arbiter, nullptr);
    const auto* method = interfaces::FindMethod(*arbiter, "GetUserDecision");
    ASSERT_NE(method, nullptr);
    EXPECT_EQ(method->responseSize, 32U);
    EXPECT_EQ(interfaces::FindMethod(*arbiter, "Frob"), nullptr);
}

}  // namespace
