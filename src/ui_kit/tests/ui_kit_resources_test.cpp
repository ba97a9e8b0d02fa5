// The kit's two resource trees: registered before main in any program that links hl_ui_kit,
// complete, and every control and image usable from its resource path without a warning.
#include <ui_kit/style/palette_provider.h>

#include <QDir>
#include <QDirIterator>
#include <QGuiApplication>
#include <QImage>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace {

const QStringList kControls =
    QStringLiteral(
        "AltTab AppButton AppButtonTooltip AppMenu AppWindowTooltip AppWindows CheckBox CloseButton ComboBox "
        "CommonMenu CommonWindow ControlsTooltip DatePicker DnsMultilineText LineEdit Loader "
        "ManualScrollingText "
        "MoreMenu Outline PushButton RadioButton RightClickedMouseArea RoundedRect ScrollHandle "
        "ScrollingText "
        "SlideButton TaskbarTooltip TextEdit TextLabel TextPromt Toast TooltipTextWindow")
        .split(' ');

const QStringList kImages =
    QStringLiteral(
        "backbutton/back_icon calendar check_mark_icon_disable check_mark_icon_enable close_icon "
        "combobox/indicator_icon combobox/magnifier_icon critical_icon error_icon hos_logo left "
        "lineedit/reset_text "
        "loader_big loader_small logo_big logo_hc main_logo_hc main_logo_hc_transparent more_menu right "
        "settings_gear settings_gear_disabled warning_icon warning_icon_white")
        .split(' ');

// Collects every warning and error Qt reports while alive (from any thread: images load on their own).
class WarningCollector {
public:
    WarningCollector() {
        std::lock_guard lock(s_mutex);
        s_messages.clear();
    }
    ~WarningCollector() { qInstallMessageHandler(m_previous); }

    QStringList Messages() const {
        std::lock_guard lock(s_mutex);
        return s_messages;
    }

private:
    static void Handle(QtMsgType type, const QMessageLogContext&, const QString& message) {
        std::lock_guard lock(s_mutex);
        if (type != QtDebugMsg && type != QtInfoMsg) s_messages.append(message);
    }

    static inline std::mutex s_mutex;
    static inline QStringList s_messages;
    const QtMessageHandler m_previous = qInstallMessageHandler(&WarningCollector::Handle);
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

TEST_F(UiKitResources, TreesAreRegisteredBeforeMainAndHoldExactlyTheKitsFiles) {
    // Nothing in this program calls qInitResources_*: the static initialisers must have run.
    QStringList controls;
    for (const QString& name : kControls) controls.append(name + ".qml");
    EXPECT_EQ(QDir(":/ui_kit/qml/base").entryList(QDir::Files, QDir::Name), controls);
    QStringList images;
    QDirIterator it(":/ui_kit/images", QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) images.append(it.next().mid(QStringLiteral(":/ui_kit/images/").size()));
    images.sort();
    EXPECT_EQ(images, kImages) << "images are reached by their name without extension";
}

TEST_F(UiKitResources, EveryImageDecodesWithoutWarningAtTheSizeItsSourceDeclares) {
    // The PNGs are made from images/svg by images/make_pngs.sh and committed; a source edited
    // without rerunning it shows up here by its size.
    const QString svgRoot = QStringLiteral(HL_SOURCE_DIR "/src/ui_kit/images/svg/");
    const QRegularExpression sizePattern(R"re(<svg[^>]*\swidth="(\d+)"[^>]*\sheight="(\d+)")re");
    WarningCollector warnings;
    for (const QString& name : kImages) {
        SCOPED_TRACE(name.toStdString());
        QFile svg(svgRoot + name + ".svg");
        ASSERT_TRUE(svg.open(QIODevice::ReadOnly));
        const auto match = sizePattern.match(QString::fromUtf8(svg.readAll()));
        ASSERT_TRUE(match.hasMatch()) << "the source declares no width and height";
        const QImage image(":/ui_kit/images/" + name);
        EXPECT_EQ(image.size(), QSize(match.captured(1).toInt(), match.captured(2).toInt()));
    }
    EXPECT_TRUE(warnings.Messages().isEmpty()) << warnings.Messages().join("\n").toStdString();
}

struct ControlCase {
    QString control;
    int paletteId;  // 0: the context property "paletteProvider" is null
};

void PrintTo(const ControlCase& c, std::ostream* os) {
    *os << c.control.toStdString() << "/" << c.paletteId;
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
        QQmlComponent component(&engine);
        // Inside an item, as a control is used: an Outline outlines its parent, for one.
        component.setData(QStringLiteral("import QtQuick\nimport \"qrc:/ui_kit/qml/base/\" as UiKitBase\n"
                                         "Item { width: 400; height: 200; UiKitBase.%1 {} }\n")
                              .arg(param.control)
                              .toUtf8(),
                          QUrl("qrc:/ui_kit_test/" + param.control + "Case.qml"));
        std::unique_ptr<QObject> object(component.create());
        auto* item = qobject_cast<QQuickItem*>(object.get());
        ASSERT_NE(item, nullptr) << component.errorString().toStdString();
        item->setParentItem(window.contentItem());
        window.show();
        QTest::qWait(150);
        object.reset();
    }
    // The scene graph hands its textures to deleteLater when the window goes.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QStringList messages = warnings.Messages();
    // The avatar is an image of the client application, which no tree of the kit carries.
    if (param.control == "AppMenu")
        messages.removeIf([](const QString& m) { return m.contains("icon-avatar"); });
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
    return info.param.control.toStdString() + "_" + kPalettes[info.param.paletteId];
}

INSTANTIATE_TEST_SUITE_P(AllControls, UiKitControlLoads, ::testing::ValuesIn(AllControlCases()),
                         ControlCaseName);

}  // namespace
