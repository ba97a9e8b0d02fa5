#include "sqlite_tree_store.h"

#include "result_codes.h"
#include "tree_shape.h"

#include <diagnostics/log.h>
#include <settings_manager/meta/path_id_rules.h>
#include <settings_manager/path_to_str.h>
#include <settings_manager/raw_item.h>
#include <settings_manager/serialize.h>
#include <uvc/path_text.h>

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

namespace hl_settingsd {

namespace {

using hos::logger::LogLevel;
using settings_manager::Setting;
using settings_manager::SettingMap;
using settings_manager::impl::RawItem;

struct StatementDeleter {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, StatementDeleter>;

Statement Prepare(sqlite3* db, const char* sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) != SQLITE_OK) {
        HL_LOG(LogLevel::Error, "SQLite: can't prepare '{}': {}", sql, sqlite3_errmsg(db));
    }
    return Statement(statement);
}

// Pre-order of path texts: id by id, numbers by value, names by their bytes, a path before the paths
// below it.
bool PreOrder(const uvc::Path& a, const uvc::Path& b) {
    const auto& x = a.Ids();
    const auto& y = b.Ids();
    return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end());
}

std::string SubtreeEnd(const std::string& pathText) {
    // Every path below "a/b/" begins with "a/b/"; "a/b0" is the first text after all of them.
    std::string end = pathText;
    end.back() = static_cast<char>('/' + 1);
    return end;
}

}  // namespace

SqliteTreeStore::SqliteTreeStore(std::unique_ptr<StoreFiles> files)
    : m_files(files ? std::move(files) : throw std::invalid_argument("store files are nullptr")),
      m_file(m_files->Db()) {
    // No SQLITE_OPEN_NOFOLLOW, which refuses a link anywhere on the path (a linked ~/.local/state): the
    // file's last component was opened without following links, and the directory is writable by
    // nobody else, so nobody can put a link there since.
    if (sqlite3_open_v2(m_file.c_str(), &m_db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        const std::string why = m_db != nullptr ? sqlite3_errmsg(m_db) : "out of memory";
        sqlite3_close(m_db);
        throw std::runtime_error("can't open the database " + m_file + ": " + why);
    }
    sqlite3_busy_timeout(m_db, 5000);
    std::string mode;
    {
        Statement wal = Prepare(m_db, "PRAGMA journal_mode=WAL");
        if (wal && sqlite3_step(wal.get()) == SQLITE_ROW) {
            mode = reinterpret_cast<const char*>(sqlite3_column_text(wal.get(), 0));
        }
    }
    if (mode != "wal" || !Execute("PRAGMA synchronous=FULL") ||
        !Execute("CREATE TABLE IF NOT EXISTS nodes(path TEXT PRIMARY KEY NOT NULL, value BLOB NOT NULL, "
                 "flag INTEGER NOT NULL) WITHOUT ROWID") ||
        !Execute(
            "CREATE TABLE IF NOT EXISTS meta(key TEXT PRIMARY KEY NOT NULL, value TEXT) WITHOUT ROWID") ||
        !Execute("INSERT OR IGNORE INTO meta(key, value) VALUES('format', '1')")) {
        const std::string why = sqlite3_errmsg(m_db);
        sqlite3_close(m_db);
        m_db = nullptr;
        throw std::runtime_error("can't set up the database " + m_file + " (journal mode '" + mode +
                                 "'): " + why);
    }
    // The root row: the root is a map, also in a new store.
    const auto rootValue = RawItem::SerializeValue(Setting(SettingMap{}));
    Statement root = Prepare(m_db, "INSERT OR IGNORE INTO nodes(path, value, flag) VALUES('', ?1, 0)");
    if (!root ||
        sqlite3_bind_blob(root.get(), 1, rootValue.data(), static_cast<int>(rootValue.size()),
                          SQLITE_STATIC) != SQLITE_OK ||
        sqlite3_step(root.get()) != SQLITE_DONE) {
        root.reset();
        sqlite3_close(m_db);
        m_db = nullptr;
        throw std::runtime_error("can't write the root of " + m_file);
    }
    root.reset();
    Statement format = Prepare(m_db, "SELECT value FROM meta WHERE key = 'format'");
    const bool known =
        format && sqlite3_step(format.get()) == SQLITE_ROW &&
        std::strcmp(reinterpret_cast<const char*>(sqlite3_column_text(format.get(), 0)), "1") == 0;
    format.reset();
    if (!known) {
        sqlite3_close(m_db);
        m_db = nullptr;
        throw std::runtime_error(m_file + " is a database of another format");
    }
}

SqliteTreeStore::~SqliteTreeStore() {
    sqlite3_close(m_db);
}

bool SqliteTreeStore::Execute(const char* sql) {
    char* message = nullptr;
    if (sqlite3_exec(m_db, sql, nullptr, nullptr, &message) != SQLITE_OK) {
        HL_LOG(LogLevel::Error, "SQLite: '{}' failed: {}", sql, message != nullptr ? message : "?");
        sqlite3_free(message);
        return false;
    }
    return true;
}

Setting SqliteTreeStore::Load() {
    struct Row {
        uvc::Path path;
        RawItem item;
    };
    std::vector<Row> rows;
    Statement select = Prepare(m_db, "SELECT path, value, flag FROM nodes");
    if (!select) {
        throw std::runtime_error("can't read " + m_file);
    }
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(select.get())) == SQLITE_ROW) {
        Row row;
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(select.get(), 0));
        row.item.path = text != nullptr ? text : "";
        auto [path, state] = uvc::FromString(row.item.path, settings_manager::meta::GetIdSpecification());
        if (state != uvc::IdStateOk) {
            throw std::runtime_error(m_file + " is damaged: the row '" + row.item.path +
                                     "' is no setting path");
        }
        row.path = std::move(path);
        const auto* value = static_cast<const unsigned char*>(sqlite3_column_blob(select.get(), 1));
        row.item.value.assign(value, value + sqlite3_column_bytes(select.get(), 1));
        row.item.attrib = settings_manager::impl::RawAttrib::SerializeAttrib(
            settings_manager::Attributes{sqlite3_column_int(select.get(), 2) != 0});
        rows.push_back(std::move(row));
    }
    if (step != SQLITE_DONE) {
        throw std::runtime_error("can't read " + m_file + ": " + sqlite3_errmsg(m_db));
    }
    if (rows.empty()) {
        return Setting(SettingMap{});
    }
    std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return PreOrder(a.path, b.path); });
    std::vector<RawItem> items;
    items.reserve(rows.size());
    for (auto& row : rows) {
        items.push_back(std::move(row.item));
    }
    if (const auto misnested = FirstMisnested(items)) {
        throw std::runtime_error(m_file + " is damaged: the row '" + items[*misnested].path +
                                 "' has no parent row");
    }
    uvc::Path root;
    Setting tree;
    const auto result = settings_manager::Deserialize(items, root, tree);
    if (result.first < 0 || !root.Empty() || !std::holds_alternative<SettingMap>(tree)) {
        throw std::runtime_error(m_file + " is damaged: its rows don't make a settings tree" +
                                 (result.first < 0 ? ": " + result.second : std::string()));
    }
    HL_LOG(LogLevel::Info, "{}: {} nodes", m_file, items.size());
    return tree;
}

