import QtQuick
import Lorvane

// A hint at the end of a page.
LorLabel {
    color: LorPalette.muted
    font.pixelSize: 11
}
