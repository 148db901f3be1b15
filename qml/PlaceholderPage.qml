import QtQuick
import QtQuick.Controls.Basic

// Stands for a screen whose content is not part of the application yet.
ZPage {
    id: page

    property string image
    property string description: "This screen is on its way."

    Column {
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        spacing: Theme.margin

        Image {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: page.image !== ""
            source: page.image
            sourceSize.width: 96
            sourceSize.height: 96
        }
        Text {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            text: page.description
            color: Theme.textDim
            font.pixelSize: Theme.fontNormal
        }
        ZButton {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Back"
            primary: false
            onClicked: page.goBack()
        }
    }
}
