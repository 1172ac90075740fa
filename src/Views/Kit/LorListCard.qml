import QtQuick
import Lorvane

// A row of a LorListPage that is a card of its own.
LorListRow {
    id: row

    default property alias content: card.content
    property alias spacing: card.spacing

    implicitHeight: card.implicitHeight

    LorCard {
        id: card

        x: row.inset
        width: row.width - 2 * row.inset
    }
}
