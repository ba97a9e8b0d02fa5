#include <access_arbiter/ui/window_factory/window_factory.h>

#include <common_utils_ui/translate/i_translation_installer.h>
#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>
#include <ui_kit/style/palette_provider.h>

#include "support/dialog_fixture.h"
#include "support/ui_test_doubles.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQmlContext>
#include <QTest>

#include <map>
#include <optional>

namespace {

using namespace access_arbiter::testing;
using access_arbiter::ui::mode::UserDecision;
namespace style = vdi::uikit::utils::style;

// The dialog as main builds it: a palette provider (or none) on the root context, then the factory.
class DialogTest : public ::testing::Test {
protected:
    QQuickWindow* CreateDialog(std::optional<style::PaletteId> palette = style::PaletteId::Dark) {
        if (palette) {
            m_interactor->SetPaletteId(*palette);
            m_provider = style::CreatePaletteProvider(style::CreatePaletteFactory(), m_interactor);
        }
        m_engine.rootContext()->setContextProperty(QStringLiteral("paletteProvider"), m_provider.get());
        m_window = m_factory.CreateWindow();
        EXPECT_NE(m_window, nullptr);
        return DialogWindow(m_engine);
    }

    QColor BorderColor(QQuickWindow& window) {
        return DialogRectangle(window)
            ->property("border")
            .value<QObject*>()
            ->property("color")
            .value<QColor>();
    }

    int m_argc = 0;
    QGuiApplication m_app{m_argc, nullptr};
    std::shared_ptr<style::IPaletteIdInteractor> m_interactor = style::CreatePaletteIdInteractor();
    std::shared_ptr<style::PaletteProvider> m_provider;
    QQmlApplicationEngine m_engine;
    std::shared_ptr<RecordingSetter> m_setter = std::make_shared<RecordingSetter>();
    access_arbiter::ui::WindowFactory m_factory{&m_engine, m_setter};
    std::shared_ptr<windows::components::IWindow> m_window;
};

TEST_F(DialogTest, CreatedWindowIsHiddenAndSizedAndShowMakesItVisible) {
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->size(), QSize(320, 156));
    EXPECT_EQ(window->title(), QStringLiteral("AccessArbiter"));
    m_window->Show();
    EXPECT_TRUE(window->isVisible());
}

TEST_F(DialogTest, ButtonsPushDeclineAndApproveWithRealClicksAndHide) {
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    const auto buttons = FindItemsOfType(DialogRectangle(*window), "PushButton");
    ASSERT_EQ(buttons.size(), 2U);
    for (int index : {0, 1}) {
        m_window->Show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
        ClickItem(*window, *buttons[index]);
        ASSERT_EQ(m_setter->decisions.size(), index + 1U);
        EXPECT_EQ(static_cast<int>(m_setter->decisions.back()), index) << "Decline is 0, Approve 1";
        EXPECT_FALSE(window->isVisible());
    }
}

TEST_F(DialogTest, BorderFollowsThePalette) {
    QQuickWindow* window = CreateDialog(style::PaletteId::Light);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(BorderColor(*window), QColor(QStringLiteral("#E9EAEB")));
    m_interactor->SetPaletteId(style::PaletteId::Dark);
    EXPECT_EQ(BorderColor(*window), QColor(QStringLiteral("#1FFFFFFF")));
    // The fill stays fixed whatever the palette.
    EXPECT_EQ(DialogRectangle(*window)->property("color").value<QColor>(), QColor(QStringLiteral("#171F1D")));
}

TEST_F(DialogTest, BorderFallsBackWithoutPalette) {
    QQuickWindow* window = CreateDialog(std::nullopt);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(BorderColor(*window), QColor(QStringLiteral("#1FFFFFFF")));
}

// Installs the catalogue of the locale (none for an empty one) and reads the title, the description
// and the two button captions.
class TranslatedDialogTest : public DialogTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(TranslatedDialogTest, TextsComeFromTheCatalogueOfTheLocaleOrAreTheKeys) {
    const std::string locale = GetParam();
    auto installer = vdi::common_utils_ui::translate::CreateTranslationInstaller();
    ASSERT_TRUE(locale.empty() || installer->Install("access_arbiter", locale) == 0);
    QQuickWindow* window = CreateDialog();
    ASSERT_NE(window, nullptr);
    std::vector<QString> texts;
    const auto labels = FindItemsOfType(DialogRectangle(*window), "TextLabel");
    // Button captions are TextLabels too; the first two labels are the title and description.
    for (auto* item : {labels.at(0), labels.at(1)}) {
        texts.push_back(item->property("text").toString());
    }
    for (auto* button : FindItemsOfType(DialogRectangle(*window), "PushButton")) {
        texts.push_back(button->property("text").toString());
    }
    const std::map<std::string, std::vector<QString>> expected = {
        {"", {"$Title$", "$Description$", "$Decline$", "$Approve$"}},
        {"ru-RU",
         {"Запрос на подключение", "Пользователь запрашивает доступ на управление вашим устройством",
          "Запретить", "Разрешить"}}};
    const std::vector<QString> english = {
        "Connection request", "A user requests access to manage your device", "Decline", "Approve"};
    EXPECT_EQ(texts, expected.count(locale) != 0 ? expected.at(locale) : english);
}

INSTANTIATE_TEST_SUITE_P(Locales, TranslatedDialogTest,
                         ::testing::Values("", "en-US", "ru-RU", "es-MX", "pt-BR"), [](const auto& info) {
                             return info.index == 0 ? "none" : std::string(info.param).erase(2, 1);
                         });

}  // namespace
