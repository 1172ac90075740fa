import QtQuick
import Lorvane

// What is said in passing, below or beside what it is about.
LorText {
    color: LorPalette.muted
    font.pixelSize: 11
}
