import QtQuick
import Lorvane

// Whether a grant is there, told by an icon and a text.
LorLabel {
    required property bool allowed

    symbol: allowed ? "checkmark.circle.fill" : "circle"
    symbolColor: allowed ? LorPalette.green : LorPalette.muted
    font.pixelSize: 11
    description: allowed ? "Allowed" : "Not allowed"
}
