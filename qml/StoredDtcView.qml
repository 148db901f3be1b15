import QtQuick

PlaceholderPage {
    objectName: "storedDtcView"
    title: "Stored Codes"
    image: "qrc:///mil_off.png"
}
