// ui-kit-gallery: shows every control of the UI kit, switchable between the light and the dark
// palette at run time, or renders each control to PNG files without a display.
//
//   ui-kit-gallery                         open the gallery window (dark palette)
//   ui-kit-gallery --light                 open it in the light palette
//   ui-kit-gallery --render DIR [--only A,B] [--palette light|dark|both]
//                                          write DIR/<Control>_<palette>.png and exit
//   ui-kit-gallery --list                  print the specimen names and exit
//
// Exit status: 0 on success, 1 when a render fails, 2 on a usage error.
#include "control_renderer.h"
#include "palette_switch.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QTextStream>

#include <cstring>
#include <memory>
#include <vector>

namespace {

using vdi::uikit::gallery::ControlRenderer;
using vdi::uikit::gallery::PaletteSwitch;
using vdi::uikit::utils::style::PaletteId;

bool WantsRender(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--render") == 0 || std::strcmp(argv[i], "--list") == 0) return true;
    }
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const bool offscreen = WantsRender(argc, argv);
    if (offscreen) vdi::uikit::gallery::PrepareOffscreenRendering();

    QGuiApplication app(argc, argv);
    QCoreApplication::setApplicationName("ui-kit-gallery");

    QCommandLineParser parser;
    parser.setApplicationDescription("Shows every control of the UI kit in the light or the dark palette.");
    parser.addHelpOption();
    const QCommandLineOption lightOption("light", "Open the gallery in the light palette.");
    const QCommandLineOption renderOption("render", "Render the controls to PNG files in <dir> and exit.",
                                          "dir");
    const QCommandLineOption onlyOption("only", "Render only these specimens (comma-separated).", "names");
    const QCommandLineOption paletteOption("palette", "Palette to render: light, dark or both (default).",
                                           "palette", "both");
    const QCommandLineOption listOption("list", "Print the names of the specimens and exit.");
    parser.addOptions({lightOption, renderOption, onlyOption, paletteOption, listOption});
    parser.process(app);

    QTextStream out(stdout);
    QTextStream err(stderr);

    if (parser.isSet(listOption)) {
        for (const QString& name : ControlRenderer::SpecimenNames()) out << name << '\n';
        return 0;
    }

    if (parser.isSet(renderOption)) {
        std::vector<PaletteId> palettes;
        const QString palette = parser.value(paletteOption);
        if (palette == "light" || palette == "both") palettes.push_back(PaletteId::Light);
        if (palette == "dark" || palette == "both") palettes.push_back(PaletteId::Dark);
        if (palettes.empty()) {
            err << "ui-kit-gallery: unknown palette '" << palette << "' (light, dark or both)\n";
            return 2;
        }
        const QStringList only = parser.value(onlyOption).split(',', Qt::SkipEmptyParts);
        ControlRenderer renderer(std::make_shared<PaletteSwitch>(PaletteId::Dark));
        QString error;
        if (!renderer.RenderToDirectory(parser.value(renderOption), only, palettes, &error)) {
            err << "ui-kit-gallery: " << error << '\n';
            return 1;
        }
        out << "ui-kit-gallery: rendered "
            << (only.isEmpty() ? ControlRenderer::SpecimenNames().size() : only.size()) << " specimens into "
            << parser.value(renderOption) << '\n';
        return 0;
    }

    auto paletteSwitch =
        std::make_shared<PaletteSwitch>(parser.isSet(lightOption) ? PaletteId::Light : PaletteId::Dark);
    QQmlApplicationEngine engine;
    engine.rootContext()->setContextProperty("paletteProvider", paletteSwitch->Provider());
    engine.rootContext()->setContextProperty("paletteSwitch", paletteSwitch.get());
    engine.rootContext()->setContextProperty("specimenNames", ControlRenderer::SpecimenNames());
    engine.load(QUrl("qrc:/ui_kit_gallery/Gallery.qml"));
    if (engine.rootObjects().isEmpty()) {
        err << "ui-kit-gallery: the gallery window did not load\n";
        return 1;
    }
    return app.exec();
}
