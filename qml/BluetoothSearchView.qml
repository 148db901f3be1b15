import QtQuick
import QtQuick.Controls.Basic

// Nearby Bluetooth devices; tapping one makes it the adapter.
ZPage {
    id: page

    property var devices: []
    property string statusText
    property bool searching: false
    property bool adapterAvailable: true

    signal searchRequested()
    signal deviceSelected(int index)

    title: "Bluetooth devices"

    Column {
        id: status
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: Theme.margin
        spacing: 12

        Row {
            width: parent.width
            spacing: 12
            visible: page.statusText !== ""
            BusyIndicator {
                objectName: "busyIndicator"
                width: 32
                height: 32
                running: page.searching
                visible: running
                palette.dark: Theme.accent
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                objectName: "statusText"
                width: parent.width - (page.searching ? 44 : 0)
                anchors.verticalCenter: parent.verticalCenter
                text: page.statusText
                color: page.adapterAvailable ? Theme.textDim : Theme.danger
                font.pixelSize: Theme.fontNormal
                wrapMode: Text.WordWrap
            }
        }
    }

    ListView {
        id: list
        objectName: "deviceList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: status.bottom
        anchors.bottom: searchButton.top
        anchors.topMargin: Theme.margin
        clip: true
        model: page.devices

        delegate: ItemDelegate {
            id: row
            width: ListView.view.width
            height: 72
            onClicked: {
                page.deviceSelected(index)
                page.goBack()
            }
            background: Rectangle {
                color: row.pressed ? Theme.pressed : "transparent"
                Rectangle {
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    anchors.leftMargin: Theme.margin
                    height: 1
                    color: Theme.divider
                }
            }
            contentItem: Column {
                spacing: 4
                leftPadding: 4
                Text {
                    text: modelData.name
                    color: Theme.text
                    font.pixelSize: Theme.fontNormal
                    font.bold: true
                }
                Text {
                    text: modelData.address
                    color: Theme.textDim
                    font.pixelSize: Theme.fontSmall
                    font.family: "monospace"
                }
            }
        }
    }

    Button {
        id: searchButton
        objectName: "searchButton"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: Theme.margin
        height: 56
        text: page.searching ? "Searching..." : "Search again"
        enabled: page.adapterAvailable && !page.searching
        onClicked: page.searchRequested()
        background: Rectangle {
            radius: Theme.radius
            color: !searchButton.enabled ? Theme.surfaceRaised
                 : searchButton.pressed ? Qt.darker(Theme.accent, 1.2) : Theme.accent
        }
        contentItem: Text {
            text: searchButton.text
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            font.pixelSize: Theme.fontNormal
            font.bold: true
            color: searchButton.enabled ? Theme.accentText : Theme.textDim
        }
    }
}
