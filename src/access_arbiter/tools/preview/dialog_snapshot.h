#pragma once

#include <QImage>
#include <QString>

#include <string>

namespace access_arbiter::preview {

enum class PaletteChoice { Dark, Light, None };

// What to render: the locale name as the settings would hold it (e.g. "ru-RU") and the palette.
struct SnapshotRequest {
    std::string locale = "en-US";
    PaletteChoice palette = PaletteChoice::Dark;
};

// Brings up the real dialog (window factory, document, palette provider, catalogue) without the
// IPC side, shows it and grabs its window. Needs a QGuiApplication on the calling (main) thread.
// Returns a null image and sets `error` on failure. The installed catalogue and the window are
// gone again when it returns.
QImage RenderDialog(const SnapshotRequest& request, QString& error);

}  // namespace access_arbiter::preview
