// What the panes beside the lists tell, as QML reads it. Pure functions.
#pragma once

#include "Kestrio/Pages/AppsPage.h"
#include "Kestrio/Pages/ProjectRulesEditor.h"
#include "Kestrio/Pages/ProjectsPage.h"
#include "Kestrio/Pages/WebsitesPage.h"
#include "Kestrio/Pages/YouTubePage.h"
#include "Kestrio/Views/Values/Rows.h"

namespace kestrio {

// Without the charts, which are values of their own.
QVariantMap toVariant(const AppDetail& detail);
QVariantMap toVariant(const DomainDetail& detail);
QVariantMap toVariant(const ProjectDetail& detail);

QVariant toVariant(const ProjectRulesEditor::Row& row);
/// The rows and all that the editor says.
QVariantMap toVariant(const ProjectRulesEditor& editor);

} // namespace kestrio
