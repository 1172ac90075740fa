import QtQuick
import Lorvane

// A wrapping text that can be selected and copied.
TextEdit {
    color: LorPalette.ink
    font.pixelSize: 12
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    readOnly: true
    selectByMouse: true
    activeFocusOnTab: true
    selectionColor: LorPalette.accent
    selectedTextColor: "white"
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
