import QtQuick
import QtQuick.Controls.Basic

// The trouble-code database, offline: search it or browse it by category.
ZPage {
    id: page

    property string image: "qrc:///search.png"

    signal showSearchView()
    signal showBrowseView()

    objectName: "dtcDatabaseView"
    title: "DTC Database"

    Column {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.topMargin: 28
        spacing: 12

        Image {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 120
            height: 120
            sourceSize.width: 240
            sourceSize.height: 240
            source: page.image
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            width: parent.width - 2 * Theme.margin
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            text: "Descriptions of the diagnostic trouble codes, available without a vehicle."
            color: Theme.textDim
            font.pixelSize: Theme.fontNormal
        }
        Item { width: 1; height: 8 }
        Rectangle { width: parent.width; height: 1; color: Theme.divider }
        NavigationRow {
            objectName: "searchRow"
            width: parent.width
            title: "Search"
            subtitle: "Find a code by its code, description or category"
            onClicked: page.showSearchView()
        }
        NavigationRow {
            objectName: "browseRow"
            width: parent.width
            title: "Browse"
            subtitle: "List the codes of the chosen categories"
            onClicked: page.showBrowseView()
        }
    }
}
