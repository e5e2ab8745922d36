// Shows every component of the design system in every state.
//
// The switches at its head do the same as its options. With --screenshot it writes a picture of all of it and ends.
#include "Kestrio/Views/Design/Design.h"

#include <CLI/CLI.hpp>
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
    CLI::App app("Shows every component of the design system in every state.", "gallery");
    bool isDark = false;
    bool isHighContrast = false;
    bool isMirrored = false;
    double textScale = 1;
    double screenScale = 1;
    int width = 1240;
    std::string picture;
    app.add_flag("--dark", isDark, "Dark colours");
    app.add_flag("--contrast", isHighContrast, "More contrast");
    app.add_flag("--rtl", isMirrored, "From right to left");
    app.add_option("--text", textScale, "How much larger the text is")
        ->check(CLI::Range(0.5, 4.0))
        ->capture_default_str();
    app.add_option("--scale", screenScale, "How much finer the screen is")
        ->check(CLI::Range(0.5, 4.0))
        ->capture_default_str();
    app.add_option("--width", width, "Of the window, in points")->check(CLI::Range(200, 20'000))->capture_default_str();
    app.add_option("--screenshot", picture, "The file for a picture of all of it, after which it ends");
    CLI11_PARSE(app, argc, argv);

    qputenv("QT_SCALE_FACTOR", QByteArray::number(screenScale)); // read when the application is made
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    const QGuiApplication application(argc, argv);
    QGuiApplication::setLayoutDirection(isMirrored ? Qt::RightToLeft : Qt::LeftToRight);

    QQmlApplicationEngine engine;
    engine.setImportPathList(engine.importPathList() << "qrc:/qt/qml"); // last: QML_IMPORT_PATH is for trying changes
    installDesign(engine, exampleIcon);
    engine.setInitialProperties({{"width", width},
                                 {"isDark", isDark},
                                 {"isHighContrast", isHighContrast},
                                 {"textScale", textScale},
                                 {"isMirrored", isMirrored}});
    engine.loadData("import Kestrio.Gallery\nGallery {}");
    if (engine.rootObjects().isEmpty())
        return 1;
    if (!picture.empty())
        saveSoon(*qobject_cast<QQuickWindow*>(engine.rootObjects().first()), QString::fromStdString(picture));
    return QGuiApplication::exec();
}
