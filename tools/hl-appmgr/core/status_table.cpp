#include "status_table.h"

#include <charconv>
#include <cstdio>

namespace hl_appmgr {

namespace {

std::string Clean(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c == '\t' || c == '\n' || c == '\r') {
            c = '_';
        }
    }
    return out;
}

template <typename T>
bool ParseNumber(std::string_view text, T& out) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
    return !text.empty() && error == std::errc() && end == text.data() + text.size();
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const auto at = text.find(separator);
        parts.push_back(text.substr(0, at));
        if (at == std::string_view::npos) {
            return parts;
        }
        text = text.substr(at + 1);
    }
}

std::string JsonString(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
            out += escaped;
        } else {
            out += c;
        }
    }
    return out + "\"";
}

std::string SinceText(const AppStatus& app, std::int64_t nowUnixMs) {
    if (app.lastPingUnixMs < 0) {
        return "-";
    }
    const std::int64_t ms = nowUnixMs > app.lastPingUnixMs ? nowUnixMs - app.lastPingUnixMs : 0;
    char text[32];
    std::snprintf(text, sizeof text, "%lld.%03llds", static_cast<long long>(ms / 1000),
                  static_cast<long long>(ms % 1000));
    return text;
}

}  // namespace

std::string SerializeStatus(const StatusTable& table) {
    std::string out = "manager_pid=" + std::to_string(table.managerPid) + "\n";
    for (const AppStatus& app : table.apps) {
        out += "app=" + Clean(app.name) + "\t" + Clean(app.state) + "\t" + std::to_string(app.pid) + "\t" +
               std::to_string(app.lastPingUnixMs) + "\t" + std::to_string(app.restarts) + "\n";
    }
    return out;
}

std::optional<StatusTable> ParseStatus(std::string_view text) {
    StatusTable table;
    bool sawManager = false;
    for (const std::string_view line : Split(text, '\n')) {
        if (line.empty()) {
            continue;
        }
        if (line.substr(0, 12) == "manager_pid=") {
            if (!ParseNumber(line.substr(12), table.managerPid)) {
                return std::nullopt;
            }
            sawManager = true;
        } else if (line.substr(0, 4) == "app=") {
            const auto fields = Split(line.substr(4), '\t');
            AppStatus app;
            if (fields.size() != 5 || !ParseNumber(fields[2], app.pid) ||
                !ParseNumber(fields[3], app.lastPingUnixMs) || !ParseNumber(fields[4], app.restarts)) {
                return std::nullopt;
            }
            app.name = fields[0];
            app.state = fields[1];
            table.apps.push_back(std::move(app));
        } else {
            return std::nullopt;
        }
    }
    if (!sawManager) {
        return std::nullopt;
    }
    return table;
}

std::string FormatStatusText(const StatusTable& table, std::int64_t nowUnixMs) {
    std::string out = "hl-appmgr (pid " + std::to_string(table.managerPid) +
                      "): " + std::to_string(table.apps.size()) + " application(s)\n";
    char line[512];
    std::snprintf(line, sizeof line, "%-24s %-16s %8s %16s %8s\n", "NAME", "STATE", "PID", "SINCE PING",
                  "RESTARTS");
    out += line;
    for (const AppStatus& app : table.apps) {
        const std::string pid = app.pid > 0 ? std::to_string(app.pid) : "-";
        std::snprintf(line, sizeof line, "%-24s %-16s %8s %16s %8d\n", app.name.c_str(), app.state.c_str(),
                      pid.c_str(), SinceText(app, nowUnixMs).c_str(), app.restarts);
        out += line;
    }
    return out;
}

std::string FormatStatusJson(const StatusTable& table, std::int64_t nowUnixMs) {
    std::string out = "{\"manager_pid\": " + std::to_string(table.managerPid) + ", \"applications\": [";
    bool first = true;
    for (const AppStatus& app : table.apps) {
        out += first ? "\n " : ",\n ";
        first = false;
        const std::string since =
            app.lastPingUnixMs < 0
                ? "null"
                : std::to_string(nowUnixMs > app.lastPingUnixMs ? nowUnixMs - app.lastPingUnixMs : 0);
        out += "{\"name\": " + JsonString(app.name) + ", \"state\": " + JsonString(app.state) +
               ", \"pid\": " + std::to_string(app.pid) + ", \"ms_since_last_ping\": " + since +
               ", \"restarts\": " + std::to_string(app.restarts) + "}";
    }
    return out + "]}\n";
}

}  // namespace hl_appmgr
