#include <ui_kit/models/menu_model.h>

#include <QVariant>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace vdi::uikit::models {

MenuModel::MenuModel(QObject* parent) : QAbstractListModel(parent) {
    m_roleNames.insert(NameRole, "name");
    m_roleNames.insert(IdRole, "id");
    m_roleNames.insert(WidgetRole, "widgetFromModel");
    m_roleNames.insert(ComponentUrlRole, "componentUrlFromModel");
}

MenuModel::~MenuModel() = default;

void MenuModel::AddMenuItem(std::shared_ptr<MenuItem> item) {
    const auto row = static_cast<int>(ItemCount());
    beginInsertRows(QModelIndex(), row, row);
    m_items.push_back(std::move(item));
    endInsertRows();
}

std::size_t MenuModel::ItemCount() const {
    return m_items.size();
}

std::shared_ptr<MenuItem> MenuModel::GetItemById(unsigned long id) const {
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [id](const auto& item) { return item && item->Id() == id; });
    return found != m_items.end() ? *found : nullptr;
}

QAbstractListModel* MenuModel::AsQAbstractListModel() {
    return this;
}

int MenuModel::rowCount(const QModelIndex& /*parent*/) const {
    return static_cast<int>(m_items.size());
}

QVariant MenuModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    // Views only hand out rows they got from rowCount, but an index kept past its time must not
    // read outside the vector.
    const auto row = static_cast<std::size_t>(index.row());
    if (row >= m_items.size()) {
        return {};
    }
    const auto& item = m_items[row];
    if (!item) {
        return {};
    }
    switch (role) {
        case NameRole:
            return item->Name();
        case IdRole:
            // Cut to the low 32 bits on purpose: QML's list views read the id as an int.
            return static_cast<int>(static_cast<std::uint32_t>(item->Id()));
        case WidgetRole:
            return QVariant::fromValue(item->Widget());
        case ComponentUrlRole:
            return item->ComponentUrl();
        default:
            return {};
    }
}

QHash<int, QByteArray> MenuModel::roleNames() const {
    return m_roleNames;
}

std::unique_ptr<IMenuModel> CreateMenuModel() {
    return std::make_unique<MenuModel>();
}

}  // namespace vdi::uikit::models
