#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

#include <cstdint>

namespace vdi::uikit::models {

// One entry of the kit's side menu: a caption, an id, the page to load and an optional widget.
// Immutable; shared by pointer between the application and MenuModel. The widget is not owned:
// whoever made it keeps it alive for as long as the menu shows it.
class MenuItem {
public:
    MenuItem(QString name, std::uint64_t id, QUrl componentUrl, QObject* widget = nullptr);

    const QString& Name() const;
    std::uint64_t Id() const;
    const QUrl& ComponentUrl() const;
    QObject* Widget() const;

private:
    QString m_name;
    std::uint64_t m_id;
    QUrl m_componentUrl;
    QObject* m_widget;
};

}  // namespace vdi::uikit::models
