import QtQuick
import QtQuick.Controls.Basic

// The stored trouble codes with their descriptions and categories.
ZPage {
    id: page

    property int connectionStatus: 0
    property int listModelCount: 0
    // Why the list, or part of it, could not be read; empty when it was.
    property string readError: ""

    signal codeClicked(int index)

    objectName: "storedDtcView"
    title: "Confirmed DTCs"

    DtcCodeList {
        anchors.fill: parent
        tappable: true
        onCodeClicked: (index) => page.codeClicked(index)
        explanation: (page.readError !== "" && page.listModelCount > 0 ? "could not read: " + page.readError + "\n" : "")
            + "These codes indicate confirmed malfunctioning components. May require vehicle service to fix."
        emptyText: page.readError !== "" ? "could not read: " + page.readError
            : page.connectionStatus === 2 ? "No confirmed trouble codes" : "Not connected"
        model: typeof storedDtcListModel !== "undefined" ? storedDtcListModel : null
    }
}
