import QtQuick

PlaceholderPage {
    objectName: "dashboardView"
    title: "Dashboard"
    image: "qrc:///monitoring.png"
}
