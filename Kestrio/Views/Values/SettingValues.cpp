#include "Kestrio/Views/Values/SettingValues.h"

namespace kestrio {
namespace {

Fields control(const char* kind) {
    Fields fields;
    fields.text("kind", kind);
    return fields;
}

QVariant variantOf(const SettingFact& fact) {
    return control("fact").text("text", fact.text);
}

QVariant variantOf(const SettingSwitch& onOff) {
    return control("switch").add("isOn", onOff.isOn);
}

QVariant variantOf(const SettingPicker& picker) {
    const auto said = [&](const std::string& title) { return picker.areNames ? plain(title) : shown(title); };
    auto text = shown(picker.prompt);
    QVariantList choices;
    for (const auto& choice : picker.choices) {
        if (choice.isCurrent)
            text = said(choice.title);
        choices.append(Fields().add("title", said(choice.title)).add("isCurrent", choice.isCurrent));
    }
    return control(picker.shape == SettingPicker::Shape::segments ? "segments" : "menu")
        .add("text", text)
        .add("choices", choices);
}

QVariant variantOf(const SettingButtons& buttons) {
    return control("buttons").words("text", std::string_view(buttons.text)).add("buttons", toVariants(buttons.buttons));
}

} // namespace

QVariant toVariant(const SettingButton& button) {
    return Fields()
        .words("title", button.title)
        .text("symbol", std::string_view(button.symbol))
        .add("isEnabled", button.isEnabled);
}

QVariant toVariant(const SettingControl& control) {
    return std::visit([](const auto& one) { return variantOf(one); }, control);
}

QVariant toVariant(const SettingRow& row) {
    Fields fields;
    fields.text("id", row.id)
        .words("help", row.help)
        .add("control", toVariant(row.control))
        .add("isEnabled", !row.isDisabled)
        .add("isMain", row.titleKind == SettingTitle::mainWords);
    if (row.icon)
        fields.add("icon", toVariant(*row.icon));
    return row.titleKind == SettingTitle::name ? fields.text("title", row.title) : fields.words("title", row.title);
}

QVariant toVariant(const SettingsSection& section) {
    return Fields()
        .words("title", section.title)
        .words("help", section.help)
        .add("rows", toVariants(section.rows))
        .words("note", section.note);
}

QVariant toVariant(const SettingsQuestion& question) {
    return Fields()
        .words("title", question.title)
        .words("text", question.text)
        .words("confirm", question.confirm)
        .words("cancel", std::string_view(SettingsQuestion::cancel));
}

QVariant toVariant(const KnownApp& app) {
    return Fields().text("id", app.id).text("title", app.name);
}

QVariant toVariant(const ScheduleEditor::Weekday& day) {
    return Fields().add("number", day.number).text("initial", day.initial).text("name", day.name).add("isOn", day.isOn);
}

QVariant toVariant(const ScheduleEditor& editor) {
    return Fields()
        .text("id", editor.id)
        .text("name", editor.name)
        .add("isEnabled", editor.isEnabled)
        .text("start", editor.start)
        .text("end", editor.end)
        .add("weekdays", toVariants(editor.weekdays))
        .add("apps", toVariants(editor.apps))
        .add("addable", toVariants(editor.addable));
}

QVariant toVariant(const CategorySettings::Row& row) {
    return Fields()
        .text("id", row.id)
        .add("icon", toVariant(row.icon))
        .text("title", row.title)
        .text("time", row.time)
        .add("menu", toVariant(row.menu));
}

} // namespace kestrio
