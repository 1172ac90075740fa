import QtQuick
import Lorvane

LorText {
    color: LorPalette.muted
    font.pixelSize: 10
    font.weight: LorFonts.semibold
    font.letterSpacing: 1.6
    Accessible.role: Accessible.Heading
}
