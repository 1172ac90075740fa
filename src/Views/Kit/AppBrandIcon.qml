import QtQuick
import QtQuick.Window

// The application's icon, as large as its parent lets it be. Without an image it is empty.
Image {
    source: "qrc:/qt/qml/Lorvane/AppIcon.svg"
    sourceSize: Qt.size(Math.round(width * Screen.devicePixelRatio),
                        Math.round(height * Screen.devicePixelRatio))
    fillMode: Image.PreserveAspectFit
    smooth: true
    Accessible.role: Accessible.Graphic
    Accessible.name: "Lorvane app icon"
}
