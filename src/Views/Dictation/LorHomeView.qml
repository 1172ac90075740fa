import QtQuick
import QtQuick.Layouts
import Lorvane
import Lorvane.Models

// The page that the window opens on.
LorScrollPage {
    id: page

    required property QtObject store

    signal showHistory

    spacing: 26

    HomeModel {
        id: home
        store: page.store
    }

    LorPageHeader {
        eyebrow: "Your voice, in writing"
        title: "A little less typing."
        subtitle: "Speak naturally. Make room for your next good idea."
    }

    RecordingCard {
        store: page.store
        home: home
        onShowHistory: page.showHistory()
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 14

        StatisticCard {
            label: "WORDS CAPTURED"
            value: home.wordsCaptured
            icon: "text.alignleft"
        }

        StatisticCard {
            label: "THOUGHTS SAVED"
            value: home.thoughtsSaved
            icon: "tray"
        }

        StatisticCard {
            label: "TIME DICTATING"
            value: home.timeDictating
            icon: "waveform"
        }
    }

    RowLayout {
        Layout.fillWidth: true
        visible: !home.isTranscriptFinal

        LorText {
            Layout.fillWidth: true
            text: "Your latest thoughts"
            font.pixelSize: 17
            font.weight: LorFonts.semibold
            Accessible.role: Accessible.Heading
        }

        LorLink {
            text: "View history"
            font.pixelSize: 12
            onClicked: page.showHistory()
        }
    }

    LatestThought {
        visible: !home.isTranscriptFinal
        home: home
        onCopy: page.store.copyTranscript(home.latestText)
    }

    RowLayout {
        spacing: 7

        LorSymbol {
            name: "lock.shield"
            fontSize: 10
            color: LorPalette.muted
        }

        LorText {
            text: "Saved on this Mac · Speech recognition provided by Apple"
            color: LorPalette.muted
            font.pixelSize: 10
        }
    }
}
