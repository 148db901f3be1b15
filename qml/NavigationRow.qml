import QtQuick
import QtQuick.Controls.Basic

// A tappable row leading to another screen: optional picture or count badge,
// title, subtitle and a chevron.
ItemDelegate {
    id: row

    property string title
    property string subtitle
    property string image
    property string badge
    property color badgeColor: Theme.accent

    height: Theme.rowHeight

    background: Rectangle {
        color: row.pressed ? Theme.pressed : "transparent"
        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.leftMargin: Theme.margin
            anchors.rightMargin: Theme.margin
            height: 1
            color: Theme.divider
        }
    }

    contentItem: Item {
        Item {
            id: lead
            anchors.left: parent.left
            anchors.leftMargin: 4
            anchors.verticalCenter: parent.verticalCenter
            width: 56
            height: 56
            visible: row.image !== "" || row.badge !== ""
            Image {
                anchors.fill: parent
                visible: row.image !== ""
                source: row.image
                sourceSize.width: 112
                sourceSize.height: 112
            }
            Rectangle {
                anchors.fill: parent
                visible: row.image === "" && row.badge !== ""
                radius: width / 2
                color: "transparent"
                border.width: 3
                border.color: row.badgeColor
                Text {
                    anchors.centerIn: parent
                    text: row.badge
                    color: row.badgeColor
                    font.pixelSize: Theme.fontLarge
                    font.bold: true
                }
            }
        }
        Column {
            anchors.left: lead.visible ? lead.right : parent.left
            anchors.leftMargin: lead.visible ? Theme.margin : 4
            anchors.right: chevron.left
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4
            Text {
                width: parent.width
                text: row.title
                color: row.enabled ? Theme.text : Theme.textDim
                font.pixelSize: Theme.fontLarge
                font.bold: true
                elide: Text.ElideRight
            }
            Text {
                width: parent.width
                text: row.subtitle
                color: Theme.textDim
                font.pixelSize: Theme.fontSmall
                elide: Text.ElideRight
            }
        }
        Text {
            id: chevron
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: "\u203A"
            color: Theme.textDim
            font.pixelSize: 34
        }
    }
}
