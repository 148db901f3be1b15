import QtQuick
import QtQuick.Controls.Basic

// Who and what the application is.
ZPage {
    id: page
    objectName: "aboutView"
    title: "About"

    Flickable {
        anchors.fill: parent
        contentHeight: content.implicitHeight + 2 * Theme.margin
        clip: true

        Column {
            id: content
            x: Theme.margin
            y: 2 * Theme.margin
            width: parent.width - 2 * Theme.margin
            spacing: Theme.margin

            Image {
                anchors.horizontalCenter: parent.horizontalCenter
                width: 128
                height: 128
                sourceSize.width: 256
                sourceSize.height: 256
                source: "qrc:///avatar.png"
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Zarvane"
                color: Theme.text
                font.pixelSize: 32
                font.bold: true
            }
            Text {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Version " + (typeof applicationVersion !== "undefined" ? applicationVersion : "")
                color: Theme.accent
                font.pixelSize: Theme.fontNormal
            }
            Text {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
                color: Theme.text
                font.pixelSize: Theme.fontNormal
                lineHeight: 1.2
                text: "Vehicle diagnostics for OBD-II cars through an ELM327-type adapter, over Bluetooth or Wi-Fi: trouble codes with an offline database, live data on gauges, and vehicle information."
            }
            Rectangle {
                width: parent.width
                height: 1
                color: Theme.divider
            }
            Text {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
                color: Theme.textDim
                font.pixelSize: Theme.fontSmall
                lineHeight: 1.2
                text: "\u00A9 Quillot \u2014 quillot.org\nFree software under the GNU General Public License, version 3 or later.\nUse only while the vehicle is parked."
            }
        }
    }
}
