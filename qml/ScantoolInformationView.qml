import QtQuick

PlaceholderPage {
    objectName: "scantoolInformationView"
    title: "Scantool"
    image: "qrc:///information.png"
}
