import QtQuick
import QtQuick.Window
import Lorvane

// A window for a question or a form: of one width, and as high as what is in it.
Window {
    // Of all that is in it, with the margins.
    required property real contentHeight

    flags: Qt.Dialog
    minimumWidth: width
    maximumWidth: width
    color: LorPalette.canvas

    // The desktop keeps a window within its limits, which therefore give way first.
    function fit() {
        const wanted = Math.ceil(contentHeight);
        minimumHeight = Math.min(minimumHeight, wanted);
        maximumHeight = Math.max(maximumHeight, wanted);
        height = wanted;
        minimumHeight = wanted;
        maximumHeight = wanted;
    }

    onContentHeightChanged: fit()

    // Not before it has its limits: a desktop may settle by them how it frames the window.
    Component.onCompleted: {
        fit();
        show();
        requestActivate();
    }
}
