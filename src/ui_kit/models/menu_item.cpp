#include <ui_kit/models/menu_item.h>

#include <utility>

namespace vdi::uikit::models {

MenuItem::MenuItem(QString name, std::uint64_t id, QUrl componentUrl, QObject* widget)
    : m_name(std::move(name)), m_id(id), m_componentUrl(std::move(componentUrl)), m_widget(widget) {}

const QString& MenuItem::Name() const {
    return m_name;
}

std::uint64_t MenuItem::Id() const {
    return m_id;
}

const QUrl& MenuItem::ComponentUrl() const {
    return m_componentUrl;
}

QObject* MenuItem::Widget() const {
    return m_widget;
}

}  // namespace vdi::uikit::models
