// The two panels as QML reads them. Pure functions.
#pragma once

#include "Kestrio/Pages/SystemMonitorView.h"
#include "Kestrio/Pages/TodayPanel.h"
#include "Kestrio/Views/Values/Rows.h"

namespace kestrio {

QVariant toVariant(const LiveActivityRow::Line& line);
/// `focus` with `kind` "state" or "session" and its fields, and `alongside`.
QVariant toVariant(const LiveActivityRow& row);
QVariant toVariant(const PanelWarning& warning);
/// The panel and its fixed titles.
QVariantMap toVariant(const TodayPanel& panel);

/// Tones by the names that `Theme.tone` knows.
QVariant toVariant(const SystemHeader& header);
QVariant toVariant(const SystemTile& tile);
QVariant toVariant(const SystemMonitorView::Insight& insight);
QVariant toVariant(const SystemMonitorView::Mode& mode);
QVariant toVariant(const BatteryRow& row);
QVariant toVariant(const TopAppRow& row);
QVariant toVariant(const TopApps& apps);
QVariant toVariant(const OptimizerLine& line);
/// `action` by name.
QVariant toVariant(const SystemPanelButton& button);
QVariantMap toVariant(const SystemMonitorView& view);

} // namespace kestrio
