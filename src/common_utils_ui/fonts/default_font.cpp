#include <common_utils_ui/fonts/default_font.h>

#include <QFont>

namespace vdi::common_utils_ui::fonts {

void SetDefaultHosApplicationFont(QGuiApplication& /*app*/) {
    QGuiApplication::setFont(QFont(QStringLiteral("Halcyra Sans Text"), -1, -1, false));
}

}  // namespace vdi::common_utils_ui::fonts
