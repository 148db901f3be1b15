import QtQuick

PlaceholderPage {
    objectName: "dtcView"
    title: "Trouble Codes"
    image: "qrc:///mil_off.png"
}
