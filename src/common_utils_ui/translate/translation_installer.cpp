#include <common_utils_ui/translate/translation_installer.h>

#include <diagnostics/log.h>
#include <diagnostics/qstring_formatter.h>

#include <QCoreApplication>

#include <array>
#include <exception>

namespace vdi::common_utils_ui::translate {
namespace {

constexpr std::int32_t kNotSupported = static_cast<std::int32_t>(0x80000042u);
constexpr std::int32_t kUnspecifiedError = static_cast<std::int32_t>(0x8000004Bu);
constexpr std::int32_t kUnknownException = static_cast<std::int32_t>(0x80000072u);

constexpr std::array<std::string_view, 4> kKnownLocales = {"en-US", "ru-RU", "es-MX", "pt-BR"};
constexpr std::string_view kDefaultLocale = "ru-RU";

QString ToQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

TranslationInstaller::TranslationInstaller(std::string loadPath) : m_loadPath(std::move(loadPath)) {}

TranslationInstaller::~TranslationInstaller() {
    for (const auto& translator : m_translators) {
        QCoreApplication::removeTranslator(translator.get());
    }
    m_translators.clear();
}

LocaleInfo TranslationInstaller::GetLocale(std::string_view name) const {
    for (const auto known : kKnownLocales) {
        if (name == known) {
            QLocale locale(ToQString(name));
            HL_LOG(hos::logger::LogLevel::Trace, "Found locale <{}>.", locale.name());
            return {locale, 0};
        }
    }
    QLocale fallback(ToQString(kDefaultLocale));
    HL_LOG(hos::logger::LogLevel::Warning, "Unable to determine locale <{}>. Default is <{}>", name,
           fallback.name());
    return {fallback, 1};
}

void TranslationInstaller::SetDefaultLocale(const QLocale& locale) {
    QLocale::setDefault(locale);
    HL_LOG(hos::logger::LogLevel::Info, "Default locale was set to <{}>", locale.name());
}

std::int32_t TranslationInstaller::Install(std::string_view resource, const QLocale& locale) {
    if (resource.empty()) {
        HL_LOG(hos::logger::LogLevel::Error, "Resource name is empty!");
        return kNotSupported;
    }
    try {
        auto translator = std::make_unique<QTranslator>();
        // A null suffix lets the toolkit try "<resource>_<language>.qm" as well as the bare name.
        if (!translator->load(locale, ToQString(resource), QStringLiteral("_"), ToQString(m_loadPath),
                              QString())) {
            HL_LOG(hos::logger::LogLevel::Error, "Translation file <{}> for <{}> language wasn't loaded",
                   resource, locale.name());
            return kUnspecifiedError;
        }
        if (!QCoreApplication::installTranslator(translator.get())) {
            HL_LOG(hos::logger::LogLevel::Error,
                   "Failed to complete the installation of the <{}> language translator for the "
                   "resource <{}>",
                   locale.name(), resource);
            return kUnspecifiedError;
        }
        m_translators.push_back(std::move(translator));
        HL_LOG(hos::logger::LogLevel::Info,
               "Installing the <{}> language translator for the resource <{}> completed successfully!",
               locale.name(), resource);
        return 0;
    } catch (const std::exception& exception) {
        HL_LOG(hos::logger::LogLevel::Error,
               "The translator (language: <{}>, resource: <{}>) throws an exception: <{}>", locale.name(),
               resource, exception.what());
    } catch (...) {
        HL_LOG(hos::logger::LogLevel::Error,
               "The translator (language: <{}>, resource: <{}>) throws an unknown type of exception",
               locale.name(), resource);
    }
    return kUnspecifiedError;
}

std::int32_t TranslationInstaller::Install(std::string_view resource, std::string_view locale) {
    try {
        const LocaleInfo info = GetLocale(locale);
        SetDefaultLocale(info.locale);
        return Install(resource, info.locale);
    } catch (...) {
        return kUnknownException;
    }
}

std::int32_t TranslationInstaller::Install(const std::vector<std::string>& resources,
                                           std::string_view locale) {
    try {
        if (resources.empty()) {
            HL_LOG(hos::logger::LogLevel::Error, "Resources vector is empty!");
            return kNotSupported;
        }
        const LocaleInfo info = GetLocale(locale);
        SetDefaultLocale(info.locale);
        for (const auto& resource : resources) {
            const std::int32_t result = Install(std::string_view(resource), info.locale);
            if (result < 0) {
                return result;
            }
        }
        return 0;
    } catch (...) {
        return kUnknownException;
    }
}

std::unique_ptr<ITranslationInstaller> CreateTranslationInstaller() {
    return CreateTranslationInstaller(":/translations");
}

std::unique_ptr<ITranslationInstaller> CreateTranslationInstaller(std::string_view path) {
    return std::make_unique<TranslationInstaller>(std::string(path));
}

}  // namespace vdi::common_utils_ui::translate
