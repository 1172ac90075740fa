import QtQuick
import Lorvane

// What an empty field shows. Assistive technology has the field's name instead.
Text {
    required property Item field

    visible: field.length === 0
    text: field.placeholderText
    font: field.font
    color: LorPalette.placeholder
    elide: Text.ElideRight
    textFormat: Text.PlainText
    Accessible.ignored: true
}
