// Runs on no screen, in the renderer that people have, and takes every warning of the view framework for a failure.
#include "Tests/ExpectedLog.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

void failOnWarnings(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    ADD_FAILURE() << "the view framework warns: " << message.toStdString();
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    kestrio::installLogGuard();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    qInstallMessageHandler(failOnWarnings);
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
