import QtQuick

PlaceholderPage {
    objectName: "dtcBrowseView"
    title: "Browse Codes"
    image: "qrc:///search.png"
}
