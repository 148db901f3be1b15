import QtQuick
import QtQuick.Controls.Basic

// The one yes/no dialog of the application, filled in by whoever asks.
Item {
    id: dialog

    property string titleText
    property string message
    property string acceptButtonText: "OK"
    property string rejectButtonText: "Cancel"
    readonly property bool isOpen: visible

    signal accepted()
    signal rejected()

    function open() {
        visible = true
        forceActiveFocus()
    }
    function accept() {
        visible = false
        accepted()
    }
    function reject() {
        visible = false
        rejected()
    }

    visible: false
    Keys.onEscapePressed: reject()
    Keys.onBackPressed: reject()

    Rectangle {
        anchors.fill: parent
        color: Theme.dim
        MouseArea {
            anchors.fill: parent
            // Taps beside the panel do not reach the page below.
        }
    }

    Rectangle {
        id: panel
        anchors.centerIn: parent
        width: Math.min(parent.width - 2 * Theme.margin, 420)
        height: content.implicitHeight + 2 * Theme.margin
        radius: Theme.radius
        color: Theme.surfaceRaised
        border.color: Theme.divider

        Column {
            id: content
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: Theme.margin
            spacing: Theme.margin

            Text {
                width: parent.width
                text: dialog.titleText
                visible: text !== ""
                color: Theme.text
                font.pixelSize: Theme.fontLarge
                font.bold: true
                wrapMode: Text.WordWrap
            }
            Text {
                width: parent.width
                text: dialog.message
                visible: text !== ""
                color: Theme.textDim
                font.pixelSize: Theme.fontNormal
                wrapMode: Text.WordWrap
            }
            Row {
                anchors.right: parent.right
                spacing: 8
                ZButton {
                    objectName: "rejectButton"
                    text: dialog.rejectButtonText
                    primary: false
                    onClicked: dialog.reject()
                }
                ZButton {
                    objectName: "acceptButton"
                    text: dialog.acceptButtonText
                    onClicked: dialog.accept()
                }
            }
        }
    }
}
