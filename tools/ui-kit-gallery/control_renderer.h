#pragma once

#include "palette_switch.h"

#include <ui_kit/style/palette_id.h>

#include <QImage>
#include <QQmlEngine>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace vdi::uikit::gallery {

// Draws the gallery's specimens (each a small scene of one control of the kit in its usual states,
// under qrc:/ui_kit_gallery/specimens/) to images without a display.
//
// Needs a QGuiApplication on the offscreen platform with the software scene graph, which
// PrepareOffscreenRendering() arranges when called before the application object exists.
// Main thread only. The palette switch is shared with the caller; the renderer flips it per image
// and leaves it at the palette of the last image.
class ControlRenderer {
public:
    explicit ControlRenderer(std::shared_ptr<PaletteSwitch> paletteSwitch);
    ControlRenderer(const ControlRenderer&) = delete;
    ControlRenderer& operator=(const ControlRenderer&) = delete;

    // Names of all specimens, sorted: "PushButton", "Toast", ...
    static QStringList SpecimenNames();

    // The specimen in the palette, or a null image with the reason in *error: an unknown
    // specimen, or any error or warning that QML reported while building and drawing it.
    QImage Render(const QString& specimen, utils::style::PaletteId palette, QString* error);

    // Writes <directory>/<specimen>_<light|dark>.png for every specimen named (all when the list
    // is empty) in every palette given, creating the directory. Stops at the first failure, with
    // the reason in *error.
    bool RenderToDirectory(const QString& directory, const QStringList& specimens,
                           const std::vector<utils::style::PaletteId>& palettes, QString* error);

private:
    std::shared_ptr<PaletteSwitch> m_paletteSwitch;
    std::unique_ptr<QQmlEngine> m_engine;
};

// Chooses the offscreen platform, the software scene graph and the Basic controls style, so that
// renders are the same on every machine. Call before the QGuiApplication is made.
void PrepareOffscreenRendering();

}  // namespace vdi::uikit::gallery
