// The tab "About" as QML reads it. Belongs to the main queue.
#pragma once

#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"

namespace kestrio {

class AboutSettingsModel final : public kestrio::SettingsTabModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")
    /// `name`, `symbol`, `version`, and the `points`, each with `symbol` and `text`.
    Q_PROPERTY(QVariant about READ about CONSTANT)
    Q_PROPERTY(QString copyTitle READ copyTitle NOTIFY copiedChanged)
    Q_PROPERTY(QString copySymbol READ copySymbol NOTIFY copiedChanged)

public:
    /// How long the button says that it copied.
    static constexpr Seconds copiedMoment{2.0};

    explicit AboutSettingsModel(const WindowParts& parts) : SettingsTabModel(parts) {}

    static QVariantMap about();
    QString copyTitle() const;
    QString copySymbol() const;

    /// Puts what helpers ask for into the clipboard.
    Q_INVOKABLE void copy();

Q_SIGNALS:
    void copiedChanged();

private:
    Subscription copied_; // active while the button says so
};

} // namespace kestrio
