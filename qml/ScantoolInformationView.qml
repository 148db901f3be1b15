import QtQuick
import QtQuick.Controls.Basic

// What the adapter says about itself.
ZPage {
    id: page

    property int connectionStatus: 0
    property int listModelCount: 0

    objectName: "scantoolInformationView"
    title: "Scantool"

    InfoList {
        anchors.fill: parent
        emptyText: page.connectionStatus === 2 ? "Nothing reported" : "Not connected: open the connection first."
        model: typeof scantoolListModel !== "undefined" ? scantoolListModel : null
    }
}
