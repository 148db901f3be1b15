import QtQuick
import QtQuick.Controls.Basic
import org.quillot.zarvane 1.0

// A chart of up to four values with its legend: per value its colour, name,
// latest, lowest and highest reading in its unit. The notice replaces the
// hint when a value cannot be charted.
Rectangle {
    id: panel

    // objectName of the chart; the close button and notice take it as prefix.
    property string chartName
    property string hint
    property string notice
    property bool stale: false
    property alias chart: chartItem
    signal closed()

    height: 60 + 170 + legend.height + 12
    color: Theme.surface

    Rectangle { anchors.left: parent.left; anchors.right: parent.right; height: 1; color: Theme.divider }
    Text {
        id: noticeText
        objectName: panel.chartName + "Notice"
        anchors.left: parent.left
        anchors.right: closeButton.left
        anchors.top: parent.top
        anchors.margins: Theme.margin
        text: panel.notice !== "" ? panel.notice : panel.hint
        color: panel.notice !== "" ? Theme.danger : Theme.textDim
        font.pixelSize: Theme.fontSmall
        font.bold: panel.notice !== ""
        wrapMode: Text.WordWrap
        maximumLineCount: 2
        elide: Text.ElideRight
    }
    ToolButton {
        id: closeButton
        objectName: panel.chartName + "Close"
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.margins: 6
        width: 44
        height: 44
        onClicked: panel.closed()
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
        id: chartItem
        objectName: panel.chartName
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.topMargin: 60
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        height: 170
        stale: panel.stale
    }
    Column {
        id: legend
        objectName: panel.chartName + "Legend"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: chartItem.bottom
        anchors.leftMargin: Theme.margin
        anchors.rightMargin: Theme.margin
        anchors.topMargin: 6
        spacing: 2
        Repeater {
            model: chartItem.legend
            Row {
                id: entry
                readonly property var series: modelData
                function figure(value) {
                    return entry.series.count > 0
                        ? Number(value).toLocaleString(Qt.locale("C"), "f", Math.abs(value) >= 100 ? 0 : 1) : "-"
                }
                spacing: 8
                Rectangle {
                    width: 12
                    height: 12
                    radius: 6
                    anchors.verticalCenter: parent.verticalCenter
                    color: panel.stale ? Theme.textDim : entry.series.colour
                }
                Text {
                    width: legend.width - 12 - 3 * 86 - 4 * 8
                    text: entry.series.name + (entry.series.unit !== "" ? " (" + entry.series.unit + ")" : "")
                    color: panel.stale ? Theme.textDim : Theme.text
                    font.pixelSize: Theme.fontSmall
                    elide: Text.ElideRight
                }
                Repeater {
                    model: [["now", entry.series.current], ["min", entry.series.minimum], ["max", entry.series.maximum]]
                    Text {
                        width: 86
                        horizontalAlignment: Text.AlignRight
                        text: "<font color='" + Theme.textDim + "'>" + modelData[0] + "</font> " + entry.figure(modelData[1])
                        textFormat: Text.StyledText
                        color: panel.stale ? Theme.textDim : Theme.text
                        font.pixelSize: Theme.fontSmall
                        font.bold: true
                    }
                }
            }
        }
    }
}
