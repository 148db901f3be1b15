import QtQuick
import QtQuick.Controls.Basic

// Title and value rows of an information screen; says so when empty.
Item {
    id: box

    property alias model: list.model
    property string emptyText
    readonly property alias list: list

    ListView {
        id: list
        objectName: "infoList"
        anchors.fill: parent
        anchors.topMargin: 8
        clip: true
        reuseItems: true
        boundsBehavior: Flickable.StopAtBounds
        delegate: Item {
            width: ListView.view.width
            height: 76
            Column {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.leftMargin: Theme.margin
                anchors.rightMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                spacing: 4
                Text {
                    width: parent.width
                    text: model.title
                    color: Theme.accent
                    font.pixelSize: Theme.fontSmall
                    font.bold: true
                    font.capitalization: Font.AllUppercase
                    font.letterSpacing: 1
                }
                Text {
                    width: parent.width
                    text: model.subTitle !== "" ? model.subTitle : "-"
                    color: Theme.text
                    font.pixelSize: Theme.fontLarge
                    elide: Text.ElideRight
                }
            }
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
    }

    Text {
        objectName: "emptyText"
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.WordWrap
        visible: list.count === 0
        text: box.emptyText
        color: Theme.textDim
        font.pixelSize: Theme.fontNormal
    }
}
