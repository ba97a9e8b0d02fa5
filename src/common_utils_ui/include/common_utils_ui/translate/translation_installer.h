#pragma once

#include <common_utils_ui/translate/i_translation_installer.h>

#include <QLocale>
#include <QTranslator>

namespace vdi::common_utils_ui::translate {

// The locale chosen for a name: `fallback` is 0 when the name was recognised, 1 when the
// default ("ru-RU") took its place.
struct LocaleInfo {
    QLocale locale;
    int fallback = 0;
};

// Installs catalogues "<resource>_<language>" from one folder. Recognised names, compared byte by
// byte: "en-US", "ru-RU", "es-MX", "pt-BR"; anything else gives the default "ru-RU" with a
// warning. Failures are returned as result codes and leave the installer usable.
class TranslationInstaller final : public ITranslationInstaller {
public:
    explicit TranslationInstaller(std::string loadPath);
    ~TranslationInstaller() override;

    TranslationInstaller(const TranslationInstaller&) = delete;
    TranslationInstaller& operator=(const TranslationInstaller&) = delete;

    std::int32_t Install(const std::vector<std::string>& resources, std::string_view locale) override;
    std::int32_t Install(std::string_view resource, std::string_view locale) override;

    LocaleInfo GetLocale(std::string_view name) const;
    void SetDefaultLocale(const QLocale& locale);
    // Loads and installs one catalogue for `locale`; the worker behind both Install forms.
    std::int32_t Install(std::string_view resource, const QLocale& locale);

private:
    std::string m_loadPath;
    std::vector<std::unique_ptr<QTranslator>> m_translators;
};

}  // namespace vdi::common_utils_ui::translate
