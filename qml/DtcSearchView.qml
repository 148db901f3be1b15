import QtQuick

PlaceholderPage {
    objectName: "dtcSearchView"
    title: "Search Codes"
    image: "qrc:///search.png"
}
