// Runs on no screen, in the renderer that people have, and takes every warning of the view framework for a failure.
#include "Tests/ExpectedLog.h"

#include <QGuiApplication>
#include <QQmlExtensionPlugin>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <gtest/gtest.h>

Q_IMPORT_QML_PLUGIN(Kestrio_ChartsPlugin)
Q_IMPORT_QML_PLUGIN(Kestrio_DesignPlugin)

/// Registers the module's types; made by the build.
void qml_register_types_Kestrio_Window();

namespace {

void failOnWarnings(QtMsgType type, const QMessageLogContext&, const QString& message) {
    // What a platform without a screen cannot do is not the views' affair.
    const bool isAboutThePlatform = message.startsWith(QLatin1StringView("This plugin does not support"));
    if (type != QtDebugMsg && type != QtInfoMsg && !isAboutThePlatform)
        ADD_FAILURE() << "the view framework warns: " << message.toStdString();
}

} // namespace

int main(int argc, char** argv) {
    // Naming it has the linker take the registration along.
    [[maybe_unused]] const volatile auto registration = &qml_register_types_Kestrio_Window;
    testing::InitGoogleTest(&argc, argv);
    kestrio::installLogGuard();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    qInstallMessageHandler(failOnWarnings);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
