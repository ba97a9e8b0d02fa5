#include <access_arbiter/ui/window_factory/window_factory.h>

#include <common_utils_ui/translate/i_translation_installer.h>
#include <diagnostics/log_capture_for_testing.h>
#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>
#include <ui_kit/style/palette_provider.h>

#include "support/dialog_fixture.h"
#include "support/ui_test_doubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QQmlContext>
#include <QTest>

namespace {

using namespace access_arbiter::testing;
using access_arbiter::ui::WindowFactory;
using access_arbiter::ui::mode::UserDecision;
using ::testing::HasSubstr;
namespace style = vdi::uikit::utils::style;

TEST(WindowFactory, NullEngineOrSetterIsRejected) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    QQmlApplicationEngine engine;
    EXPECT_THAT(FailureText([] { WindowFactory({}, std::make_shared<RecordingSetter>()); }),
                HasSubstr("QQmlEngine is null"));
    EXPECT_THAT(FailureText([&] { WindowFactory(&engine, nullptr); }), HasSubstr("User decision setter is null!"));
}

// The dialog as main builds it: a palette provider on the root context, then the factory.
class DialogTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_engine.rootContext()->setContextProperty(QStringLiteral("paletteProvider"), nullptr);
    }

    // Makes the provider, starting at `id`, and publishes it as "paletteProvider".
    void UsePalette(style::PaletteId id) {
        m_interactor = style::CreatePaletteIdInteractor();
        m_interactor->SetPaletteId(id);
        m_provider = style::CreatePaletteProvider(style::CreatePaletteFactory(), m_interactor);
        m_engine.rootContext()->setContextProperty(QStringLiteral("paletteProvider"), m_provider.get());
    }

    QQuickWindow* CreateDialog() {
        m_window = m_factory.CreateWindow();
        EXPECT_NE(m_window, nullptr);
        return DialogWindow(m_engine);
    }

    QColor BorderColor(QQuickWindow& window) {
        return DialogRectangle(window)->property("border").value<QObject*>()->property("color").value<QColor>();
    }

    int m_argc = 0;
    QGuiApplication m_app{m_argc, nullptr};
    std::shared_ptr<style::IPaletteIdInteractor> m_interactor;
    std::shared_ptr<style::PaletteProvider> m_provider;
    QQmlApplicationEngine m_engine;
    std::shared_ptr<RecordingSetter> m_setter = std::make_shared<RecordingSetter>();
    WindowFactory m_factory{&m_engine, m_setter};
    std::shared_ptr<windows::components::IWindow> m_window;
};

TEST_F(DialogTest, CreatedWindowIsHiddenAndSized) {
    UsePalette(style::PaletteId::Dark);
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->width(), 320);
    EXPECT_EQ(window->height(), 156);
    EXPECT_EQ(window->title(), QStringLiteral("AccessArbiter"));
    EXPECT_EQ(window->color(), QColor(Qt::transparent));
    auto* rect = DialogRectangle(*window);
    ASSERT_NE(rect, nullptr);
    EXPECT_EQ(rect->property("color").value<QColor>(), QColor(QStringLiteral("#171F1D")));
    EXPECT_EQ(rect->property("radius").toInt(), 12);
}

TEST_F(DialogTest, ShowMakesTheWindowVisible) {
    UsePalette(style::PaletteId::Dark);
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    m_window->Show();
    EXPECT_TRUE(window->isVisible());
}

TEST_F(DialogTest, ButtonsPushDeclineAndApproveWithRealClicksAndHide) {
    UsePalette(style::PaletteId::Dark);
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    const auto buttons = FindItemsOfType(DialogRectangle(*window), "PushButton");
    ASSERT_EQ(buttons.size(), 2U);
    EXPECT_LT(buttons[0]->mapToScene({0, 0}).x(), buttons[1]->mapToScene({0, 0}).x());

    m_window->Show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    ClickItem(*window, *buttons[0]);
    EXPECT_EQ(m_setter->decisions, std::vector<UserDecision>{UserDecision::Decline});
    EXPECT_FALSE(window->isVisible());

    m_window->Show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    ClickItem(*window, *buttons[1]);
    EXPECT_EQ(m_setter->decisions, (std::vector<UserDecision>{UserDecision::Decline, UserDecision::Approve}));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(DialogTest, BorderFollowsThePalette) {
    UsePalette(style::PaletteId::Light);
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(BorderColor(*window), QColor(QStringLiteral("#E9EAEB")));
    m_interactor->SetPaletteId(style::PaletteId::Dark);
    EXPECT_EQ(BorderColor(*window), QColor(QStringLiteral("#1FFFFFFF")));
    // The fill stays fixed whatever the palette.
    EXPECT_EQ(DialogRectangle(*window)->property("color").value<QColor>(), QColor(QStringLiteral("#171F1D")));
}

TEST_F(DialogTest, BorderFallsBackWithoutPalette) {
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(BorderColor(*window), QColor(QStringLiteral("#1FFFFFFF")));
    m_window->Show();
    EXPECT_TRUE(window->isVisible());
}

TEST_F(DialogTest, MissingTranslationShowsTheKeys) {
    UsePalette(style::PaletteId::Dark);
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(DialogTexts(*window),
              (std::vector<QString>{"$Title$", "$Description$", "$Decline$", "$Approve$"}));
}

class TranslatedDialogTest : public DialogTest, public ::testing::WithParamInterface<std::pair<const char*, bool>> {};

TEST_P(TranslatedDialogTest, TextsComeFromTheCatalogueOfTheLocale) {
    const auto [locale, russian] = GetParam();
    auto installer = vdi::common_utils_ui::translate::CreateTranslationInstaller();
    ASSERT_EQ(installer->Install("access_arbiter", locale), 0);
    UsePalette(style::PaletteId::Dark);
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    const std::vector<QString> expected =
        russian ? std::vector<QString>{"Запрос на подключение",
                                       "Пользователь запрашивает доступ на управление вашим устройством",
                                       "Запретить", "Разрешить"}
                : std::vector<QString>{"Connection request", "A user requests access to manage your device",
                                       "Decline", "Approve"};
    EXPECT_EQ(DialogTexts(*window), expected);
}

INSTANTIATE_TEST_SUITE_P(Locales, TranslatedDialogTest,
                         ::testing::Values(std::make_pair("en-US", false), std::make_pair("ru-RU", true),
                                           std::make_pair("es-MX", false), std::make_pair("pt-BR", false)),
                         [](const auto& info) { return std::string(info.param.first).replace(2, 1, "_"); });

}  // namespace
