import QtQuick
import QtQuick.Controls.Basic

// The first control unit found.
ZPage {
    id: page

    property int connectionStatus: 0
    property int listModelCount: 0

    objectName: "ecuInformationView"
    title: "ECU"

    InfoList {
        anchors.fill: parent
        emptyText: page.connectionStatus === 2 ? "Nothing reported" : "Not connected: open the connection first."
        model: typeof ecuListModel !== "undefined" ? ecuListModel : null
    }
}
