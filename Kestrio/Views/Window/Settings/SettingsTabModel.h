// What every tab of the settings is bound to: a model that lives as long as its tab shows.
//
// Belongs to the main queue. The parts outlive it.
#pragma once

#include "Kestrio/Pages/Settings/SettingRow.h"
#include "Kestrio/Views/Window/WindowParts.h"

#include <QObject>
#include <QVariant>
#include <QtQml/qqmlregistration.h>
#include <memory>

namespace kestrio {

class SettingsTabModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")

public:
    explicit SettingsTabModel(const WindowParts& parts) : parts_(parts) {}

protected:
    const WindowParts& parts() const { return parts_; }

    /// The work, which does nothing once this is gone: for answers that may come late.
    template <class Work>
    auto whileAlive(Work work) {
        return [alive = std::weak_ptr(alive_), work = std::move(work)](auto&&... arguments) {
            if (alive.lock())
                work(std::forward<decltype(arguments)>(arguments)...);
        };
    }

private:
    const WindowParts& parts_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

/// A tab of sections with rows. Follows the settings, whichever process changes them.
class SettingsFormModel : public kestrio::SettingsTabModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")
    /// Each with `title`, `help`, `rows` and `note`. Those below stand under what the tab has of its own.
    Q_PROPERTY(QVariantList sections READ sections NOTIFY changed)
    Q_PROPERTY(QVariantList sectionsBelow READ sectionsBelow NOTIFY changed)
    /// What is asked before something that cannot be undone; undefined while nothing is.
    Q_PROPERTY(QVariant question READ question NOTIFY questionChanged)

public:
    explicit SettingsFormModel(const WindowParts& parts);

    const QVariantList& sections() const { return sections_; }
    const QVariantList& sectionsBelow() const { return sectionsBelow_; }
    QVariant question() const { return question_; }

    /// What is done to the row of this identifier: its switch, a place of its picker, one of its buttons.
    Q_INVOKABLE void turn(const QString& row, bool on);
    Q_INVOKABLE void choose(const QString& row, int place);
    Q_INVOKABLE virtual void press(const QString& row, int button);
    /// Answers the question.
    Q_INVOKABLE void answer(bool yes);

Q_SIGNALS:
    void changed();
    void questionChanged();

protected:
    struct Sections {
        std::vector<SettingsSection> above;
        std::vector<SettingsSection> below = {};
    };
    virtual Sections currentSections() const = 0;

    /// Stores the value for the row; unless said otherwise under the row's identifier.
    virtual void set(const std::string& row, const SettingValue& value);

    /// Another process, or this one, changed the setting.
    virtual void settingChanged(const std::string& key);

    /// Works out what shows, and tells if it is anything else.
    void look();

    /// Does what is asked once the person agrees.
    void ask(const SettingsQuestion& question, std::function<void()> action);

private:
    QVariantList sections_;
    QVariantList sectionsBelow_;
    QVariant question_;
    std::function<void()> action_; // of the question
    Subscription changes_;
};

} // namespace kestrio
