import QtQuick
import Lorvane

// A setting that is on or off.
SettingRow {
    id: row

    required property bool value

    signal changed(bool value)

    LorSwitch {
        text: row.title
        checked: row.value
        Accessible.description: row.detail
        onToggled: row.changed(checked)
    }
}
