#include "Kestrio/Views/Window/Settings/SettingsTabModel.h"

#include "Kestrio/Views/Values/SettingValues.h"

namespace kestrio {

SettingsFormModel::SettingsFormModel(const WindowParts& parts)
    : SettingsTabModel(parts),
      changes_(parts.settings.observe([this](const std::string& key) { settingChanged(key); })) {}

void SettingsFormModel::turn(const QString& row, bool on) {
    set(row.toStdString(), on);
    look();
}

void SettingsFormModel::choose(const QString& row, int place) {
    const auto id = row.toStdString();
    const auto shown = currentSections();
    const auto* found = rowOf(shown.above, id);
    if (!found)
        found = rowOf(shown.below, id);
    const auto value = found && place >= 0 ? chosenValue(*found, static_cast<std::size_t>(place)) : std::nullopt;
    if (!value)
        return;
    set(id, *value);
    look();
}

void SettingsFormModel::press(const QString& /*row*/, int /*button*/) {}

void SettingsFormModel::set(const std::string& row, const SettingValue& value) {
    parts().settings.set(row, value);
}

void SettingsFormModel::settingChanged(const std::string& /*key*/) {
    look();
}

void SettingsFormModel::look() {
    const auto shown = currentSections();
    auto sections = toVariants(shown.above);
    auto sectionsBelow = toVariants(shown.below);
    if (sections == sections_ && sectionsBelow == sectionsBelow_)
        return;
    sections_ = std::move(sections);
    sectionsBelow_ = std::move(sectionsBelow);
    Q_EMIT changed();
}

void SettingsFormModel::ask(const SettingsQuestion& question, std::function<void()> action) {
    question_ = toVariant(question);
    action_ = std::move(action);
    Q_EMIT questionChanged();
}

void SettingsFormModel::answer(bool yes) {
    const auto action = std::exchange(action_, {});
    question_ = {};
    Q_EMIT questionChanged();
    if (yes && action)
        action();
}

} // namespace kestrio
