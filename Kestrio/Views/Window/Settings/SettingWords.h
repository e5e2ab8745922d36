// The words that the parts of a tab carry themselves: the singleton `SettingWords`.
#pragma once

#include "Kestrio/Pages/Settings/SettingRow.h"

#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class SettingWords : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QString helpSymbol MEMBER helpSymbol CONSTANT)
    Q_PROPERTY(QString showHelp MEMBER showHelp CONSTANT)
    Q_PROPERTY(QString hideHelp MEMBER hideHelp CONSTANT)

private:
    const QString helpSymbol = SettingRow::helpSymbol;
    const QString showHelp = SettingRow::showHelp;
    const QString hideHelp = SettingRow::hideHelp;
};

} // namespace kestrio
