#include "Kestrio/Views/Window/Settings/OptimizationSettingsModel.h"

#include "Kestrio/Base/DatabaseFile.h"
#include "Kestrio/Shell/FreshUUID.h"
#include "Kestrio/Views/Values/SettingValues.h"
#include "Kestrio/Views/Window/ActivityArchive.h"

#include <algorithm>

namespace kestrio {
namespace {

constexpr Seconds refreshTolerance{5.0};

bool isOfOptimizer(const std::string& key) {
    return key == settingKey::optimizerEnabled || key == settingKey::optimizerTuning ||
           key == settingKey::optimizerRules;
}

/// What the person can choose for: essential applications are not.
std::vector<KnownApp> choosable(const std::vector<PlannedApp>& plan) {
    std::vector<KnownApp> apps;
    for (const auto& app : plan)
        if (app.protection != tindra::Protection::essential)
            apps.push_back({app.id, app.name});
    return apps;
}

} // namespace

OptimizationSettingsModel::OptimizationSettingsModel(const WindowParts& parts) : SettingsFormModel(parts) {
    tokens_.push_back(parts.agent.presence().observe([this](auto) {
        readApps();
        lookAtAll();
    }));
    tokens_.push_back(parts.queue.every({.interval = refreshInterval, .tolerance = refreshTolerance}, [this] {
        readApps();
        look();
    }));
    readNames();
    readApps();
    readChoices();
}

bool OptimizationSettingsModel::isReachable() const {
    return parts().agent.presence().value() == AgentLink::Presence::present;
}

SettingsFormModel::Sections OptimizationSettingsModel::currentSections() const {
    using namespace OptimizationSettings;
    const auto known = apps();
    const auto bytes = databaseFileSize(logFile());
    Sections all{.above = {mainSwitch(choices_), behaviour(choices_.tuning), eachApp(known, choices_.rules)},
                 .below = {OptimizationSettings::neverTouch(known, choices_.rules), alerts(parts().settings),
                           log(parts().settings, bytes > 0 ? std::optional<std::uint64_t>(bytes) : std::nullopt,
                               parts().calendar)}};
    if (isReachable())
        return all;
    // Only the optimizer itself takes these.
    for (auto& section : all.above)
        for (auto& row : section.rows)
            row.isDisabled = true;
    for (auto& row : all.below.front().rows)
        row.isDisabled = true;
    return all;
}

std::vector<KnownApp> OptimizationSettingsModel::apps() const {
    return OptimizationSettings::knownApps(running_, choices_.rules, names_, parts().calendar.locale());
}

void OptimizationSettingsModel::set(const std::string& row, const SettingValue& value) {
    if (const auto* const isOn = std::get_if<bool>(&value); isOn && row == settingKey::optimizerEnabled) {
        choices_.isEnabled = *isOn;
        return tell([on = *isOn](OptimizerLink& optimizer) { return optimizer.setEnabled(on); });
    }
    if (knownSetting(row))
        return SettingsFormModel::set(row, value);
    const auto tuning = OptimizationSettings::changed(choices_.tuning, row, value);
    if (tuning != choices_.tuning) {
        choices_.tuning = tuning;
        return tell([tuning](OptimizerLink& optimizer) { return optimizer.setTuning(tuning); });
    }
    const auto* const text = std::get_if<std::string>(&value);
    if (text && row == OptimizationSettings::addNeverTouch)
        return neverTouch(*text);
    if (const auto tier = text ? tindra::appTier(*text) : std::nullopt)
        setTier(row, *tier);
}

void OptimizationSettingsModel::setTier(const std::string& app, tindra::AppTier tier) {
    choices_.rules.tiers[app] = tier;
    tell([app, tier](OptimizerLink& optimizer) { return optimizer.setTier(app, tier); });
}

void OptimizationSettingsModel::setRules(tindra::OptimizerRules rules) {
    choices_.rules = rules;
    lookAtAll();
    tell([rules = std::move(rules)](OptimizerLink& optimizer) { return optimizer.setRules(rules); });
}

/// Until the last of several is taken, what is stored is older than what shows.
void OptimizationSettingsModel::tell(Change change) {
    ++untold_;
    parts().agent.ask(
        [change = std::move(change)](Background& agent) {
            auto* const optimizer = agent.optimizer();
            return optimizer ? change(*optimizer) : OptimizerLink::Failure("There is no optimizer.");
        },
        whileAlive([this](const auto&) {
            --untold_;
            readChoices();
        }));
}

void OptimizationSettingsModel::settingChanged(const std::string& key) {
    if (isOfOptimizer(key))
        readChoices();
    else
        look();
}

void OptimizationSettingsModel::readChoices() {
    if (untold_ > 0)
        return;
    choices_ = storedOptimizerChoices(parts().settings);
    lookAtAll();
}

void OptimizationSettingsModel::readApps() {
    parts().agent.ask(
        [](Background& agent) {
            auto* const optimizer = agent.optimizer();
            const auto plan = optimizer ? optimizer->plan() : std::nullopt;
            return plan ? choosable(*plan) : std::vector<KnownApp>();
        },
        whileAlive([this](const std::optional<std::vector<KnownApp>>& apps) {
            if (!apps || apps->empty())
                return; // no answer, this time
            running_ = *apps;
            lookAtAll();
        }));
}

void OptimizationSettingsModel::readNames() {
    if (!parts().archive)
        return;
    namesAsked_ = parts().archive->ask([](ActivityArchive& archive) { return archive.appTotals(); },
                                       [this](const std::vector<NamedTotal>& totals) {
                                           for (const auto& total : totals)
                                               names_.emplace(total.id, total.name);
                                           lookAtAll();
                                       });
}

void OptimizationSettingsModel::lookAtAll() {
    look();
    const auto known = apps();
    auto schedules = toVariants(scheduleEditors(choices_.rules, known, parts().calendar));
    if (schedules == schedules_)
        return;
    schedules_ = std::move(schedules);
    Q_EMIT schedulesChanged();
}

void OptimizationSettingsModel::press(const QString& row, int button) {
    const auto id = row.toStdString();
    if (id == OptimizationSettings::logFile && button == OptimizationSettings::showLogButton)
        return parts().host.showInFiles(logFile());
    if (id == OptimizationSettings::logFile)
        return ask(OptimizationSettings::deleteLogQuestion(), [this] { deleteLog(); });
    auto rules = choices_.rules;
    if (rules.neverTouch.erase(id) > 0)
        setRules(std::move(rules));
}

std::filesystem::path OptimizationSettingsModel::logFile() const {
    return parts().host.historyFile.parent_path() / OptimizationSettings::resourceLogName;
}

void OptimizationSettingsModel::deleteLog() {
    parts().agent.ask([](Background& agent) { return agent.deleteResourceLog(); },
                      whileAlive([this](const auto&) { look(); }));
}

void OptimizationSettingsModel::neverTouch(const std::string& app) {
    auto rules = choices_.rules;
    if (rules.neverTouch.insert(app).second)
        setRules(std::move(rules));
}

void OptimizationSettingsModel::addSchedule() {
    setRules(addingSchedule(choices_.rules, freshUUID()));
}

void OptimizationSettingsModel::removeSchedule(const QString& schedule) {
    setRules(removingSchedule(choices_.rules, schedule.toStdString()));
}

void OptimizationSettingsModel::change(const QString& schedule, const ScheduleChange& change) {
    auto rules = changingSchedule(choices_.rules, schedule.toStdString(), change);
    if (rules != choices_.rules)
        setRules(std::move(rules));
}

void OptimizationSettingsModel::rename(const QString& schedule, const QString& name) {
    change(schedule, [&](tindra::Schedule& one) { one.name = name.toStdString(); });
}

void OptimizationSettingsModel::enable(const QString& schedule, bool isEnabled) {
    change(schedule, [&](tindra::Schedule& one) { one.isEnabled = isEnabled; });
}

bool OptimizationSettingsModel::setStart(const QString& schedule, const QString& time) {
    const auto minutes = minutesOfDay(time.toStdString());
    if (minutes)
        change(schedule, [&](tindra::Schedule& one) { one.window.start = *minutes; });
    return minutes.has_value();
}

bool OptimizationSettingsModel::setEnd(const QString& schedule, const QString& time) {
    const auto minutes = minutesOfDay(time.toStdString());
    if (minutes)
        change(schedule, [&](tindra::Schedule& one) { one.window.end = *minutes; });
    return minutes.has_value();
}

void OptimizationSettingsModel::moveStart(const QString& schedule, int minutes) {
    change(schedule, [&](tindra::Schedule& one) { one.window.start = movedTime(one.window.start, minutes); });
}

void OptimizationSettingsModel::moveEnd(const QString& schedule, int minutes) {
    change(schedule, [&](tindra::Schedule& one) { one.window.end = movedTime(one.window.end, minutes); });
}

void OptimizationSettingsModel::setWeekday(const QString& schedule, int number, bool isOn) {
    change(schedule, [&](tindra::Schedule& one) {
        if (isOn)
            one.window.weekdays.insert(number);
        else
            one.window.weekdays.erase(number);
    });
}

void OptimizationSettingsModel::addApp(const QString& schedule, const QString& app) {
    change(schedule, [&](tindra::Schedule& one) { one.tiers.emplace(app.toStdString(), tindra::AppTier::alwaysOn); });
}

void OptimizationSettingsModel::removeApp(const QString& schedule, const QString& app) {
    change(schedule, [&](tindra::Schedule& one) { one.tiers.erase(app.toStdString()); });
}

void OptimizationSettingsModel::chooseTier(const QString& schedule, const QString& app, int place) {
    if (place < 0 || place >= std::ssize(tindra::allAppTiers))
        return;
    const auto tier = tindra::allAppTiers[static_cast<std::size_t>(place)];
    change(schedule, [&](tindra::Schedule& one) { one.tiers[app.toStdString()] = tier; });
}

QVariant OptimizationSettingsModel::schedulesHead() {
    return toVariant(OptimizationSettings::schedules());
}

QVariantMap OptimizationSettingsModel::words() {
    return Fields()
        .words("name", std::string_view(ScheduleEditor::namePrompt))
        .words("from", std::string_view(ScheduleEditor::from))
        .words("to", std::string_view(ScheduleEditor::to))
        .words("remove", std::string_view(ScheduleEditor::removeTitle))
        .text("removeSymbol", std::string_view(ScheduleEditor::removeSymbol))
        .words("addApp", std::string_view(ScheduleEditor::addTitle))
        .words("deleteSchedule", std::string_view(ScheduleEditor::deleteTitle))
        .text("deleteSymbol", std::string_view(ScheduleEditor::deleteSymbol))
        .words("addSchedule", std::string_view(OptimizationSettings::addSchedule));
}

} // namespace kestrio
