#pragma once

#include <common_utils_ui/translate/i_translation_installer.h>
#include <settings_manager/i_settings_getter.h>
#include <settings_manager/i_settings_manager.h>
#include <ui_kit/style/palette_provider.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace access_arbiter {

// What the application needs from its environment before any dialog exists: a read-only view of the
// non-persistent settings, the translation for the language set there, and the palette. Built on
// the Qt main thread after QGuiApplication; the constructor does all the work and throws on
// failure, leaving no half-built object. The static operations are called by main before the
// object exists.
class AccessArbiter {
public:
    // Connects to the non-persistent settings service and fills manager; returns 0 or a negative
    // result code (vdi::common_utils::settings::CreateSettingsManagerNonPersistent).
    using SettingsManagerCreator =
        std::function<std::int32_t(std::shared_ptr<settings_manager::ISettingsManager>& manager)>;
    // Makes the installer of the embedded catalogues (the form without a path).
    using TranslationInstallerCreator =
        std::function<std::unique_ptr<vdi::common_utils_ui::translate::ITranslationInstaller>()>;

    // In this order: checks that a QCoreApplication exists (before any settings connection is
    // opened), connects to the settings service through createSettingsManager and keeps its manager
    // and getter, sets the organisation data, reads "locale", "language" (absent or of another type:
    // one warning and the empty locale, for which the installer takes its default) and installs the
    // catalogue "access_arbiter" for it, then makes the dark palette. Throws
    // hca::CheckFailedException or hca::CheckResultFailedException with the text of the failed step.
    // The program's own: the non-persistent settings service and the embedded catalogues.
    AccessArbiter();
    // The same with the settings manager and the translation installer made by the given creators
    // (the tests give theirs).
    AccessArbiter(SettingsManagerCreator createSettingsManager,
                  TranslationInstallerCreator createTranslationInstaller);
    // Releases the palette, the settings manager, the getter, then the installer (and with it the
    // translators).
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
    void CreateNonPersistentSettingManager(const SettingsManagerCreator& createSettingsManager);
    void LoadTranslations(const TranslationInstallerCreator& createTranslationInstaller);
    // The dark palette, always: no setting chooses it.
    void CreatePaletteProvider();

    // Kept for its installed translators to stay alive.
    std::unique_ptr<vdi::common_utils_ui::translate::ITranslationInstaller> m_translationInstaller;
    std::shared_ptr<settings_manager::ISettingsGetter> m_settingsGetter;
    std::shared_ptr<settings_manager::ISettingsManager> m_settingsManager;
    std::shared_ptr<vdi::uikit::utils::style::PaletteProvider> m_paletteProvider;
};

}  // namespace access_arbiter
