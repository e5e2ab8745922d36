import Kestrio.Window

SettingsForm {
    required property GeneralSettingsModel tab

    form: tab
}
