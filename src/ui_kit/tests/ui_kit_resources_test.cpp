// The kit's two resource trees: registered before main in any program that links hl_ui_kit,
// complete, and every control and image usable from its resource path without a warning.
#include <ui_kit/style/palette_provider.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QGuiApplication>
#include <QImage>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

int qInitResources_ui_kit_qml();
int qCleanupResources_ui_kit_qml();
int qInitResources_ui_kit_images();
int qCleanupResources_ui_kit_images();

namespace {

const std::vector<std::string> kControls = {
    "AltTab",
    "AppButton",
    "AppButtonTooltip",
    "AppMenu",
    "AppWindowTooltip",
    "AppWindows",
    "CheckBox",
    "CloseButton",
    "ComboBox",
    "CommonMenu",
    "CommonWindow",
    "ControlsTooltip",
    "DatePicker",
    "DnsMultilineText",
    "LineEdit",
    "Loader",
    "ManualScrollingText",
    "MoreMenu",
    "Outline",
    "PushButton",
    "RadioButton",
    "RightClickedMouseArea",
    "RoundedRect",
    "ScrollHandle",
    "ScrollingText",
    "SlideButton",
    "TaskbarTooltip",
    "TextEdit",
    "TextLabel",
    "TextPromt",
    "Toast",
    "TooltipTextWindow",
};

const std::vector<std::string> kImages = {
    "left",
    "right",
    "lineedit/reset_text",
    "backbutton/back_icon",
    "logo_hc",
    "logo_big",
    "hos_logo",
    "main_logo_hc",
    "main_logo_hc_transparent",
    "critical_icon",
    "error_icon",
    "warning_icon",
    "warning_icon_white",
    "close_icon",
    "combobox/magnifier_icon",
    "combobox/indicator_icon",
    "check_mark_icon_enable",
    "check_mark_icon_disable",
    "settings_gear",
    "settings_gear_disabled",
    "calendar",
    "more_menu",
    "loader_small",
    "loader_big",
};

QString ControlPath(const std::string& name) {
    return QStringLiteral(":/ui_kit/qml/base/%1.qml").arg(QString::fromStdString(name));
}

QString ImagePath(const std::string& name) {
    return QStringLiteral(":/ui_kit/images/") + QString::fromStdString(name);
}

// Collects every warning and error Qt reports while alive.
class WarningCollector {
public:
    WarningCollector() {
        s_messages.clear();
        m_previous = qInstallMessageHandler(&WarningCollector::Handle);
    }
    ~WarningCollector() { qInstallMessageHandler(m_previous); }
    WarningCollector(const WarningCollector&) = delete;
    WarningCollector& operator=(const WarningCollector&) = delete;

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

class UiKitResources : public ::testing::Test {
protected:
    void SetUp() override {
        if (QCoreApplication::instance() == nullptr)
            m_app = std::make_unique<QGuiApplication>(m_argc, m_argv);
    }

