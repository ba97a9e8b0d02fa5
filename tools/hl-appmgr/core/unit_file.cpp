#include "unit_file.h"

#include <charconv>

namespace hl_appmgr {

namespace {

bool ParseNumber(std::string_view text, std::int64_t& out) {
    if (text.empty()) {
        return false;
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
    return error == std::errc() && end == text.data() + text.size();
}

std::string Basename(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

std::string_view RestartPolicyName(RestartPolicy policy) {
    switch (policy) {
        case RestartPolicy::No:
            return "no";
        case RestartPolicy::OnFailure:
            return "on-failure";
        case RestartPolicy::Always:
            return "always";
    }
    return "?";
}

Unit UnitForProgram(const std::string& program, std::vector<std::string> arguments) {
    Unit unit;
    unit.program = program;
    unit.name = Basename(program);
    unit.arguments = std::move(arguments);
    return unit;
}

UnitParseResult ParseUnit(std::string_view text) {
    UnitParseResult result;
    int lineNumber = 0;
    auto fail = [&](const std::string& why) {
        result.ok = false;
        result.error = "line " + std::to_string(lineNumber) + ": " + why;
        return result;
    };
    while (!text.empty()) {
        ++lineNumber;
        const auto newline = text.find('\n');
        const std::string_view line = text.substr(0, newline);
        text = newline == std::string_view::npos ? std::string_view() : text.substr(newline + 1);
        if (line.empty() || line.front() == '#') {
            continue;
        }
        const auto equals = line.find('=');
        if (equals == std::string_view::npos) {
            return fail("expected key=value");
        }
        const std::string_view key = line.substr(0, equals);
        const std::string value(line.substr(equals + 1));
        std::int64_t number = 0;
        if (key == "name") {
            result.unit.name = value;
        } else if (key == "program") {
            result.unit.program = value;
        } else if (key == "argument") {
            result.unit.arguments.push_back(value);
        } else if (key == "environment") {
            const auto inner = value.find('=');
            if (inner == std::string::npos || inner == 0) {
                return fail("environment needs KEY=VALUE");
            }
            result.unit.environment.emplace_back(value.substr(0, inner), value.substr(inner + 1));
        } else if (key == "watchdog_interval_ms") {
            if (!ParseNumber(value, number) || number <= 0) {
                return fail("watchdog_interval_ms must be a positive number");
            }
            result.unit.watchdogIntervalMs = number;
        } else if (key == "restart") {
            if (value == "no") {
                result.unit.restart = RestartPolicy::No;
            } else if (value == "on-failure") {
                result.unit.restart = RestartPolicy::OnFailure;
            } else if (value == "always") {
                result.unit.restart = RestartPolicy::Always;
            } else {
                return fail("restart must be no, on-failure or always");
            }
        } else if (key == "start_limit") {
            if (!ParseNumber(value, number) || number <= 0 || number > 1000) {
                return fail("start_limit must be a number from 1 to 1000");
            }
            result.unit.startLimit = static_cast<int>(number);
        } else if (key == "start_limit_interval_ms") {
            if (!ParseNumber(value, number) || number <= 0) {
                return fail("start_limit_interval_ms must be a positive number");
            }
            result.unit.startLimitIntervalMs = number;
        } else if (key == "start_timeout_ms") {
            if (!ParseNumber(value, number) || number < 0) {
                return fail("start_timeout_ms must be a number, 0 for no limit");
            }
            result.unit.startTimeoutMs = number;
        } else if (key == "stop_timeout_ms") {
            if (!ParseNumber(value, number) || number <= 0) {
                return fail("stop_timeout_ms must be a positive number");
            }
            result.unit.stopTimeoutMs = number;
        } else {
            return fail("unknown key '" + std::string(key) + "'");
        }
    }
    if (result.unit.program.empty()) {
        lineNumber = 0;
        return fail("program is missing");
    }
    if (result.unit.name.empty()) {
        result.unit.name = Basename(result.unit.program);
    }
    if (result.unit.name.empty()) {
        lineNumber = 0;
        return fail("no name: give name= or a program whose path ends in a file name");
    }
    result.ok = true;
    return result;
}

}  // namespace hl_appmgr
