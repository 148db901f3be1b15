import QtQuick
import QtQuick.Controls.Basic

// The bar on top of every page: back button, title, and room for actions.
Rectangle {
    id: header

    property string title
    property bool showBack: true
    default property alias actions: actionRow.data

    signal back()

    implicitHeight: Theme.headerHeight
    color: Theme.surface

    Rectangle {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 1
        color: Theme.divider
    }

    ToolButton {
        id: backButton
        objectName: "backButton"
        visible: header.showBack
        anchors.left: parent.left
        anchors.leftMargin: 4
        anchors.verticalCenter: parent.verticalCenter
        width: 56
        height: 56
        onClicked: header.back()
        contentItem: Canvas {
            id: arrow
            onPaint: {
                var ctx = getContext("2d")
                ctx.reset()
                ctx.strokeStyle = Theme.text
                ctx.lineWidth = 3
                ctx.lineCap = "round"
                ctx.lineJoin = "round"
                ctx.beginPath()
                ctx.moveTo(width / 2 + 6, height / 2 - 11)
                ctx.lineTo(width / 2 - 6, height / 2)
                ctx.lineTo(width / 2 + 6, height / 2 + 11)
                ctx.stroke()
            }
        }
        background: Rectangle {
            radius: width / 2
            color: backButton.pressed ? Theme.pressed : "transparent"
        }
    }

    Text {
        anchors.left: header.showBack ? backButton.right : parent.left
        anchors.leftMargin: header.showBack ? 4 : Theme.margin
        anchors.right: actionRow.left
        anchors.verticalCenter: parent.verticalCenter
        text: header.title
        color: Theme.text
        font.pixelSize: Theme.fontLarge
        font.bold: true
        elide: Text.ElideRight
    }

    Row {
        id: actionRow
        anchors.right: parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4
    }
}
