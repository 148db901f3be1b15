import QtQuick

PlaceholderPage {
    objectName: "informationView"
    title: "Information"
    image: "qrc:///information.png"
}
