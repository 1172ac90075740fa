import QtQuick
import QtQuick.Layouts
import Lorvane

// The newest record, or what stands in its place before there is one.
LorCard {
    id: card

    required property QtObject home

    signal copy

    spacing: 15

    LorEmptyState {
        visible: !card.home.hasLatest
        icon: "text.bubble"
        title: "It starts with a thought."
        message: "Your completed dictations will appear here. Tap the microphone above to make your first one."
    }

    RowLayout {
        Layout.fillWidth: true
        visible: card.home.hasLatest

        LorDetail {
            text: card.home.latestDate
        }

        Item {
            Layout.fillWidth: true
        }

        LorDetail {
            text: card.home.latestWords
        }
    }

    LorSelectableText {
        Layout.fillWidth: true
        visible: card.home.hasLatest
        text: card.home.latestText
        font.pixelSize: 14
        lineSpacing: 5
        maximumLineCount: 4
    }

    LorLink {
        visible: card.home.hasLatest
        text: "Copy text"
        symbol: "doc.on.doc"
        onClicked: card.copy()
    }
}
