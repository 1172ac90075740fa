import QtQuick
import QtQuick.Layouts
import Lorvane

// A drawing of the settings page that the user has to look for. Nothing in it is a control.
Rectangle {
    id: illustration

    required property string title
    required property string symbol

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight + 36
    radius: 14
    color: LorPalette.sidebar
    Accessible.role: Accessible.Graphic
    Accessible.name: [frameTitle.text, section.text, title, name.text, state.text, advice.text,
                      note.text].join(", ")

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: 18
        spacing: 12

        RowLayout {
            spacing: 5

            Repeater {
                model: [LorPalette.red, LorPalette.orange, LorPalette.green]

                Rectangle {
                    required property color modelData

                    implicitWidth: 8
                    implicitHeight: 8
                    radius: 4
                    color: LorPalette.translucent(modelData, 0.7)
                }
            }

            Item {
                Layout.fillWidth: true
            }

            LorText {
                id: frameTitle
                text: "System Settings · illustrated guide"
                color: LorPalette.muted
                font.pixelSize: 10
                Accessible.ignored: true
            }
        }

        RowLayout {
            spacing: 18

            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                Layout.preferredWidth: 118
                Layout.maximumWidth: 118
                spacing: 8

                LorSymbol {
                    name: "hand.raised.fill"
                    fontSize: 22
                    color: LorPalette.muted
                }

                LorText {
                    id: section
                    Layout.fillWidth: true
                    text: "Privacy & Security"
                    color: LorPalette.muted
                    font.pixelSize: 11
                    font.weight: LorFonts.semibold
                    wrapMode: Text.Wrap
                    Accessible.ignored: true
                }
            }

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 12

                RowLayout {
                    spacing: 8

                    LorSymbol {
                        name: illustration.symbol
                        fontSize: 15
                        color: LorPalette.ink
                    }

                    LorText {
                        text: illustration.title
                        font.pixelSize: 15
                        font.weight: LorFonts.semibold
                        Accessible.ignored: true
                    }
                }

                Rectangle {
                    Layout.fillWidth: true
                    implicitHeight: row.implicitHeight + 24
                    radius: 9
                    color: LorPalette.white

                    RowLayout {
                        id: row

                        anchors.fill: parent
                        anchors.margins: 12
                        spacing: 8

                        AppBrandIcon {
                            Layout.preferredWidth: 24
                            Layout.preferredHeight: 24
                            Accessible.ignored: true
                        }

                        LorText {
                            id: name
                            Layout.fillWidth: true
                            text: "Lorvane"
                            font.pixelSize: 13
                            font.weight: Font.Medium
                            Accessible.ignored: true
                        }

                        Rectangle {
                            implicitWidth: state.implicitWidth + 20
                            implicitHeight: state.implicitHeight + 10
                            radius: height / 2
                            color: LorPalette.blue

                            LorText {
                                id: state
                                anchors.centerIn: parent
                                text: "ON"
                                color: LorPalette.white
                                font.pixelSize: 9
                                font.weight: Font.Bold
                                Accessible.ignored: true
                            }
                        }
                    }
                }

                LorDetail {
                    id: advice
                    text: "Turn on the switch beside Lorvane."
                    Accessible.ignored: true
                }
            }
        }

        LorText {
            id: note
            Layout.fillWidth: true
            text: "Example screen — labels and appearance can vary by macOS version."
            color: LorPalette.muted
            font.pixelSize: 9
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
    }
}
