#include "command_box.h"

#include <platform/runtime_directory.h>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <ctime>
#include <fstream>
#include <sstream>

namespace hl_appmgr {

namespace {

std::string CommandsDirectory(bool create) {
    const std::string base = ManagerDirectory(create);
    if (base.empty()) {
        return {};
    }
    const std::string dir = base + "/commands";
    if (create && ::mkdir(dir.c_str(), 0700) != 0 && errno != EEXIST) {
        return {};
    }
    return dir;
}

}  // namespace

std::string SerializeCommand(const Command& command) {
    return command.app + "\n" + command.name + "\n" + std::to_string(command.value) + "\n";
}

std::optional<Command> ParseCommand(std::string_view text) {
    Command command;
    std::string_view parts[3];
    for (auto& part : parts) {
        const auto newline = text.find('\n');
        if (newline == std::string_view::npos) {
            return std::nullopt;
        }
        part = text.substr(0, newline);
        text = text.substr(newline + 1);
    }
    if (!text.empty() || parts[0].empty() || parts[1].empty() || parts[1].size() > 128) {
        return std::nullopt;
    }
    const auto [end, error] =
        std::from_chars(parts[2].data(), parts[2].data() + parts[2].size(), command.value);
    if (parts[2].empty() || error != std::errc() || end != parts[2].data() + parts[2].size()) {
        return std::nullopt;
    }
    command.app = parts[0];
    command.name = parts[1];
    return command;
}

std::string ManagerDirectory(bool create) {
    std::string root = hos::platform::runtime_directory::Path();
    if (create) {
        const auto made = hos::platform::runtime_directory::Ensure();
        if (!made) {
            return {};
        }
        root = *made;
    }
    const std::string dir = root + "/appmgr";
    if (create && ::mkdir(dir.c_str(), 0700) != 0 && errno != EEXIST) {
        return {};
    }
    return dir;
}

bool PostCommand(const Command& command, std::string* error) {
    const std::string dir = CommandsDirectory(true);
    if (dir.empty()) {
        *error = "can't make the command directory: " + std::string(std::strerror(errno));
        return false;
    }
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    char name[96];
    std::snprintf(name, sizeof name, "%020lld-%ld",
                  static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec,
                  static_cast<long>(::getpid()));
    const std::string temporary = dir + "/." + name;
    {
        std::ofstream out(temporary, std::ios::trunc);
        out << SerializeCommand(command);
        if (!out.good()) {
            *error = "can't write " + temporary;
            return false;
        }
    }
    if (::rename(temporary.c_str(), (dir + "/" + name).c_str()) != 0) {
        *error = "can't rename " + temporary + ": " + std::strerror(errno);
        ::unlink(temporary.c_str());
        return false;
    }
    return true;
}

std::vector<Command> TakeCommands(std::vector<std::string>* rejected) {
    std::vector<Command> commands;
    const std::string dir = CommandsDirectory(false);
    DIR* stream = dir.empty() ? nullptr : ::opendir(dir.c_str());
    if (stream == nullptr) {
        return commands;
    }
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(stream)) {
        if (entry->d_name[0] != '.') {
            names.emplace_back(entry->d_name);
        }
    }
    ::closedir(stream);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        const std::string path = dir + "/" + name;
        std::ifstream in(path);
        std::stringstream text;
        text << in.rdbuf();
        ::unlink(path.c_str());
        if (auto command = ParseCommand(text.str())) {
            commands.push_back(std::move(*command));
        } else if (rejected != nullptr) {
            rejected->push_back(name);
        }
    }
    return commands;
}

}  // namespace hl_appmgr
