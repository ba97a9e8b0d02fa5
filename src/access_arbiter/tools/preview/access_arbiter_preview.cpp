// access_arbiter_preview: renders the access dialog for one locale and saves it as a PNG.
//
//   access_arbiter_preview [--locale en-US|ru-RU|es-MX|pt-BR] [--palette dark|light|none]
//                          [--out file.png]
//
// Uses the real window factory, document, palette and catalogue, without the IPC side. Runs on
// the platform given by QT_QPA_PLATFORM (offscreen works). Run it in the hosted session (or with
// FONTCONFIG_FILE=tools/hosted-session/fontconfig/fonts.conf) so that the UI font is known.
// Exit status: 0 saved, 1 rendering or saving failed, 2 bad arguments.

#include "dialog_snapshot.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

void PrintUsage(std::FILE* out) {
    std::fputs(
        "usage: access_arbiter_preview [--locale NAME] [--palette dark|light|none] [--out FILE]\n"
        "  --locale   locale as the settings hold it (default en-US)\n"
        "  --palette  palette of the UI kit, or none for the fallbacks (default dark)\n"
        "  --out      PNG file to write (default dialog-<locale>.png)\n"
        "exit status: 0 saved, 1 rendering or saving failed, 2 bad arguments\n",
        out);
}

}  // namespace

int main(int argc, char** argv) {
    access_arbiter::preview::SnapshotRequest request;
    std::string out;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        if (arg == "--help" || arg == "-h") {
            PrintUsage(stdout);
            return 0;
        } else if (arg == "--locale" && hasValue) {
            request.locale = argv[++i];
        } else if (arg == "--out" && hasValue) {
            out = argv[++i];
        } else if (arg == "--palette" && hasValue) {
            const std::string value = argv[++i];
            if (value == "dark") {
                request.palette = access_arbiter::preview::PaletteChoice::Dark;
            } else if (value == "light") {
                request.palette = access_arbiter::preview::PaletteChoice::Light;
            } else if (value == "none") {
                request.palette = access_arbiter::preview::PaletteChoice::None;
            } else {
                PrintUsage(stderr);
                return 2;
            }
        } else {
            PrintUsage(stderr);
            return 2;
        }
    }
    if (out.empty()) {
        out = "dialog-" + request.locale + ".png";
    }

    // The same renderer as the visual tests, so that renderings match on every machine.
    if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND")) {
        qputenv("QT_QUICK_BACKEND", "software");
    }
    QGuiApplication app(argc, argv);
    QString error;
    const QImage image = access_arbiter::preview::RenderDialog(request, error);
    if (image.isNull()) {
        std::fprintf(stderr, "access_arbiter_preview: %s\n", qPrintable(error));
        return 1;
    }
    if (!image.save(QString::fromStdString(out), "PNG")) {
        std::fprintf(stderr, "access_arbiter_preview: can't write %s\n", out.c_str());
        return 1;
    }
    std::printf("%s\n", out.c_str());
    return 0;
}
