pragma Singleton
import QtQuick

// The measures that the pages share.
QtObject {
    readonly property int margin: 36
    readonly property int maximumWidth: 1050 // with the margins
    readonly property int spacing: 25
}
