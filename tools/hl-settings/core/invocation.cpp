#include "core/invocation.h"

#include <charconv>

namespace hl_settings {

std::optional<Invocation> ParseInvocation(const std::vector<std::string>& arguments, std::string& error) {
    Invocation invocation;
    bool optionsEnded = false;
    std::vector<std::string> positional;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const bool isOption = !optionsEnded && argument.size() > 1 && argument[0] == '-' &&
                              (argument[1] == '-' || argument == "-h" || argument == "-v");
        if (!isOption) {
            positional.push_back(argument);
            continue;
        }
        const auto value = [&]() -> const std::string* {
            if (i + 1 >= arguments.size()) {
                error = "option " + argument + " needs a value";
                return nullptr;
            }
            return &arguments[++i];
        };
        if (argument == "--") {
            optionsEnded = true;
        } else if (argument == "--help" || argument == "-h") {
            invocation.help = true;
        } else if (argument == "--verbose" || argument == "-v") {
            invocation.verbose = true;
        } else if (argument == "--json") {
            invocation.json = true;
        } else if (argument == "--service") {
            const std::string* name = value();
            if (name == nullptr) {
                return std::nullopt;
            }
            invocation.service = *name;
        } else if (argument == "--type") {
            const std::string* type = value();
            if (type == nullptr) {
                return std::nullopt;
            }
            invocation.type = *type;
        } else if (argument == "--wait") {
            const std::string* text = value();
            if (text == nullptr) {
                return std::nullopt;
            }
            const auto [end, ec] =
                std::from_chars(text->data(), text->data() + text->size(), invocation.waitMs);
            if (text->empty() || ec != std::errc() || end != text->data() + text->size()) {
                error = "--wait takes a number of milliseconds, not '" + *text + "'";
                return std::nullopt;
            }
        } else {
            error = "unknown option " + argument;
            return std::nullopt;
        }
    }
    if (!positional.empty()) {
        invocation.command = positional.front();
        invocation.arguments.assign(positional.begin() + 1, positional.end());
    }
    return invocation;
}

}  // namespace hl_settings
