import QtQuick
import QtQuick.Controls.Basic

// Readiness: per control unit the lamp, the codes, every monitor and the
// counters since the codes were cleared, under a plain verdict.
ZPage {
    id: page

    property int connectionStatus: 0
    property string verdict
    property bool ready: false
    readonly property bool stale: connectionStatus !== 2
    // By ResultListModel's state: complete, incomplete, reading, unread, not supported.
    readonly property var stateColors: [Theme.ok, Theme.danger, Theme.text, Theme.danger, Theme.textDim]

    objectName: "readinessView"
    title: "Readiness"

    Rectangle {
        id: bar
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: verdictText.implicitHeight + 28
        color: Theme.surface
        Text {
            id: verdictText
            objectName: "verdictText"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.margins: Theme.margin
            anchors.verticalCenter: parent.verticalCenter
            wrapMode: Text.WordWrap
            text: page.stale ? "Not connected" : page.verdict
            color: page.stale ? Theme.danger : page.ready ? Theme.ok : Theme.accent
            font.pixelSize: Theme.fontNormal
            font.bold: true
        }
    }

    ListView {
        id: list
        objectName: "readinessList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: typeof readinessListModel !== "undefined" ? readinessListModel : null
        section.property: "section"
        section.delegate: Text {
            width: ListView.view.width
            leftPadding: Theme.margin
            topPadding: 14
            bottomPadding: 4
            text: section
            color: page.stale ? Theme.textDim : Theme.accent
            font.pixelSize: Theme.fontSmall
            font.bold: true
            font.letterSpacing: 1
        }

        delegate: Item {
            width: ListView.view.width
            height: 48
            opacity: page.stale ? 0.45 : 1
            Text {
                anchors.left: parent.left
                anchors.right: valueText.left
                anchors.leftMargin: Theme.margin
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                text: model.title
                color: page.stale ? Theme.textDim : Theme.text
                font.pixelSize: Theme.fontNormal
                elide: Text.ElideRight
            }
            Text {
                id: valueText
                anchors.right: parent.right
                anchors.rightMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                text: model.value
                color: page.stale ? Theme.textDim : page.stateColors[model.state]
                font.pixelSize: Theme.fontNormal
                font.bold: true
            }
            Rectangle {
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                anchors.leftMargin: Theme.margin
                anchors.rightMargin: Theme.margin
                height: 1
                color: Theme.divider
            }
        }
    }

    Text {
        objectName: "emptyText"
        anchors.centerIn: parent
        width: parent.width - 2 * Theme.margin
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.WordWrap
        visible: list.count === 0
        text: page.stale ? "Not connected: open the connection first." : "Reading the monitors..."
        color: Theme.textDim
        font.pixelSize: Theme.fontNormal
    }
}
