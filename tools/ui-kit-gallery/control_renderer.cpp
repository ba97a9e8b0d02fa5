#include "control_renderer.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QThread>

#include <mutex>
#include <vector>

namespace vdi::uikit::gallery {

namespace {

constexpr char kSpecimenDir[] = ":/ui_kit_gallery/specimens";
// Long enough for asynchronous loaders, image decoding and canvas painting to finish.
constexpr int kSettleMilliseconds = 300;
constexpr int kMaxLoadingMilliseconds = 5000;

// Gathers QML's warnings and errors while a specimen is built and drawn.
class MessageCollector {
public:
    MessageCollector() {
        std::lock_guard lock(s_mutex);
        s_messages.clear();
        m_previous = qInstallMessageHandler(&MessageCollector::Handle);
    }
    ~MessageCollector() { qInstallMessageHandler(m_previous); }
    MessageCollector(const MessageCollector&) = delete;
    MessageCollector& operator=(const MessageCollector&) = delete;

    QStringList Messages() const {
        std::lock_guard lock(s_mutex);
        return s_messages;
    }

private:
    static void Handle(QtMsgType type, const QMessageLogContext&, const QString& message) {
        if (type == QtDebugMsg || type == QtInfoMsg) return;
        std::lock_guard lock(s_mutex);
        s_messages.append(message);
    }

    static inline std::mutex s_mutex;
    static inline QStringList s_messages;
    QtMessageHandler m_previous = nullptr;
};

// True while a Loader or an Image below the item is still loading.
bool IsLoading(QQuickItem* root) {
    std::vector<QQuickItem*> pending = {root};
    while (!pending.empty()) {
        QQuickItem* item = pending.back();
        pending.pop_back();
        // Loader.Loading and Image.Loading are both 2.
        if ((item->inherits("QQuickLoader") || item->inherits("QQuickImageBase")) &&
            item->property("status").toInt() == 2)
            return true;
        const auto children = item->childItems();
        pending.insert(pending.end(), children.begin(), children.end());
    }
    return false;
}

void Settle(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(5);
    }
}

}  // namespace

ControlRenderer::ControlRenderer(std::shared_ptr<PaletteSwitch> paletteSwitch)
    : m_paletteSwitch(std::move(paletteSwitch)), m_engine(std::make_unique<QQmlEngine>()) {
    m_engine->rootContext()->setContextProperty("paletteProvider", m_paletteSwitch->Provider());
    m_engine->rootContext()->setContextProperty("paletteSwitch", m_paletteSwitch.get());
}

QStringList ControlRenderer::SpecimenNames() {
    QStringList names;
    const QStringList files = QDir(kSpecimenDir).entryList({"*.qml"}, QDir::Files, QDir::Name);
    for (const QString& file : files) names.append(file.chopped(4));
    return names;
}

QImage ControlRenderer::Render(const QString& specimen, utils::style::PaletteId palette, QString* error) {
    const QString path = QStringLiteral("%1/%2.qml").arg(kSpecimenDir, specimen);
    if (!QFile::exists(path)) {
        *error = QStringLiteral("no specimen named %1").arg(specimen);
        return {};
    }
    m_paletteSwitch->SetPaletteId(palette);

    MessageCollector messages;
    QQmlComponent component(m_engine.get(), QUrl("qrc" + path));
    std::unique_ptr<QObject> object(component.create());
    auto* item = qobject_cast<QQuickItem*>(object.get());
    if (item == nullptr) {
        *error = QStringLiteral("%1 did not build: %2").arg(specimen, component.errorString());
        return {};
    }

    QImage image;
    {
        QQuickWindow window;
        window.setColor(Qt::transparent);
        item->setParentItem(window.contentItem());
        window.resize(qMax(1, qCeil(item->width())), qMax(1, qCeil(item->height())));
        window.show();
        Settle(kSettleMilliseconds);
        // A busy machine may need longer for asynchronous content; wait for it, within reason.
        for (int waited = 0; IsLoading(window.contentItem()) && waited < kMaxLoadingMilliseconds;
             waited += 50)
            Settle(50);
        // The specimen may have grown while its content arrived.
        window.resize(qMax(1, qCeil(item->width())), qMax(1, qCeil(item->height())));
        Settle(50);
        image = window.grabWindow();
        object.reset();
    }
    // The scene graph hands its textures to deleteLater when the window goes.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    const QStringList reported = messages.Messages();
    if (!reported.isEmpty()) {
        *error = QStringLiteral("%1 reported: %2").arg(specimen, reported.join(QStringLiteral("; ")));
        return {};
    }
    if (image.isNull()) *error = QStringLiteral("%1 could not be grabbed").arg(specimen);
    return image;
}

bool ControlRenderer::RenderToDirectory(const QString& directory, const QStringList& specimens,
                                        const std::vector<utils::style::PaletteId>& palettes,
                                        QString* error) {
    if (!QDir().mkpath(directory)) {
        *error = QStringLiteral("cannot create %1").arg(directory);
        return false;
    }
    const QStringList names = specimens.isEmpty() ? SpecimenNames() : specimens;
    for (const QString& name : names) {
        for (const auto palette : palettes) {
            const QImage image = Render(name, palette, error);
            if (image.isNull()) return false;
            const QString file = QStringLiteral("%1/%2_%3.png")
                                     .arg(directory, name, QString::fromLatin1(PaletteName(palette)));
            if (!image.save(file)) {
                *error = QStringLiteral("cannot write %1").arg(file);
                return false;
            }
        }
    }
    return true;
}

void PrepareOffscreenRendering() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
}

}  // namespace vdi::uikit::gallery
