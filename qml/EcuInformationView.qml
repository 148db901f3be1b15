import QtQuick

PlaceholderPage {
    objectName: "ecuInformationView"
    title: "ECU"
    image: "qrc:///information.png"
}
