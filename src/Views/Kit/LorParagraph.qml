import QtQuick
import QtQuick.Layouts
import Lorvane

// A wrapping text with `lineSpacing` between its lines.
LorText {
    id: paragraph

    property real lineSpacing: 0

    Layout.fillWidth: true
    wrapMode: Text.Wrap
    lineHeight: (metrics.height + lineSpacing) / metrics.height
    bottomPadding: -lineSpacing // nothing comes below the last line

    FontMetrics {
        id: metrics
        font: paragraph.font
    }
}
