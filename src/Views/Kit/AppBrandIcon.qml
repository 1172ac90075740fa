import QtQuick

// The application's icon, as large as its parent lets it be. Without an image it is empty.
Item {
    id: brand

    Accessible.role: Accessible.Graphic
    Accessible.name: "Lorvane app icon"

    Image {
        anchors.fill: parent
        source: "qrc:/qt/qml/Lorvane/AppIcon.svg"
        sourceSize: Qt.size(brand.width, brand.height)
        fillMode: Image.PreserveAspectFit
        smooth: true
        Accessible.ignored: true
    }
}
