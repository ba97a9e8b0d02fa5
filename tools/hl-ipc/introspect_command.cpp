// hl-ipc introspect [TYPE]: the interfaces the IPC runtime describes, with their methods and fields.
#include <cstdio>
#include <memory>
#include <string>

#include <interfaces/catalogue.h>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "core/json_codec.h"

namespace hl_ipc {
namespace {

struct IntrospectOptions {
    std::string type;
    bool json = false;
};

std::string FieldList(const std::vector<interfaces::FieldInfo>& fields) {
    std::string text;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        text += (i == 0 ? "" : ", ") + FieldTypeName(fields[i]) + " " +
                (fields[i].name.empty() ? "field" + std::to_string(i) : std::string(fields[i].name));
    }
    return text;
}

nlohmann::json FieldsJson(const std::vector<interfaces::FieldInfo>& fields) {
    nlohmann::json out = nlohmann::json::array();
    for (const auto& field : fields) {
        out.push_back({{"name", field.name}, {"type", FieldTypeName(field)}, {"offset", field.offset}});
    }
    return out;
}

int RunIntrospect(const IntrospectOptions& options) {
    std::vector<const interfaces::InterfaceInfo*> shown;
    if (options.type.empty()) {
        for (const auto& interface : interfaces::Catalogue()) {
            shown.push_back(&interface);
        }
    } else if (const auto* interface = interfaces::FindInterface(options.type)) {
        shown.push_back(interface);
    } else {
        std::fprintf(stderr, "hl-ipc: introspect: no described interface is named by '%s'\n"
                             "Try 'hl-ipc introspect' for the list.\n", options.type.c_str());
        return kExitUnknownInterface;
    }
    nlohmann::json json = nlohmann::json::array();
    for (const auto* interface : shown) {
        if (!options.json) {
            std::printf("%.*s\n", static_cast<int>(interface->name.size()), interface->name.data());
        }
        nlohmann::json methods = nlohmann::json::array();
        for (const auto& method : interface->methods) {
            if (options.json) {
                methods.push_back({{"name", method.name}, {"mid", method.mid},
                                   {"inputs", FieldsJson(method.inputs)}, {"outputs", FieldsJson(method.outputs)}});
            } else {
                std::printf("  %.*s (mid %u): (%s) -> (%s)\n", static_cast<int>(method.name.size()), method.name.data(),
                            static_cast<unsigned>(method.mid), FieldList(method.inputs).c_str(),
                            FieldList(method.outputs).c_str());
            }
        }
        json.push_back({{"interface", interface->name}, {"methods", std::move(methods)}});
    }
    if (options.json) {
        std::printf("%s\n", json.dump().c_str());
    }
    return kExitOk;
}

}  // namespace

Command AddIntrospect(CLI::App& app) {
    auto options = std::make_shared<IntrospectOptions>();
    auto* introspect = app.add_subcommand("introspect", "list the interfaces, methods and fields the runtime describes");
    introspect->footer(app.get_footer());
    introspect->add_option("TYPE", options->type,
                           "only this interface: its IDL name, or a published type that begins with it");
    introspect->add_flag("--json", options->json,
                         "one JSON array: [{\"interface\", \"methods\": [{\"name\", \"mid\", \"inputs\": [{\"name\", "
                         "\"type\", \"offset\"}], \"outputs\"}]}]");
    return {introspect, [options] { return RunIntrospect(*options); }};
}

}  // namespace hl_ipc
