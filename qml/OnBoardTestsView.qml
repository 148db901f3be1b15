import QtQuick
import QtQuick.Controls.Basic

// On-board tests: per control unit and monitor every test value against its
// limits, the failures first.
ZPage {
    id: page

    property int connectionStatus: 0
    property string summary
    property string readError
    readonly property bool stale: connectionStatus !== 2
    // Passed, failed, a plain value, not read.
    readonly property var stateColors: [Theme.ok, Theme.danger, Theme.text, Theme.danger]
    readonly property var verdicts: ["pass", "FAIL", "", ""]

    objectName: "onBoardTestsView"
    title: "On-board tests"

    Rectangle {
        id: bar
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: barColumn.implicitHeight + 28
        color: Theme.surface
        Column {
            id: barColumn
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.margins: Theme.margin
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4
            Text {
                objectName: "summaryText"
                width: parent.width
                wrapMode: Text.WordWrap
                text: page.stale ? "Not connected" : page.summary
                color: page.stale || page.summary.indexOf("failed") >= 0 || page.readError !== "" ? Theme.danger : Theme.accent
                font.pixelSize: Theme.fontNormal
                font.bold: true
            }
            Text {
                objectName: "readErrorText"
                width: parent.width
                visible: page.readError !== ""
                wrapMode: Text.WordWrap
                text: "could not read: " + page.readError
                color: page.stale ? Theme.textDim : Theme.danger
                font.pixelSize: Theme.fontSmall
            }
        }
    }

    ListView {
        id: list
        objectName: "testList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: bar.bottom
        anchors.bottom: parent.bottom
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: typeof onBoardTestsListModel !== "undefined" ? onBoardTestsListModel : null
        section.property: "section"
        section.delegate: Text {
            width: ListView.view.width
            leftPadding: Theme.margin
            rightPadding: Theme.margin
            topPadding: 14
            bottomPadding: 4
            wrapMode: Text.WordWrap
            text: section
            color: page.stale ? Theme.textDim : Theme.accent
            font.pixelSize: Theme.fontSmall
            font.bold: true
        }

        delegate: Item {
            readonly property bool unread: model.state === 3
            readonly property bool unitKnown: model.unit !== "" && model.unit !== "no unit known"
            readonly property string unitSuffix: unitKnown ? " " + model.unit : ""
            width: ListView.view.width
            height: Math.max(56, texts.implicitHeight + 16)
            opacity: page.stale ? 0.45 : 1
            Column {
                id: texts
                anchors.left: parent.left
                anchors.right: valueColumn.left
                anchors.leftMargin: Theme.margin
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                spacing: 2
                Text {
                    objectName: "titleText"
                    width: parent.width
                    wrapMode: Text.WordWrap
                    maximumLineCount: 2
                    elide: Text.ElideRight
                    text: model.title
                    color: page.stale ? Theme.textDim : Theme.text
                    font.pixelSize: Theme.fontNormal
                }
                Text {
                    objectName: "detailText"
                    width: parent.width
                    wrapMode: Text.WordWrap
                    visible: text !== ""
                    text: unread ? model.value
                        : [model.minimum !== "" || model.maximum !== ""
                               ? "limits " + (model.minimum !== "" ? model.minimum : "\u2013") + " .. "
                                 + (model.maximum !== "" ? model.maximum : "\u2013") + unitSuffix
                               : model.state === 2 ? "reference value" : "",
                           model.unit === "no unit known" ? "no unit known" : ""].filter(Boolean).join("  \u00b7  ")
                    color: page.stale ? Theme.textDim : unread ? Theme.danger : Theme.textDim
                    font.pixelSize: Theme.fontSmall
                }
            }
            Column {
                id: valueColumn
                anchors.right: parent.right
                anchors.rightMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                Text {
                    objectName: "valueText"
                    anchors.right: parent.right
                    visible: !unread
                    text: model.value + unitSuffix
                    color: page.stale ? Theme.textDim : page.stateColors[model.state]
                    font.pixelSize: Theme.fontNormal
                    font.bold: true
                }
                Text {
                    objectName: "verdictText"
                    anchors.right: parent.right
                    visible: text !== ""
                    text: page.verdicts[model.state]
                    color: page.stale ? Theme.textDim : page.stateColors[model.state]
                    font.pixelSize: Theme.fontSmall
                    font.bold: true
                }
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
        text: page.stale ? "Not connected: open the connection first."
            : page.summary !== "" ? page.summary : "Reading the test results..."
        color: Theme.textDim
        font.pixelSize: Theme.fontNormal
    }
}
