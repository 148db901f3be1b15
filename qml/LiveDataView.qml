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
    // Adds a row to the chart or takes it off; -1 empties the chart.
    signal chartRow(int row)
    signal recordToggled()
    signal recordingsRequested()
    signal fileOpened(string name)
    signal fileColumnToggled(int column)
    signal fileClosed()

    // Set by the view model.
    property var chartedRows: []
    property var chartedColours: []
    property string chartNotice
    property bool recording: false
    property string recordText
    property var recordings: []
    property bool fileMode: false
    property string fileTitle
    property var fileColumns: []
    property string fileNotice
    property bool picking: false

    function chartColour(row) {
        var i = page.chartedRows.indexOf(row)
        return i >= 0 && i < page.chartedColours.length ? page.chartedColours[i] : "transparent"
    }

    objectName: "liveDataView"
    title: "Live data"
    onFileModeChanged: Qt.callLater(page.reportRows)

    function reportRows() {
        if (list.count === 0 || page.fileMode) {
            page.visibleRows(-1, -1)
            return
        }
        var first = list.indexAt(0, list.contentY + 1)
        var last = list.indexAt(0, list.contentY + list.height - 1)
        page.visibleRows(first < 0 ? 0 : first, last < 0 ? list.count - 1 : last)
    }

    component BarButton: Button {
        id: barButton
        property bool active: false
        height: 40
        background: Rectangle {
            radius: Theme.radius
            color: barButton.pressed ? Theme.pressed : barButton.active ? Theme.danger : Theme.surfaceRaised
            border.color: barButton.enabled ? Theme.accent : Theme.divider
            border.width: 1
        }
        contentItem: Text {
            text: barButton.text
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            color: barButton.enabled ? Theme.text : Theme.textDim
            font.pixelSize: Theme.fontSmall
            font.bold: true
        }
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
            anchors.right: buttons.left
            anchors.leftMargin: Theme.margin
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            text: page.stale ? "Not connected" : list.count + " values"
            color: page.stale ? Theme.danger : Theme.textDim
            font.pixelSize: Theme.fontSmall
            font.bold: page.stale
            elide: Text.ElideRight
        }
        Row {
            id: buttons
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            spacing: 6
            BarButton {
                objectName: "recordButton"
                text: page.recording ? "Stop" : "Record"
                active: page.recording
                enabled: page.recording || (!page.stale && list.count > 0)
                onClicked: page.recordToggled()
            }
            BarButton {
                objectName: "openButton"
                text: "Open"
                onClicked: {
                    page.recordingsRequested()
                    page.picking = true
                }
            }
            BarButton {
                objectName: "unitButton"
                text: page.imperial ? "Imperial" : "Metric"
                onClicked: page.unitToggled()
            }
        }
    }

    Text {
        id: recordLine
        objectName: "recordText"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: bar.bottom
        leftPadding: Theme.margin
        rightPadding: Theme.margin
        height: text !== "" ? 30 : 0
        visible: text !== ""
        verticalAlignment: Text.AlignVCenter
        text: page.recordText
        color: page.recording ? Theme.danger : Theme.textDim
        font.pixelSize: Theme.fontSmall
        font.bold: page.recording
        elide: Text.ElideMiddle
    }

    ListView {
        id: list
        objectName: "liveDataList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: recordLine.bottom
        anchors.bottom: livePanel.visible ? livePanel.top : parent.bottom
        visible: !page.fileMode
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: typeof liveDataListModel !== "undefined" ? liveDataListModel : null
        onContentYChanged: page.reportRows()
        onHeightChanged: page.reportRows()
        onCountChanged: Qt.callLater(page.reportRows)
        Component.onCompleted: Qt.callLater(page.reportRows)

        delegate: ItemDelegate {
            id: row
            readonly property color chartColour: page.chartColour(index)
            width: ListView.view.width
            height: 64
            opacity: page.stale ? 0.45 : 1
            onClicked: page.chartRow(index)
            background: Rectangle { color: row.pressed ? Theme.pressed : "transparent" }
            // The chart's colour for a charted row.
            Rectangle {
                anchors.left: parent.left
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                anchors.margins: 8
                width: 5
                radius: 2
                color: row.chartColour
            }
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
                // A text (the monitor summary) gets more room, in a smaller size.
                width: Math.min(implicitWidth, parent.width * (model.numeric ? 0.5 : 0.6))
                horizontalAlignment: Text.AlignRight
                elide: model.numeric ? Text.ElideLeft : Text.ElideRight
                text: model.unit !== "" ? model.value + " " + model.unit : model.value
                color: page.stale ? Theme.textDim : Theme.text
                font.pixelSize: model.numeric ? Theme.fontLarge : Theme.fontNormal
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
        visible: list.count === 0 && !page.fileMode
        text: page.stale ? "Not connected: open the connection first." : "No values reported"
        color: Theme.textDim
        font.pixelSize: Theme.fontNormal
    }

    ChartPanel {
        id: livePanel
        objectName: "chartPanel"
        chartName: "valueChart"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        visible: !page.fileMode && (page.chartedRows.length > 0 || page.chartNotice !== "")
        hint: "Tap a row to add it or take it off: four at most"
        notice: page.chartNotice
        stale: page.stale
        onClosed: page.chartRow(-1)
    }

    // A recording opened again: its columns above, charted like live values.
    Rectangle {
        id: fileHeader
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: recordLine.bottom
        height: 52
        visible: page.fileMode
        color: Theme.surfaceRaised
        Text {
            objectName: "fileTitle"
            anchors.left: parent.left
            anchors.right: liveButton.left
            anchors.leftMargin: Theme.margin
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            text: page.fileTitle
            color: Theme.text
            font.pixelSize: Theme.fontSmall
            font.bold: true
            elide: Text.ElideMiddle
        }
        BarButton {
            id: liveButton
            objectName: "fileCloseButton"
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            text: "Live"
            onClicked: page.fileClosed()
        }
    }
    ListView {
        id: fileColumnList
        objectName: "fileColumnList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: fileHeader.bottom
        anchors.bottom: filePanel.top
        visible: page.fileMode
        clip: true
        model: page.fileColumns
        delegate: ItemDelegate {
            id: columnRow
            width: ListView.view.width
            height: 52
            onClicked: page.fileColumnToggled(index)
            background: Rectangle { color: columnRow.pressed ? Theme.pressed : "transparent" }
            Rectangle {
                anchors.left: parent.left
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                anchors.margins: 8
                width: 5
                radius: 2
                color: modelData.colour !== "" ? modelData.colour : "transparent"
            }
            Text {
                anchors.left: parent.left
                anchors.right: ecuText.left
                anchors.leftMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                text: modelData.name + (modelData.unit !== "" ? " (" + modelData.unit + ")" : "")
                color: Theme.text
                font.pixelSize: Theme.fontNormal
                elide: Text.ElideRight
            }
            Text {
                id: ecuText
                anchors.right: parent.right
                anchors.rightMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                text: modelData.ecu
                color: Theme.accent
                font.pixelSize: Theme.fontSmall
                font.bold: true
            }
        }
    }
    ChartPanel {
        id: filePanel
        objectName: "fileChartPanel"
        chartName: "fileChart"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        visible: page.fileMode
        hint: "Tap a column to add it or take it off: four at most"
        notice: page.fileNotice
        onClosed: page.fileClosed()
    }

    // The recordings to open, newest first.
    Rectangle {
        objectName: "recordingsPanel"
        anchors.fill: parent
        visible: page.picking
        color: Theme.background
        Text {
            id: pickTitle
            anchors.left: parent.left
            anchors.right: cancelButton.left
            anchors.leftMargin: Theme.margin
            anchors.top: parent.top
            height: 56
            verticalAlignment: Text.AlignVCenter
            text: page.recordings.length > 0 ? "Open a recording" : "No recordings yet"
            color: Theme.text
            font.pixelSize: Theme.fontNormal
            font.bold: true
        }
        BarButton {
            id: cancelButton
            objectName: "recordingsCancel"
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: pickTitle.verticalCenter
            text: "Cancel"
            onClicked: page.picking = false
        }
        ListView {
            objectName: "recordingsList"
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: pickTitle.bottom
            anchors.bottom: parent.bottom
            clip: true
            model: page.recordings
            delegate: ItemDelegate {
                id: fileRow
                width: ListView.view.width
                height: 56
                onClicked: {
                    page.picking = false
                    page.fileOpened(modelData)
                }
                background: Rectangle { color: fileRow.pressed ? Theme.pressed : "transparent" }
                Text {
                    anchors.left: parent.left
                    anchors.leftMargin: Theme.margin
                    anchors.verticalCenter: parent.verticalCenter
                    text: modelData
                    color: Theme.text
                    font.pixelSize: Theme.fontNormal
                }
            }
        }
    }
}
