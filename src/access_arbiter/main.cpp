// The composition root: every long-lived object is a local of main, made in the numbered order below
// and destroyed in reverse. A later subsystem goes in at its own number.

#include "access_arbiter.h"
#include "business/interactors/user_decision_interactor.h"
#include "ipc/create_dispatcher.h"
#include "ipc/i_access_arbiter.h"
#include "ipc/stub/access_arbiter.h"
#include "ipc/stub/i_access_arbiter_component.h"
#include "ui/window_factory/i_window.h"
#include "ui/window_factory/i_window_factory.h"
#include "ui/window_factory/window_factory.h"
#include <app_manager/app_controller_status.h>
#include <app_manager/create_application_manager.h>
#include <app_manager/i_application_status.h>
#include <common/utils/i_task_executor.h>
#include <common/utils/qt_ui_task_executor.h>
#include <common_utils/app_utils/get_app_name.h>
#include <common_utils_ui/app_shutdown/qt_app_shutdown.h>
#include <common_utils_ui/fonts/default_font.h>
#include <common_utils_ui/keyboard/keyboard_init.h>
#include <common_utils_ui/watchdog/application_watchdog.h>
#include <diagnostics/check.h>
#include <diagnostics/log.h>
#include <diagnostics/process_exception.h>
#include <diagnostics/result_code.h>

#include <fmt/format.h>

#include <QGuiApplication>
#include <QPointer>
#include <QQmlApplicationEngine>
#include <QQmlContext>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

int main(int argc, char** argv) {
    // Outlives the try, so that a failed start can still be reported through it.
    std::shared_ptr<app_manager::IApplicationStatus> status;

    // 1. application name; handles its own failure, so it stands before the try
    const std::string_view appName =
        common_utils::app_utils::GetAppNameOrDefault(argc, const_cast<const char**>(argv), "AccessArbiter");

    try {
        // 2. application manager: lookup and its three channels, before any Qt object exists
        const std::shared_ptr<app_manager::IApplicationManager> appManager =
            app_manager::CreateApplicationManager(appName);
        HCA_CHECK(appManager != nullptr) << "App manager in null";

        // 3. status object over the controller
        status = app_manager::CreateApplicationStatusSPtr(appName, appManager->GetApplicationController());
        HCA_CHECK(status != nullptr) << "App status is nullptr";

        // 4. the manager hears of the start before the logger and Qt are set up; the result is ignored
        status->ReadyToInitialize();

        // 5. logger, and Qt's own messages routed into it
        access_arbiter::AccessArbiter::SetupLogger();

        // 6. Qt application; this thread is the Qt main thread from here on
        QGuiApplication app(argc, argv);

        // 7. watchdog: its timer pings the manager once a second while the event loop turns
        const auto watchdog = vdi::common_utils_ui::watchdog::CreateWatchdog(appManager, appName);

        // 8. font
        vdi::common_utils_ui::fonts::SetDefaultHosApplicationFont(app);

        // 9. keyboard; a child of app, so main keeps nothing of it
        vdi::common_utils_ui::KeyboardInit::Create(&app);

        // 10. resources
        access_arbiter::AccessArbiter::InitResources();

        // 11. application object: settings connection, organisation data, translation, palette
        access_arbiter::AccessArbiter application;

        // 12. QML engine
        QQmlApplicationEngine engine(nullptr);
        engine.addImportPath(QStringLiteral("file:///qml"));

        // 13. palette for the documents
        QPointer<QQmlApplicationEngine> enginePointer(&engine);
        auto paletteProvider = application.GetPaletteProvider();
        enginePointer->rootContext()->setContextProperty(QStringLiteral("paletteProvider"),
                                                         paletteProvider.get());

        // 14. task executor and shutdown; the shutdown stands ready, nothing calls it
        auto taskExecutor = std::make_shared<common::utils::QtUiTaskExecutor>();
        auto appShutdown = std::make_shared<vdi::common_utils_ui::app_shutdown::QtAppShutdown>(
            std::shared_ptr<common::utils::ITaskExecutor>(taskExecutor));

        // 15. decision queue between the dialog and the IPC side
        auto interactor = std::make_shared<access_arbiter::interactors::UserDecisionInteractor>();

        // 16. window factory; checks its arguments
        std::unique_ptr<windows::components::IWindowFactory> windowFactory =
            std::make_unique<access_arbiter::ui::WindowFactory>(
                enginePointer, std::shared_ptr<access_arbiter::interactors::IUserDecisionSetter>(interactor));

        // 17. written here on purpose, before the window and the IPC side exist
        HL_LOG(hos::logger::LogLevel::Info, "[main] AccessArbiter is ready");

        // 18. the window loads the document and stays hidden until a caller asks for a decision
        std::shared_ptr<windows::components::IWindow> window = windowFactory->CreateWindow();
        HCA_CHECK(window != nullptr) << "Failed to create window!";

        // 19. the decision service; from here on its stub object is the window's only owner
        std::shared_ptr<access_arbiter::IAccessArbiter> arbiter =
            std::make_unique<access_arbiter::stub::AccessArbiter>(
                std::move(window),
                std::shared_ptr<access_arbiter::interactors::IUserDecisionGetter>(interactor));
        std::unique_ptr<access_arbiter::stub::IAccessArbiterComponent> component =
            access_arbiter::stub::CreateAccessArbiterComponent(std::move(arbiter));

        // 20. the dispatcher thread serves from here on; a request before exec waits in Qt's queue
        auto ipcFacade = access_arbiter::CreateDispatcher(component->GetComponentDispatcher());
        HCA_CHECK(ipcFacade != nullptr) << "Failed to create ipc dispatcher!";

        // 21. although nothing is shown yet
        status->ReadyToShowUI();

        // 22. event loop
        const int exitCode = QGuiApplication::exec();

        // 23.
        HL_LOG(hos::logger::LogLevel::Info, "AccessArbiter stopped with code {}", exitCode);

        // 24. there is no shutdown call on the wire: this is StateChanged(-2)
        status->ReadyToShutdown();

        // 25. leaving the try destroys the locals in reverse order
        return exitCode;
    } catch (...) {
        const auto [code, message] = fdn::utils::ProcessException();
        HL_LOG(hos::logger::LogLevel::Critical, "AccessArbiter start with error: {} with result: {}", message,
               code);
        // Every local of the try, the Qt application included, is gone by now.
        if (status != nullptr) {
            const std::string error = fmt::format("Failed to start {}", appName);
            const std::string details =
                fmt::format("Failed to start {}: {}", appName, hcax::ResultCodeText(code));
            status->FinishWithInternalError(error, details);
            HL_LOG(hos::logger::LogLevel::Error, "App {} crashed with error: {} - {}", appName, error,
                   details);
        }
        return 1;
    }
}
