import QtQuick
import QtQuick.Controls.Basic

// Vehicle information: the VIN and what its positions say, then per control
// unit its name, calibrations and in-use performance ratios.
ZPage {
    id: page

    property int connectionStatus: 0
    property bool busy: false
    property string vin
    property string modelYear
    property string region
    property string readError
    readonly property bool stale: connectionStatus !== 2

    objectName: "vehicleInfoView"
    title: "Vehicle information"

    Rectangle {
        id: card
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: cardColumn.implicitHeight + 28
        color: Theme.surface
        opacity: page.stale ? 0.6 : 1
        Column {
            id: cardColumn
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.margins: Theme.margin
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4
            Text {
                objectName: "statusText"
                visible: page.stale || page.busy
                text: page.stale ? "Not connected" : "Reading the vehicle information..."
                color: page.stale ? Theme.danger : Theme.textDim
                font.pixelSize: Theme.fontNormal
                font.bold: true
            }
            Text {
                objectName: "vinText"
                width: parent.width
                wrapMode: Text.WrapAnywhere
                text: page.vin !== "" ? page.vin : page.busy ? "" : "No VIN reported"
                color: page.stale ? Theme.textDim : Theme.text
                font.pixelSize: Theme.fontLarge
                font.bold: true
                font.letterSpacing: 1
            }
            Text {
                objectName: "vinFieldsText"
                visible: page.vin !== ""
                text: "Model year " + page.modelYear + "  \u00b7  " + page.region
                color: page.stale ? Theme.textDim : Theme.accent
                font.pixelSize: Theme.fontNormal
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
        objectName: "infoList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: card.bottom
        anchors.bottom: parent.bottom
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: typeof vehicleInfoListModel !== "undefined" ? vehicleInfoListModel : null
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
            readonly property bool unread: model.state === 3
            width: ListView.view.width
            height: Math.max(48, texts.implicitHeight + 16)
            opacity: page.stale ? 0.45 : 1
            Column {
                id: texts
                anchors.left: parent.left
                anchors.right: valueText.left
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
                    visible: unread
                    wrapMode: Text.WordWrap
                    text: unread ? model.value : ""
                    color: page.stale ? Theme.textDim : Theme.danger
                    font.pixelSize: Theme.fontSmall
                }
            }
            Text {
                id: valueText
                objectName: "valueText"
                anchors.right: parent.right
                anchors.rightMargin: Theme.margin
                anchors.verticalCenter: parent.verticalCenter
                visible: !unread
                text: unread ? "" : model.value
                color: page.stale ? Theme.textDim : Theme.text
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
        visible: list.count === 0 && (page.stale || !page.busy)
        text: page.stale ? "Not connected: open the connection first." : "No control unit reports vehicle information"
        color: Theme.textDim
        font.pixelSize: Theme.fontNormal
    }
}