    int m_argc = 1;
    char m_programName[16] = "ui_kit_tests";
    char* m_argv[2] = {m_programName, nullptr};
    std::unique_ptr<QGuiApplication> m_app;
};

TEST_F(UiKitResources, TreesAreRegisteredBeforeMainWithoutExplicitInit) {
    // Nothing in this program calls qInitResources_*: the static initialisers must have run.
    EXPECT_TRUE(QFile::exists(":/ui_kit/qml/base/PushButton.qml"));
    EXPECT_TRUE(QFile::exists(":/ui_kit/images/close_icon"));
}

TEST_F(UiKitResources, CleanupRemovesATreeAndInitBringsItBack) {
    EXPECT_EQ(qCleanupResources_ui_kit_qml(), 1);
    EXPECT_FALSE(QFile::exists(":/ui_kit/qml/base/TextLabel.qml"));
    EXPECT_TRUE(QFile::exists(":/ui_kit/images/close_icon")) << "the other tree must stay";
    EXPECT_EQ(qInitResources_ui_kit_qml(), 1);
    EXPECT_TRUE(QFile::exists(":/ui_kit/qml/base/TextLabel.qml"));

    EXPECT_EQ(qCleanupResources_ui_kit_images(), 1);
    EXPECT_FALSE(QFile::exists(":/ui_kit/images/close_icon"));
    EXPECT_EQ(qInitResources_ui_kit_images(), 1);
    EXPECT_TRUE(QFile::exists(":/ui_kit/images/close_icon"));
}

TEST_F(UiKitResources, ControlTreeHoldsExactlyTheKitsControls) {
    QStringList expected;
    for (const auto& name : kControls) expected.append(QString::fromStdString(name) + ".qml");
    expected.sort();
    QStringList actual = QDir(":/ui_kit/qml/base").entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(actual, expected);
}

TEST_F(UiKitResources, EveryImageDecodesFromItsNameWithoutExtension) {
    for (const auto& name : kImages) {
        const QString path = ImagePath(name);
        EXPECT_TRUE(QFile::exists(path)) << name;
        EXPECT_FALSE(QFile::exists(path + ".png")) << name << " must be reachable only without extension";
        QImage image(path);
        EXPECT_FALSE(image.isNull()) << name;
    }
}

TEST_F(UiKitResources, LoaderStripsHoldTheSpinnersFrames) {
    // Big: 20 frames of 120 x 120; small: 8 frames of 24 x 24, side by side.
    const QImage big(ImagePath("loader_big"));
    EXPECT_EQ(big.size(), QSize(120 * 20, 120));
    const QImage small(ImagePath("loader_small"));
    EXPECT_EQ(small.size(), QSize(24 * 8, 24));
}

TEST_F(UiKitResources, EverySvgSourceHasAPngOfItsDeclaredSize) {
    // The PNGs are committed beside their sources; one edited without rerunning
    // images/make_pngs.sh shows up here by its size or its absence.
    const QString root = QStringLiteral(HL_SOURCE_DIR "/src/ui_kit/images/");
    const QRegularExpression sizePattern(R"re(<svg[^>]*\swidth="(\d+)"[^>]*\sheight="(\d+)")re");
    int sources = 0;
    QDirIterator it(root + "svg", {"*.svg"}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString svgPath = it.next();
        ++sources;
        const QString relative = QDir(root + "svg").relativeFilePath(svgPath).chopped(4);
        QFile svg(svgPath);
        ASSERT_TRUE(svg.open(QIODevice::ReadOnly)) << svgPath.toStdString();
        const auto match = sizePattern.match(QString::fromUtf8(svg.readAll()));
        ASSERT_TRUE(match.hasMatch()) << relative.toStdString() << " declares no width and height";
        const QImage png(root + "png/" + relative + ".png");
        ASSERT_FALSE(png.isNull()) << relative.toStdString() << " has no PNG";
        EXPECT_EQ(png.size(), QSize(match.captured(1).toInt(), match.captured(2).toInt())) << relative.toStdString();
        EXPECT_TRUE(QFile::exists(ImagePath(relative.toStdString()))) << relative.toStdString() << " is not in the tree";
    }
    EXPECT_EQ(sources, static_cast<int>(kImages.size()));
}

TEST_F(UiKitResources, CloseIconIsWhiteOnTransparent) {
    const QImage icon = QImage(ImagePath("close_icon")).convertToFormat(QImage::Format_ARGB32);
    ASSERT_FALSE(icon.isNull());
    EXPECT_EQ(qAlpha(icon.pixel(0, icon.height() - 1)), 0) << "corner must be transparent";
    const QRgb centre = icon.pixel(icon.width() / 2, icon.height() / 2);
    EXPECT_GT(qAlpha(centre), 200);
    EXPECT_EQ(qRed(centre), 255);
    EXPECT_EQ(qGreen(centre), 255);
    EXPECT_EQ(qBlue(centre), 255);
}

// One control created from its resource path, shown in a window for a few frames.
struct ControlCase {
    std::string control;
    int paletteId;  // 0: the context property "paletteProvider" is null
};

void PrintTo(const ControlCase& c, std::ostream* os) {
    *os << c.control << "/" << c.paletteId;
}

class UiKitControlLoads : public UiKitResources, public ::testing::WithParamInterface<ControlCase> {};

TEST_P(UiKitControlLoads, CreatesFromItsResourcePathWithoutWarnings) {
    const ControlCase param = GetParam();
    std::shared_ptr<QObject> provider;
    namespace style = vdi::uikit::utils::style;
    if (param.paletteId != 0) {
        auto interactor = style::CreatePaletteIdInteractor();
        interactor->SetPaletteId(static_cast<style::PaletteId>(param.paletteId));
        provider = style::CreatePaletteProvider(style::CreatePaletteFactory(), interactor);
    }

    WarningCollector warnings;
    {
        QQuickWindow window;
        window.resize(1100, 800);
        QQmlEngine engine;
        engine.rootContext()->setContextProperty("paletteProvider", provider.get());

        const QString name = QString::fromStdString(param.control);
        QQmlComponent component(&engine);
        // Inside an item, as a control is used: an Outline outlines its parent, for one.
        component.setData(QStringLiteral("import QtQuick\n"
                                         "import \"qrc:/ui_kit/qml/base/\" as UiKitBase\n"
                                         "Item { width: 400; height: 200; UiKitBase.%1 {} }\n")
                              .arg(name)
                              .toUtf8(),
                          QUrl("qrc:/ui_kit_test/" + name + "Case.qml"));
        std::unique_ptr<QObject> object(component.create());
        ASSERT_NE(object, nullptr) << component.errorString().toStdString();
        EXPECT_TRUE(QFile::exists(ControlPath(param.control)));

        auto* item = qobject_cast<QQuickItem*>(object.get());
        ASSERT_NE(item, nullptr);
        item->setParentItem(window.contentItem());
        window.show();
        QTest::qWait(150);
        object.reset();
    }
    // The scene graph hands its textures to deleteLater when the window goes.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    QStringList messages = warnings.Messages();
    if (param.control == "AppMenu") {
        // The avatar is an image of the client application, which no tree of the kit carries.
        messages.removeIf([](const QString& m) { return m.contains("qrc:/rdp_client/images/icon-avatar"); });
    }
    EXPECT_TRUE(messages.isEmpty()) << messages.join("\n").toStdString();
}

std::vector<ControlCase> AllControlCases() {
    std::vector<ControlCase> cases;
    for (int paletteId : {0, 1, 2}) {
        for (const auto& control : kControls) cases.push_back({control, paletteId});
    }
    return cases;
}

std::string ControlCaseName(const ::testing::TestParamInfo<ControlCase>& info) {
    static const char* const kPalettes[] = {"NoPalette", "Light", "Dark"};
    return info.param.control + "_" + kPalettes[info.param.paletteId];
}

INSTANTIATE_TEST_SUITE_P(AllControls, UiKitControlLoads, ::testing::ValuesIn(AllControlCases()),
                         ControlCaseName);

TEST_F(UiKitResources, AppMenuWarnsOnlyAboutTheClientsAvatar) {
    WarningCollector warnings;
    QQmlEngine engine;
    engine.rootContext()->setContextProperty("paletteProvider", nullptr);
    QQmlComponent component(&engine, QUrl("qrc:/ui_kit/qml/base/AppMenu.qml"));
    std::unique_ptr<QObject> object(component.create());
    ASSERT_NE(object, nullptr) << component.errorString().toStdString();
    QTest::qWait(50);
    const QStringList messages = warnings.Messages();
    ASSERT_EQ(messages.size(), 1) << messages.join("\n").toStdString();
    EXPECT_TRUE(messages.front().contains("qrc:/rdp_client/images/icon-avatar"));
}

}  // namespace
