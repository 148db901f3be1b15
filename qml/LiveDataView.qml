import QtQuick
import QtQuick.Controls.Basic
import org.quillot.zarvane 1.0

// Live data: every supported value of every control unit; only the rows on
// screen are read.
ZPage {
    id: page

    property int connectionStatus: 0
    property bool imperial: false
    readonly property bool stale: connectionStatus !== 2

    signal visibleRows(int first, int last)
    signal unitToggled()
    // The row whose value the chart draws; -1 closes it.
    signal chartRow(int row)

    property int chartedRow: -1
    property string chartTitle
    property string chartUnit

    function openChart(row, title, unit) {
        page.chartedRow = row
        page.chartTitle = title
        page.chartUnit = unit
        page.chartRow(row)
        Qt.callLater(list.positionViewAtIndex, row, ListView.Contain)
    }
    function closeChart() {
        page.chartedRow = -1
        page.chartRow(-1)
    }

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
        anchors.bottom: chartPanel.visible ? chartPanel.top : parent.bottom
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: typeof liveDataListModel !== "undefined" ? liveDataListModel : null
        onContentYChanged: page.reportRows()
        onHeightChanged: page.reportRows()
        onCountChanged: Qt.callLater(page.reportRows)
        Component.onCompleted: Qt.callLater(page.reportRows)

        delegate: ItemDelegate {
            width: ListView.view.width
            height: 64
            opacity: page.stale ? 0.45 : 1
            onClicked: page.openChart(index, model.name, model.unit)
            background: Rectangle { color: parent.pressed || index === page.chartedRow ? Theme.pressed : "transparent" }
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

    Rectangle {
        id: chartPanel
        objectName: "chartPanel"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 300
        visible: page.chartedRow >= 0
        color: Theme.surface
        Rectangle { anchors.left: parent.left; anchors.right: parent.right; height: 1; color: Theme.divider }
        Text {
            id: chartTitleText
            objectName: "chartTitle"
            anchors.left: parent.left
            anchors.right: closeButton.left
            anchors.top: parent.top
            anchors.margins: Theme.margin
            text: page.chartTitle
            color: page.stale ? Theme.textDim : Theme.text
            font.pixelSize: Theme.fontNormal
            font.bold: true
            elide: Text.ElideRight
        }
        ToolButton {
            id: closeButton
            objectName: "chartCloseButton"
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: 6
            width: 44
            height: 44
            onClicked: page.closeChart()
            background: Rectangle {
                radius: width / 2
                color: closeButton.pressed ? Theme.pressed : "transparent"
            }
            contentItem: Text {
                text: "\u00D7"
                color: Theme.textDim
                font.pixelSize: 30
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }
        }
        ValueChart {
            id: chart
            objectName: "valueChart"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: chartTitleText.bottom
            anchors.bottom: figures.top
            anchors.margins: Theme.margin
        }
        Row {
            id: figures
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 12
            spacing: 28
            Repeater {
                model: [["Min", chart.minimum], ["Max", chart.maximum], ["Now", chart.current]]
                Column {
                    Text {
                        text: modelData[0]
                        color: Theme.accent
                        font.pixelSize: Theme.fontSmall
                        font.bold: true
                        font.capitalization: Font.AllUppercase
                    }
                    Text {
                        text: chart.sampleCount > 0 ? Number(modelData[1]).toLocaleString(Qt.locale("C"), "f", 1) + " " + page.chartUnit : "-"
                        color: page.stale ? Theme.textDim : Theme.text
                        font.pixelSize: Theme.fontLarge
                        font.bold: true
                    }
                }
            }
        }
    }
}
