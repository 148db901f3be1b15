import QtQuick
import QtQuick.Controls.Basic

// The pending trouble codes with their descriptions and categories.
ZPage {
    id: page

    property int connectionStatus: 0
    property int listModelCount: 0
    // Why the list, or part of it, could not be read; empty when it was.
    property string readError: ""

    signal codeClicked(int index)

    objectName: "pendingDtcView"
    title: "Pending DTCs"

    DtcCodeList {
        anchors.fill: parent
        tappable: true
        onCodeClicked: (index) => page.codeClicked(index)
        explanation: (page.readError !== "" && page.listModelCount > 0 ? "could not read: " + page.readError + "\n" : "")
            + "These codes indicate temporary failed components. Does not necessarily indicate a malfunctioning component."
        emptyText: page.readError !== "" ? "could not read: " + page.readError
            : page.connectionStatus === 2 ? "No pending trouble codes" : "Not connected"
        model: typeof pendingDtcListModel !== "undefined" ? pendingDtcListModel : null
    }
}
