import QtQuick
import QtQuick.Controls.Basic

// Live data: every supported value of every control unit; only the rows on
// screen are read.
ZPage {
    id: page

    property int connectionStatus: 0
    property bool imperial: false
    readonly property bool stale: connectionStatus !== 2

    signal visibleRows(int first, int last)
    signal unitToggled()

    objectName: "liveDataView"
    title: "Live data"

    function reportRows() {
        if (list.count === 0) {
            page.visibleRows(-1, -1)
            return
        }
        var first = list.indexAt(0, list.contentY + 1)
        var last = list.indexAt(0, list.contentY + list.height - 1)
        page.visibleRows(first < 0 ? 0 : first, last < 0 ? list.count - 1 : last)
    }

    Rectangle {
        id: bar
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: 52
        color: Theme.surface
        Text {
            objectName: "statusText"
            anchors.left: parent.left
            anchors.leftMargin: Theme.margin
            anchors.verticalCenter: parent.verticalCenter
            text: page.stale ? "Not connected" : list.count + " values, read while shown"
            color: page.stale ? Theme.danger : Theme.textDim
            font.pixelSize: Theme.fontSmall
            font.bold: page.stale
        }
        Button {
            id: unitButton
            objectName: "unitButton"
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            height: 40
            text: page.imperial ? "Imperial" : "Metric"
            onClicked: page.unitToggled()
            background: Rectangle {
                radius: Theme.radius
                color: unitButton.pressed ? Theme.pressed : Theme.surfaceRaised
                border.color: Theme.accent
                border.width: 1
            }
            contentItem: Text {
                text: unitButton.text
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                color: Theme.text
                font.pixelSize: Theme.fontSmall
                font.bold: true
            }
        }
    }

    ListView {
        id: list
        objectName: "liveDataList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: typeof liveDataListModel !== "undefined" ? liveDataListModel : null
        onContentYChanged: page.reportRows()
        onHeightChanged: page.reportRows()
        onCountChanged: Qt.callLater(page.reportRows)
        Component.onCompleted: Qt.callLater(page.reportRows)

        delegate: Item {
            width: ListView.view.width
            height: 64
            opacity: page.stale ? 0.45 : 1
            Column {
                anchors.left: parent.left
                anchors.right: valueText.left
                anchors.leftMargin: Theme.margin
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                spacing: 2
                Text {
                    width: parent.width
                    text: model.name
                    color: page.stale ? Theme.textDim : Theme.text
                    font.pixelSize: Theme.fontNormal
                    elide: Text.ElideRight
                }
                Text {
                    text: model.ecu
                    color: page.stale ? Theme.textDim : Theme.accent
                    font.pixelSize: Theme.fontSmall
                    font.bold: true
                    font.capitalization: Font.AllUppercase
                }
            }
            Text {
                id: valueText
                anchors.right: parent.right
                anchors.rightMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, parent.width / 2)
                horizontalAlignment: Text.AlignRight
                elide: Text.ElideLeft
                text: model.unit !== "" ? model.value + " " + model.unit : model.value
                color: page.stale ? Theme.textDim : Theme.text
                font.pixelSize: Theme.fontLarge
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
        text: page.stale ? "Not connected: open the connection first." : "No values reported"
        color: Theme.textDim
        font.pixelSize: Theme.fontNormal
    }
}
