// Shows every component of the design system in every state.
//
// usage: gallery [--dark] [--contrast] [--rtl] [--text SCALE] [--scale N] [--width N] [--screenshot FILE]
//
// The switches at its head do the same. With --screenshot it writes a picture of all of it and ends.
#include "Kestrio/Views/Design/Design.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQuick/QQuickWindow>

namespace kestrio {
namespace {

std::optional<std::filesystem::path> exampleIcon(const std::string& application, int) {
    const auto path = QString(":/qt/qml/Kestrio/Gallery/icons/%1.svg").arg(QString::fromStdString(application));
    return QFile::exists(path) ? std::optional(path.toStdString()) : std::nullopt;
}

/// Once everything stands in its place and the pictures are there, all of the window goes into the file.
void saveSoon(QQuickWindow& window, const QString& file) {
    constexpr int patience = 400; // milliseconds
    QTimer::singleShot(patience, &window, [&window] { window.setHeight(window.property("wholeHeight").toInt()); });
    QTimer::singleShot(2 * patience, &window, [&window, file] {
        const bool isSaved = window.grabWindow().save(file);
        QCoreApplication::exit(isSaved ? 0 : 1);
    });
}

} // namespace
} // namespace kestrio

int main(int argc, char** argv) {
    using namespace kestrio;
    for (int i = 1; i + 1 < argc; ++i) // read before there is an application
        if (QByteArray(argv[i]) == "--scale")
            qputenv("QT_SCALE_FACTOR", argv[i + 1]);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({{"dark", "Dark colours."},
                       {"contrast", "More contrast."},
                       {"rtl", "From right to left."},
                       {"text", "Larger text.", "scale", "1"},
                       {"scale", "A finer screen.", "factor", "1"},
                       {"width", "Of the window.", "points", "1240"},
                       {"screenshot", "Where to write the picture.", "file"}});
    parser.process(application);
    QGuiApplication::setLayoutDirection(parser.isSet("rtl") ? Qt::RightToLeft : Qt::LeftToRight);

    QQmlApplicationEngine engine;
    engine.setImportPathList(engine.importPathList() << "qrc:/qt/qml"); // last: QML_IMPORT_PATH is for trying changes
    installDesign(engine, exampleIcon);
    engine.setInitialProperties({{"width", parser.value("width").toInt()},
                                 {"isDark", parser.isSet("dark")},
                                 {"isHighContrast", parser.isSet("contrast")},
                                 {"textScale", parser.value("text").toDouble()},
                                 {"isMirrored", parser.isSet("rtl")}});
    engine.loadData("import Kestrio.Gallery\nGallery {}");
    if (engine.rootObjects().isEmpty())
        return 1;
    if (parser.isSet("screenshot"))
        saveSoon(*qobject_cast<QQuickWindow*>(engine.rootObjects().first()), parser.value("screenshot"));
    return QGuiApplication::exec();
}
