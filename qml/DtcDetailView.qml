import QtQuick
import QtQuick.Controls.Basic

// One trouble code: what it means, the control unit that reported it and
// the freeze frame that unit stored.
ZPage {
    id: page

    property int connectionStatus: 0
    property string code
    property string category
    property string description
    property string ecu
    // The code that stored frame 0; empty while unread or when none is stored.
    property string storedBy
    property string frameNote
    // [{ pid, name, value }] of every freeze-frame value.
    property var frame: []
    readonly property bool stale: connectionStatus !== 2

    readonly property color tagColor: category === "Powertrain" ? Theme.accent
        : category === "Body" ? "#5fb3f0"
        : category === "Chassis" ? "#9ccc65"
        : category === "Network" ? "#ba8cf0" : Theme.textDim

    objectName: "dtcDetailView"
    title: page.code !== "" ? page.code : "Trouble code"

    Rectangle {
        id: bar
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: page.stale ? 44 : 0
        visible: page.stale
        color: Theme.surface
        Text {
            objectName: "statusText"
            anchors.left: parent.left
            anchors.leftMargin: Theme.margin
            anchors.verticalCenter: parent.verticalCenter
            text: page.stale ? "Not connected" : ""
            color: Theme.danger
            font.pixelSize: Theme.fontSmall
            font.bold: true
        }
    }

    Flickable {
        id: flick
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        clip: true
        contentHeight: content.implicitHeight + 2 * Theme.margin
        boundsBehavior: Flickable.StopAtBounds

        Column {
            id: content
            x: Theme.margin
            y: Theme.margin
            width: flick.width - 2 * Theme.margin
            spacing: 12
            opacity: page.stale ? 0.45 : 1

            Row {
                spacing: 14
                Rectangle {
                    width: 104
                    height: 38
                    radius: 6
                    color: Qt.rgba(page.tagColor.r, page.tagColor.g, page.tagColor.b, 0.16)
                    border.color: page.tagColor
                    Text {
                        objectName: "codeText"
                        anchors.centerIn: parent
                        text: page.code
                        color: page.tagColor
                        font.pixelSize: Theme.fontLarge
                        font.bold: true
                        font.family: "monospace"
                    }
                }
                Column {
                    anchors.verticalCenter: parent.verticalCenter
                    Text {
                        objectName: "categoryText"
                        text: page.category
                        color: Theme.text
                        font.pixelSize: Theme.fontNormal
                        font.bold: true
                    }
                    Text {
                        objectName: "ecuText"
                        text: page.ecu !== "" ? "Reported by " + page.ecu : ""
                        visible: page.ecu !== ""
                        color: Theme.textDim
                        font.pixelSize: Theme.fontSmall
                    }
                }
            }
            Text {
                objectName: "descriptionText"
                width: parent.width
                text: page.description
                color: Theme.text
                font.pixelSize: Theme.fontNormal
                wrapMode: Text.WordWrap
            }
            Rectangle {
                width: parent.width
                height: 1
                color: Theme.divider
            }
            Text {
                text: "FREEZE FRAME"
                color: page.stale ? Theme.textDim : Theme.accent
                font.pixelSize: Theme.fontSmall
                font.bold: true
                font.letterSpacing: 1
            }
            Text {
                objectName: "frameNote"
                width: parent.width
                text: page.frameNote
                visible: text !== ""
                color: page.frameNote.indexOf("could not read") === 0 ? Theme.danger : Theme.textDim
                font.pixelSize: Theme.fontNormal
                wrapMode: Text.WordWrap
            }
            Repeater {
                objectName: "frameRows"
                model: page.frame
                delegate: Item {
                    width: content.width
                    height: 44
                    Text {
                        anchors.left: parent.left
                        anchors.right: valueText.left
                        anchors.rightMargin: 8
                        anchors.verticalCenter: parent.verticalCenter
                        text: modelData.name
                        color: page.stale ? Theme.textDim : Theme.text
                        font.pixelSize: Theme.fontSmall
                        elide: Text.ElideRight
                    }
                    Text {
                        id: valueText
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        width: Math.min(implicitWidth, parent.width * 0.55)
                        horizontalAlignment: Text.AlignRight
                        text: modelData.value
                        color: page.stale ? Theme.textDim : Theme.text
                        font.pixelSize: Theme.fontNormal
                        font.bold: true
                        elide: Text.ElideRight
                    }
                    Rectangle {
                        anchors.left: parent.left
                        anchors.right: parent.right
                        anchors.bottom: parent.bottom
                        height: 1
                        color: Theme.divider
                    }
                }
            }
        }
    }
}
