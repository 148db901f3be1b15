import QtQuick

PlaceholderPage {
    objectName: "dtcDatabaseView"
    title: "DTC Database"
    image: "qrc:///search.png"
}
