#pragma once

#include <common_utils_ui/translate/i_translation_installer.h>
#include <ui_kit/style/palette_provider.h>

#include <memory>

namespace access_arbiter {

// What the application needs from its environment before any dialog exists. Built on the Qt main
// thread after QGuiApplication; the constructor does all the work and throws on failure, leaving
// no half-built object. The static operations are called by main before the object exists.
class AccessArbiter {
public:
    // Throws hca::CheckFailedException when no QCoreApplication exists yet or no translation
    // installer can be made, hca::CheckResultFailedException when the catalogue cannot be installed.
    AccessArbiter();
    ~AccessArbiter();

    AccessArbiter(const AccessArbiter&) = delete;
    AccessArbiter& operator=(const AccessArbiter&) = delete;

    std::shared_ptr<vdi::uikit::utils::style::PaletteProvider> GetPaletteProvider() const;

    // Sets the root logger up with the tag "ACCESSARB" at the configured level and routes Qt's
    // own messages into it. Once, before QGuiApplication.
    static void SetupLogger();
    // Registers the UI kit's two resource trees (again: they register themselves before main).
    static void InitResources();
    // Organisation "Halcyra", its domain, and the application name "access_arbiter", after which
    // the catalogues are named.
    static void SetApplicationOrganizationInfo();

private:
    // Installs the catalogue named after the application. No language setting is read yet, so the
    // locale is empty, as for an absent setting: the installer takes its default.
    void LoadTranslations();
    // The dark palette, always: no setting chooses it.
    void CreatePaletteProvider();

    // Kept for its installed translators to stay alive.
    std::unique_ptr<vdi::common_utils_ui::translate::ITranslationInstaller> m_translationInstaller;
    std::shared_ptr<vdi::uikit::utils::style::PaletteProvider> m_paletteProvider;
};

}  // namespace access_arbiter
