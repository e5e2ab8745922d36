import Kestrio.Window

SettingsForm {
    required property PermissionsSettingsModel tab

    form: tab
}
