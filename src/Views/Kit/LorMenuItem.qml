import QtQuick
import QtQuick.Templates as T
import Lorvane

// An entry of a LorMenuButton.
T.MenuItem {
    id: item

    property bool destructive: false

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    horizontalPadding: 10
    verticalPadding: 6
    font.pixelSize: LorFonts.controlSize
    opacity: enabled ? 1 : LorPalette.disabledOpacity
    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.onPressAction: choose()

    Keys.onReturnPressed: choose()
    Keys.onEnterPressed: choose()

    // As a click does it.
    function choose() {
        if (!enabled)
            return;
        menu.close();
        triggered();
    }

    background: Rectangle {
        radius: 5
        color: item.highlighted && item.enabled ? LorPalette.sidebar : "transparent"
    }

    contentItem: Text {
        text: item.text
        font: item.font
        color: item.destructive ? LorPalette.red : LorPalette.ink
        textFormat: Text.PlainText
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
}