bool SqliteTreeStore::DeleteSubtree(const std::string& pathText) {
    if (pathText.empty()) {
        return Execute("DELETE FROM nodes");
    }
    Statement remove = Prepare(m_db, "DELETE FROM nodes WHERE path >= ?1 AND path < ?2");
    const std::string end = SubtreeEnd(pathText);
    return remove &&
           sqlite3_bind_text(remove.get(), 1, pathText.data(), static_cast<int>(pathText.size()),
                             SQLITE_STATIC) == SQLITE_OK &&
           sqlite3_bind_text(remove.get(), 2, end.data(), static_cast<int>(end.size()), SQLITE_STATIC) ==
               SQLITE_OK &&
           sqlite3_step(remove.get()) == SQLITE_DONE;
}

std::int32_t SqliteTreeStore::Commit(const TreeChange& change) {
    const std::string pathText = settings_manager::impl::RawItem::SerializePath(change.at);
    if (!Execute("BEGIN IMMEDIATE")) {
        return kMediaError;
    }
    bool done = true;
    if (change.kind == TreeChange::Kind::Flag) {
        Statement update = Prepare(m_db, "UPDATE nodes SET flag = ?1 WHERE path = ?2");
        done = update && sqlite3_bind_int(update.get(), 1, change.flag ? 1 : 0) == SQLITE_OK &&
               sqlite3_bind_text(update.get(), 2, pathText.data(), static_cast<int>(pathText.size()),
                                 SQLITE_STATIC) == SQLITE_OK &&
               sqlite3_step(update.get()) == SQLITE_DONE;
    } else {
        done = DeleteSubtree(pathText);
    }
    if (done && change.kind == TreeChange::Kind::Replace) {
        std::vector<RawItem> items;
        const auto result = settings_manager::Serialize(change.at, change.subtree, items);
        Statement insert = Prepare(m_db, "INSERT INTO nodes(path, value, flag) VALUES(?1, ?2, ?3)");
        done = result.first >= 0 && insert != nullptr;
        for (std::size_t i = 0; done && i < items.size(); ++i) {
            const RawItem& item = items[i];
            sqlite3_reset(insert.get());
            done = sqlite3_bind_text(insert.get(), 1, item.path.data(), static_cast<int>(item.path.size()),
                                     SQLITE_STATIC) == SQLITE_OK &&
                   sqlite3_bind_blob(insert.get(), 2, item.value.data(), static_cast<int>(item.value.size()),
                                     SQLITE_STATIC) == SQLITE_OK &&
                   sqlite3_bind_int(insert.get(), 3, (item.attrib.at(8) & 1) != 0 ? 1 : 0) == SQLITE_OK &&
                   sqlite3_step(insert.get()) == SQLITE_DONE;
        }
    }
    if (!done || !Execute("COMMIT")) {
        HL_LOG(LogLevel::Error, "SQLite: the change at '{}' failed: {}", change.at, sqlite3_errmsg(m_db));
        Execute("ROLLBACK");
        return kMediaError;
    }
    return kOk;
}

}  // namespace hl_settingsd
