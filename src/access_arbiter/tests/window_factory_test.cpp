// The dialog as the factory makes it: hidden and sized until shown, its border following the palette.
// Its texts in each language and its buttons clicked are the visual, X and end-to-end tests' part.
#include "ui/window_factory/window_factory.h"

#include <ui_kit/style/i_palette_factory.h>
#include <ui_kit/style/i_palette_id_interactor.h>
#include <ui_kit/style/palette_provider.h>

#include "support/dialog_fixture.h"
#include "support/ui_test_doubles.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQmlContext>

#include <optional>

namespace {

using namespace access_arbiter::testing;
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

}  // namespace
