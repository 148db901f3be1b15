import QtQuick
import QtQuick.Controls.Basic

// The pending trouble codes with their descriptions and categories.
ZPage {
    id: page

    property int connectionStatus: 0
    property int listModelCount: 0

    objectName: "pendingDtcView"
    title: "Pending DTCs"

    DtcCodeList {
        anchors.fill: parent
        explanation: "These codes indicate temporary failed components. Does not necessarily indicate a malfunctioning component."
        emptyText: page.connectionStatus === 2 ? "No pending trouble codes" : "Not connected"
        model: typeof pendingDtcListModel !== "undefined" ? pendingDtcListModel : null
    }
}
