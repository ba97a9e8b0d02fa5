#pragma once

#include <ui_kit/models/menu_item.h>

#include <QAbstractListModel>

#include <cstddef>
#include <memory>

namespace vdi::uikit::models {

// The list behind the kit's side menu (CommonMenu). Items are only ever appended, in order.
// Main thread only, like any model a view is bound to.
class IMenuModel {
public:
    virtual ~IMenuModel() = default;

    // Appends the item; neither a duplicate id nor a null item is refused.
    virtual void AddMenuItem(std::shared_ptr<MenuItem> item) = 0;
    virtual std::size_t ItemCount() const = 0;
    // The first item with the full 64-bit id, or an empty pointer.
    virtual std::shared_ptr<MenuItem> GetItemById(unsigned long id) const = 0;
    // The same object as the model that QML views take.
    virtual QAbstractListModel* AsQAbstractListModel() = 0;
};

// A MenuModel with no parent, owned by the caller.
std::unique_ptr<IMenuModel> CreateMenuModel();

}  // namespace vdi::uikit::models
