#include "Kestrio/Views/Window/Settings/AboutSettingsModel.h"

#include "Kestrio/Pages/Settings/AboutSettings.h"
#include "Kestrio/Shell/AppInfo.h"
#include "Kestrio/Views/Values/Shown.h"

#include <QClipboard>
#include <QGuiApplication>

namespace kestrio {

QVariantMap AboutSettingsModel::about() {
    QVariantList points;
    for (const auto& [symbol, text] : AboutSettings::points)
        points.append(Fields().text("symbol", symbol).words("text", std::string_view(text)));
    return Fields()
        .text("name", AboutSettings::name)
        .text("symbol", AboutSettings::symbol)
        .words("version", versionLine(AppInfo::version()))
        .add("points", points);
}

QString AboutSettingsModel::copyTitle() const {
    return shown(copied_.isActive() ? AboutSettings::copiedTitle : AboutSettings::copyTitle);
}

QString AboutSettingsModel::copySymbol() const {
    return plain(copied_.isActive() ? AboutSettings::copiedSymbol : AboutSettings::copySymbol);
}

void AboutSettingsModel::copy() {
    QGuiApplication::clipboard()->setText(shown(parts().host.systemInfo()));
    copied_ = parts().queue.after(copiedMoment, [this] {
        copied_.cancel();
        Q_EMIT copiedChanged();
    });
    Q_EMIT copiedChanged();
}

} // namespace kestrio
