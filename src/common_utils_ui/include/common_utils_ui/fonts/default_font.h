#pragma once

#include <QGuiApplication>

namespace vdi::common_utils_ui::fonts {

// Makes "Halcyra Sans Text" the application font, keeping the toolkit's default size and weight.
// The family itself must be known to the platform's font database. Qt main thread.
void SetDefaultHosApplicationFont(QGuiApplication& app);

}  // namespace vdi::common_utils_ui::fonts
