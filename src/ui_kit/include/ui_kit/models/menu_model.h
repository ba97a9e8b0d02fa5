#pragma once

#include <ui_kit/models/i_menu_model.h>
#include <ui_kit/models/menu_item.h>

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>

#include <memory>
#include <vector>

namespace vdi::uikit::models {

// The side menu's list model. Roles: "name" (Qt::DisplayRole), "id" (0x101, the id cut to a signed
// 32-bit int), "widgetFromModel" (0x102, QObject*), "componentUrlFromModel" (0x103, QUrl).
// AddMenuItem is a slot, the only method of the class's own meta-object. Main thread only.
class MenuModel final : public QAbstractListModel, public IMenuModel {
    Q_OBJECT

public:
    enum Role {
        NameRole = Qt::DisplayRole,
        IdRole = 0x101,
        WidgetRole = 0x102,
        ComponentUrlRole = 0x103,
    };

    explicit MenuModel(QObject* parent = nullptr);
    ~MenuModel() override;

    std::size_t ItemCount() const override;
    std::shared_ptr<MenuItem> GetItemById(unsigned long id) const override;
    QAbstractListModel* AsQAbstractListModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

public slots:
    void AddMenuItem(std::shared_ptr<vdi::uikit::models::MenuItem> item) override;

private:
    std::vector<std::shared_ptr<MenuItem>> m_items;
    QHash<int, QByteArray> m_roleNames;
};

}  // namespace vdi::uikit::models
