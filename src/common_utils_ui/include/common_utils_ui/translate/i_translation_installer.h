#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vdi::common_utils_ui::translate {

// Makes a locale name from the settings the process default and installs the translators of
// named catalogues. Used on the Qt main thread once QCoreApplication exists. The installed
// translators live as long as the installer; destroying it removes them again.
class ITranslationInstaller {
public:
    virtual ~ITranslationInstaller() = default;

    // Sets the default locale once, then installs the catalogue of each resource in order. Stops
    // at the first failure; the translators installed before it stay. An empty list returns
    // 0x80000042 and leaves the default locale alone.
    virtual std::int32_t Install(const std::vector<std::string>& resources, std::string_view locale) = 0;

    // Sets the default locale, then installs the catalogue of one resource. Returns 0 or a
    // negative result code; never throws.
    virtual std::int32_t Install(std::string_view resource, std::string_view locale) = 0;
};

// Catalogues are looked up in the embedded resource folder ":/translations".
std::unique_ptr<ITranslationInstaller> CreateTranslationInstaller();
// Catalogues are looked up in `path`.
std::unique_ptr<ITranslationInstaller> CreateTranslationInstaller(std::string_view path);

}  // namespace vdi::common_utils_ui::translate
