#include "status_table.h"

#include <hl_cli/tool.h>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace hl_appmgr {

namespace {

using nlohmann::json;

json OrNull(std::int64_t value) {
    return value < 0 ? json(nullptr) : json(value);
}

std::int64_t OrMinusOne(const json& value) {
    return value.is_null() ? -1 : value.get<std::int64_t>();
}

std::string Seconds(std::int64_t ms) {
    return ms < 0 ? std::string("-") : fmt::format("{}.{:03}s", ms / 1000, ms % 1000);
}

// The state, padded to `width`, in green when active, red when failed or hung, yellow while on its
// way; plain without colour.
std::string State(std::string_view state, std::size_t width, bool color) {
    const std::string padded = fmt::format("{:<{}}", state, width);
    const hl::cli::Color tint = IsActive(state)                           ? hl::cli::Color::Green
                                : state == "failed" || state == "hung"    ? hl::cli::Color::Red
                                                                          : hl::cli::Color::Yellow;
    return hl::cli::Paint(padded, tint, color);
}

}  // namespace

bool IsActive(std::string_view state) {
    return state == "running";
}

std::string StatusToJson(const StatusTable& table) {
    json apps = json::array();
    for (const AppStatus& app : table.apps) {
        apps.push_back({{"name", app.name},
                        {"state", app.state},
                        {"pid", app.pid},
                        {"uptime_ms", OrNull(app.uptimeMs)},
                        {"last_exit", app.lastExit.empty() ? json(nullptr) : json(app.lastExit)},
                        {"restarts", app.restarts},
                        {"ms_since_last_ping", OrNull(app.msSinceLastPing)},
                        {"output", app.output}});
    }
    // Names and output are the applications' bytes: invalid UTF-8 is replaced, never thrown on.
    return json{{"manager_pid", table.managerPid}, {"applications", apps}}.dump(
               -1, ' ', false, json::error_handler_t::replace) +
           "\n";
}

std::optional<StatusTable> StatusFromJson(std::string_view text) {
    try {
        const json root = json::parse(text);
        StatusTable table;
        table.managerPid = root.at("manager_pid").get<long>();
        for (const json& app : root.at("applications")) {
            AppStatus status;
            status.name = app.at("name").get<std::string>();
            status.state = app.at("state").get<std::string>();
            status.pid = app.at("pid").get<long>();
            status.uptimeMs = OrMinusOne(app.at("uptime_ms"));
            status.lastExit = app.at("last_exit").is_null() ? "" : app.at("last_exit").get<std::string>();
            status.restarts = app.at("restarts").get<int>();
            status.msSinceLastPing = OrMinusOne(app.at("ms_since_last_ping"));
            status.output = app.at("output").get<std::vector<std::string>>();
            table.apps.push_back(std::move(status));
        }
        return table;
    } catch (const json::exception&) {
        return std::nullopt;
    }
}

std::string FormatStatusText(const StatusTable& table, bool detail, bool color) {
    std::string out;
    if (!detail) {
        out = fmt::format("hl-appmgr (pid {}): {} application(s)\n", table.managerPid, table.apps.size());
        out += fmt::format("{:<20} {:<16} {:>8} {:>12} {:>8}\n", "NAME", "STATE", "PID", "SINCE PING", "RESTARTS");
        for (const AppStatus& app : table.apps) {
            out += fmt::format("{:<20} {} {:>8} {:>12} {:>8}\n", app.name, State(app.state, 16, color), app.pid,
                               Seconds(app.msSinceLastPing), app.restarts);
        }
        return out;
    }
    for (const AppStatus& app : table.apps) {
        out += fmt::format("{} - managed by hl-appmgr (pid {})\n", app.name, table.managerPid);
        out += fmt::format("     State: {}\n", State(app.state, 0, color));
        if (app.pid > 0) {
            out += fmt::format("       PID: {}\n    Uptime: {}\n", app.pid, Seconds(app.uptimeMs));
        }
        out += fmt::format(" Last exit: {}\n  Restarts: {}\n Last Ping: {}\n",
                           app.lastExit.empty() ? "-" : app.lastExit, app.restarts,
                           app.msSinceLastPing < 0 ? "-" : Seconds(app.msSinceLastPing) + " ago");
        if (!app.output.empty()) {
            out += "\n";
            for (const std::string& line : app.output) {
                out += line + "\n";
            }
        }
    }
    return out;
}

}  // namespace hl_appmgr
