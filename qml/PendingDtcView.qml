import QtQuick

PlaceholderPage {
    objectName: "pendingDtcView"
    title: "Pending Codes"
    image: "qrc:///mil_off.png"
}
