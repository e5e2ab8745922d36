// The tab "Optimization" as QML reads it. What the person says goes to the agent's optimizer, which stores it; until it
// has, this shows what was said.
//
// Belongs to the main queue.
#pragma once

#include "Kestrio/Link/OptimizerLink.h"
#include "Kestrio/Pages/Settings/ScheduleEditor.h"
#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"

namespace kestrio {

class OptimizationSettingsModel final : public kestrio::SettingsFormModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Tabs are made by the settings.")
    /// `title` and `help`.
    Q_PROPERTY(QVariant schedulesHead READ schedulesHead CONSTANT)
    /// Each with `id`, `name`, `isEnabled`, `start`, `end`, `weekdays`, `apps` and `addable`.
    Q_PROPERTY(QVariantList schedules READ schedules NOTIFY schedulesChanged)
    /// The titles of the schedules' controls and of those that add.
    Q_PROPERTY(QVariant words READ words CONSTANT)
    /// Whether there is an optimizer that takes what the person says.
    Q_PROPERTY(bool isReachable READ isReachable NOTIFY changed)

public:
    /// How often the applications that run, and the size of the log, are looked at again.
    static constexpr Seconds refreshInterval{10.0};

    explicit OptimizationSettingsModel(const WindowParts& parts);

    void press(const QString& row, int button) override;

    static QVariant schedulesHead();
    const QVariantList& schedules() const { return schedules_; }
    static QVariantMap words();
    bool isReachable() const;

    // The schedules, by their identifiers.
    Q_INVOKABLE void addSchedule();
    Q_INVOKABLE void removeSchedule(const QString& schedule);
    Q_INVOKABLE void rename(const QString& schedule, const QString& name);
    Q_INVOKABLE void enable(const QString& schedule, bool isEnabled);
    /// False for a text that is no time; nothing changes then.
    Q_INVOKABLE bool setStart(const QString& schedule, const QString& time);
    Q_INVOKABLE bool setEnd(const QString& schedule, const QString& time);
    Q_INVOKABLE void moveStart(const QString& schedule, int minutes);
    Q_INVOKABLE void moveEnd(const QString& schedule, int minutes);
    Q_INVOKABLE void setWeekday(const QString& schedule, int number, bool isOn);
    Q_INVOKABLE void addApp(const QString& schedule, const QString& app);
    Q_INVOKABLE void removeApp(const QString& schedule, const QString& app);
    Q_INVOKABLE void chooseTier(const QString& schedule, const QString& app, int place);

Q_SIGNALS:
    void schedulesChanged();

protected:
    Sections currentSections() const override;
    void set(const std::string& row, const SettingValue& value) override;
    void settingChanged(const std::string& key) override;

private:
    using Change = std::function<OptimizerLink::Failure(OptimizerLink&)>;
    using ScheduleChange = std::function<void(tindra::Schedule&)>;

    std::vector<KnownApp> apps() const;
    void tell(Change change);
    void setRules(tindra::OptimizerRules rules);
    void change(const QString& schedule, const ScheduleChange& change);
    void neverTouch(const std::string& app);
    void setTier(const std::string& app, tindra::AppTier tier);
    void readChoices();
    void readApps();
    void readNames();
    void lookAtAll();
    std::filesystem::path logFile() const;
    void deleteLog();

    OptimizerChoices choices_;
    int untold_ = 0; // changes that the agent has not taken yet
    std::vector<KnownApp> running_;
    std::map<std::string, std::string> names_;
    QVariantList schedules_;
    Subscription namesAsked_;
    std::vector<Subscription> tokens_;
};

} // namespace kestrio
