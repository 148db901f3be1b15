import QtQuick
import QtQuick.Controls.Basic

// Trouble codes: the lamp, the number of confirmed and pending codes, and
// clearing them.
ZPage {
    id: page

    property string engineImage: "qrc:///mil_off.png"
    property int storedDtcCount: 0
    property int pendingDtcCount: 0
    property bool busy: false
    // Why a list could not be read ("NO DATA (ECM 0x7E8)"), empty when it was.
    property string storedReadError: ""
    property string pendingReadError: ""
    property bool milKnown: true
    property int connectionStatus: 0

    signal showStoredCodes()
    signal showPendingCodes()
    signal clearMil()

    objectName: "dtcView"
    title: "Trouble Codes"

    readonly property bool connected: connectionStatus === 2
    readonly property bool lampOn: engineImage.indexOf("mil_on") >= 0

    Column {
        id: top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.topMargin: 24
        spacing: 10

        Image {
            objectName: "engineImage"
            anchors.horizontalCenter: parent.horizontalCenter
            width: 168
            height: 168
            sourceSize.width: 336
            sourceSize.height: 336
            source: page.engineImage
            opacity: page.milKnown || page.lampOn ? 1.0 : 0.3
        }
        Text {
            objectName: "lampText"
            anchors.horizontalCenter: parent.horizontalCenter
            text: !page.connected ? "Not connected"
                : page.busy ? "Reading trouble codes..."
                : page.lampOn ? "Malfunction indicated"
                : !page.milKnown ? "Malfunction indicator unknown" : "No malfunction indicated"
            color: !page.connected || (!page.milKnown && !page.lampOn) ? Theme.textDim
                : page.lampOn ? Theme.accent : Theme.ok
            font.pixelSize: Theme.fontLarge
            font.bold: true
        }
        Item {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 40
            height: 40
            BusyIndicator {
                objectName: "busyIndicator"
                anchors.fill: parent
                running: page.busy
                visible: running
                palette.dark: Theme.accent
            }
        }
        Rectangle {
            width: parent.width
            height: 1
            color: Theme.divider
        }
        NavigationRow {
            objectName: "storedRow"
            width: parent.width
            title: "Confirmed Trouble Codes"
            subtitle: page.storedReadError !== "" ? "could not read: " + page.storedReadError
                : page.storedDtcCount + " codes found"
            badge: page.storedReadError !== "" ? "?" : String(page.storedDtcCount)
            badgeColor: page.storedDtcCount > 0 ? Theme.accent : Theme.textDim
            onClicked: page.showStoredCodes()
        }
        NavigationRow {
            objectName: "pendingRow"
            width: parent.width
            title: "Pending Trouble Codes"
            subtitle: page.pendingReadError !== "" ? "could not read: " + page.pendingReadError
                : page.pendingDtcCount + " pending codes found"
            badge: page.pendingReadError !== "" ? "?" : String(page.pendingDtcCount)
            badgeColor: page.pendingDtcCount > 0 ? Theme.accent : Theme.textDim
            onClicked: page.showPendingCodes()
        }
    }

    Rectangle {
        id: bottomPanel
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 96
        color: Theme.surface
        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            height: 1
            color: Theme.divider
        }
        ZButton {
            objectName: "clearButton"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            anchors.margins: Theme.margin
            height: 60
            text: "Clear Trouble Codes"
            enabled: page.connected && !page.busy
            onClicked: page.clearMil()
        }
    }
}
