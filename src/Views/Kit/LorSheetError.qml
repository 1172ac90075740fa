import QtQuick
import QtQuick.Layouts
import Lorvane

// Why what is on a sheet can't be saved; gone without a text.
LorText {
    Layout.fillWidth: true
    visible: text !== ""
    color: LorPalette.red
    font.pixelSize: 11
    wrapMode: Text.Wrap
    Accessible.role: Accessible.AlertMessage
}
