#include "store_factory.h"

#include "json_defaults.h"
#include "memory_tree_store.h"
#include "sqlite_tree_store.h"
#include "state_directory.h"
#include "store_files.h"

#include <diagnostics/log.h>

#include <filesystem>
#include <stdexcept>

namespace hl_settingsd {

namespace {

using hos::logger::LogLevel;

std::filesystem::path ProgramDirectory() {
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::current_path() : program.parent_path();
}

}  // namespace

std::string DefaultDefaultsFile() {
    const auto directory = ProgramDirectory();
    const auto beside = directory / "defaults" / "msmgr.json";
    if (std::filesystem::exists(beside)) {
        return beside.string();
    }
    return (directory.parent_path() / "share" / "halcyra" / "hl-settingsd" / "msmgr.json").string();
}

std::unique_ptr<ITreeStore> MakeTreeStore(const DaemonOptions& options) {
    if (!options.service.persistent) {
        const std::string file = options.defaults ? *options.defaults : DefaultDefaultsFile();
        auto defaults = ReadJsonDefaults(file);
        HL_LOG(LogLevel::Info, "{}: in memory, from the defaults {}", options.service.name, file);
        return std::make_unique<MemoryTreeStore>(std::move(defaults));
    }
    auto files = std::make_unique<StoreFiles>(PrepareStateDirectory(options.stateDir),
                                              std::string(options.service.name) + ".db");
    HL_LOG(LogLevel::Info, "{}: persistent, in {}", options.service.name, files->Db());
    return std::make_unique<SqliteTreeStore>(std::move(files));
}

}  // namespace hl_settingsd
