import QtQuick
import QtQuick.Controls.Basic

// The stored trouble codes with their descriptions and categories.
ZPage {
    id: page

    property int connectionStatus: 0
    property int listModelCount: 0

    objectName: "storedDtcView"
    title: "Confirmed DTCs"

    DtcCodeList {
        anchors.fill: parent
        explanation: "These codes indicate confirmed malfunctioning components. May require vehicle service to fix."
        emptyText: page.connectionStatus === 2 ? "No confirmed trouble codes" : "Not connected"
        model: typeof storedDtcListModel !== "undefined" ? storedDtcListModel : null
    }
}
