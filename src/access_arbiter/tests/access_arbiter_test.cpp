#include <access_arbiter/application/access_arbiter.h>

#include <diagnostics/log_capture_for_testing.h>

#include "support/ui_test_doubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QGuiApplication>

namespace {

using access_arbiter::AccessArbiter;
using access_arbiter::testing::FailureText;
using ::testing::HasSubstr;

TEST(AccessArbiter, ConstructionBeforeTheQtApplicationFails) {
    EXPECT_THAT(FailureText([] { AccessArbiter application; }),
                HasSubstr("QCoreApplication must be created before AccessArbiter"));
}

TEST(AccessArbiter, SetsTheNamesTheCataloguesDependOn) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    AccessArbiter application;
    EXPECT_EQ(QCoreApplication::applicationName(), QStringLiteral("access_arbiter"));
    EXPECT_EQ(QCoreApplication::organizationName(), QStringLiteral("Halcyra"));
    EXPECT_FALSE(QCoreApplication::organizationDomain().isEmpty());
}

TEST(AccessArbiter, PaletteIsAlwaysDark) {
    int argc = 0;
    QGuiApplication app(argc, nullptr);
    AccessArbiter application;
    const auto provider = application.GetPaletteProvider();
    ASSERT_NE(provider, nullptr);
    EXPECT_EQ(provider, application.GetPaletteProvider());
    ASSERT_NE(provider->Palette(), nullptr);
    EXPECT_EQ(provider->Palette()->Id(), vdi::uikit::utils::style::PaletteId::Dark);
}

TEST(AccessArbiter, SetupLoggerRoutesQtMessagesIntoTheLog) {
    hos::logger::LogCaptureForTesting capture;
    AccessArbiter::SetupLogger();
    qWarning("a toolkit warning");
    qInstallMessageHandler(nullptr);
    EXPECT_TRUE(capture.Contains("a toolkit warning"));
    EXPECT_EQ(capture.Count(hos::logger::LogLevel::Warning), 1U);
}

TEST(AccessArbiter, InitResourcesKeepsTheKitTreesAvailable) {
    ASSERT_TRUE(QFile::exists(QStringLiteral(":/ui_kit/qml/base/PushButton.qml")));
    AccessArbiter::InitResources();
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/ui_kit/qml/base/PushButton.qml")));
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/ui_kit/images/close_icon")));
    EXPECT_TRUE(QFile::exists(QStringLiteral(":/qml/access_arbiter_view")));
}

}  // namespace
