import QtQuick

// The one notice banner of the application; hides itself after timeout ms.
Item {
    id: banner

    property string text
    property string iconSource
    property int timeout: 3000
    property bool shown: false

    function show() {
        shown = true
        hideTimer.restart()
    }
    function hide() {
        hideTimer.stop()
        shown = false
    }

    anchors.left: parent.left
    anchors.right: parent.right
    anchors.top: parent.top
    anchors.margins: 12
    height: card.height
    opacity: shown ? 1 : 0
    visible: opacity > 0
    Behavior on opacity { NumberAnimation { duration: 200 } }

    Timer {
        id: hideTimer
        interval: banner.timeout
        onTriggered: banner.shown = false
    }

    Rectangle {
        id: card
        width: parent.width
        height: Math.max(64, row.implicitHeight + 28)
        radius: Theme.radius
        color: Theme.surfaceRaised
        border.color: Theme.accent
        border.width: 1

        Rectangle {
            width: 6
            height: parent.height - 2 * parent.radius
            anchors.left: parent.left
            anchors.leftMargin: 1
            anchors.verticalCenter: parent.verticalCenter
            color: Theme.accent
        }

        Row {
            id: row
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            anchors.leftMargin: 20
            anchors.rightMargin: Theme.margin
            spacing: 12

            Image {
                id: icon
                visible: banner.iconSource !== ""
                source: banner.iconSource
                width: visible ? 36 : 0
                height: 36
                sourceSize.width: 72
                sourceSize.height: 72
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                width: row.width - (icon.visible ? icon.width + row.spacing : 0)
                anchors.verticalCenter: parent.verticalCenter
                text: banner.text
                color: Theme.text
                font.pixelSize: Theme.fontNormal
                font.bold: true
                wrapMode: Text.WordWrap
            }
        }

        MouseArea {
            anchors.fill: parent
            onClicked: banner.hide()
        }
    }
}
