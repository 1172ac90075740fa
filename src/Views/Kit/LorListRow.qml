import QtQuick

// A row of a LorListPage, from edge to edge. While it waits to be used again, neither the keyboard
// nor a screen reader finds it.
Item {
    id: row

    // From the page's edge to the centred stack.
    readonly property real inset: ListView.view ? ListView.view.inset : 0

    signal pooled

    width: ListView.view ? ListView.view.width : 0
    ListView.onPooled: {
        visible = false;
        pooled();
    }
    ListView.onReused: visible = true
}
