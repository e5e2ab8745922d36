// The editor of the project rules as QML reads it. It follows the rules, whichever window or process changes them.
//
// Belongs to the main queue. The rules must outlive it.
#pragma once

#include "Kestrio/Pages/ProjectRulesEditor.h"

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

namespace kestrio {

class ProjectRulesModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Belongs to the windows.")
    /// `rows` with each rule's `id`, `keyword`, `project` and `isIgnored`, and all that the editor says.
    Q_PROPERTY(QVariantMap editor READ editor NOTIFY changed)

public:
    explicit ProjectRulesModel(ProjectRules& rules);

    QVariantMap editor() const;

    /// Whether this is a keyword that a rule can have.
    Q_INVOKABLE static bool canAdd(const QString& keyword);
    /// Puts a rule behind the others; an empty project makes what it finds part of none.
    Q_INVOKABLE void add(const QString& keyword, const QString& project);
    Q_INVOKABLE void remove(const QString& id);

Q_SIGNALS:
    void changed();

private:
    ProjectRules& rules_;
    Subscription changes_;
};

} // namespace kestrio
