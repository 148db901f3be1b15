import QtQuick
import QtQuick.Controls.Basic

// Information: what the adapter and the engine's control unit say.
ZPage {
    id: page

    property string image: "qrc:///information.png"
    property int connectionStatus: 0

    // The name of the first signal is shared with the view model as it stands.
    signal showScantooInformation()
    signal showEcuInformation()

    objectName: "informationView"
    title: "Information"

    Column {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.topMargin: 28
        spacing: 12

        Image {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 120
            height: 120
            sourceSize.width: 240
            sourceSize.height: 240
            source: page.image
        }
        Text {
            objectName: "statusText"
            anchors.horizontalCenter: parent.horizontalCenter
            width: parent.width - 2 * Theme.margin
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            text: page.connectionStatus === 2 ? "Connected to the adapter and the vehicle"
                : "Not connected: open the connection to read this information."
            color: page.connectionStatus === 2 ? Theme.ok : Theme.textDim
            font.pixelSize: Theme.fontNormal
        }
        Item { width: 1; height: 8 }
        Rectangle { width: parent.width; height: 1; color: Theme.divider }
        NavigationRow {
            objectName: "scantoolRow"
            width: parent.width
            title: "Scantool"
            subtitle: "Adapter name, manufacturer and version"
            onClicked: page.showScantooInformation()
        }
        NavigationRow {
            objectName: "ecuRow"
            width: parent.width
            title: "ECU"
            subtitle: "OBD standard, protocol and name of the control unit"
            onClicked: page.showEcuInformation()
        }
        NavigationRow {
            objectName: "onBoardTestsRow"
            width: parent.width
            title: "On-board tests"
            subtitle: "Monitor test results against their limits, failures first"
            onClicked: if (typeof onBoardTestsViewModel !== "undefined") onBoardTestsViewModel.open()
        }
        NavigationRow {
            objectName: "vehicleInfoRow"
            width: parent.width
            title: "Vehicle information"
            subtitle: "VIN, calibrations and how often each monitor has run"
            onClicked: if (typeof vehicleInfoViewModel !== "undefined") vehicleInfoViewModel.open()
        }
        NavigationRow {
            // Null once the application object is gone, before the page is.
            property QtObject report: typeof reportViewModel !== "undefined" ? reportViewModel : null
            objectName: "reportRow"
            width: parent.width
            enabled: !!report && report.connected && !report.busy
            title: "Save report"
            subtitle: report ? report.status : ""
            onClicked: if (report) report.save()
        }
    }
}
