import QtQuick

// One trouble code in a list: the code in a category-coloured tag, its
// category and description, and the ECU that reported it when the list was
// read from a car. Fixed height, so long lists scroll evenly. A tappable
// row opens the code's detail.
Rectangle {
    id: row

    property string code
    property string description
    property string system
    property string ecu
    property bool tappable: false

    signal clicked()

    readonly property color tagColor: system === "Powertrain" ? Theme.accent
        : system === "Body" ? "#5fb3f0"
        : system === "Chassis" ? "#9ccc65"
        : system === "Network" ? "#ba8cf0" : Theme.textDim

    height: 84
    color: tapArea.pressed ? Theme.pressed : "transparent"

    MouseArea {
        id: tapArea
        anchors.fill: parent
        enabled: row.tappable
        onClicked: row.clicked()
    }

    Rectangle {
        id: tag
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.top: parent.top
        anchors.topMargin: 14
        width: 86
        height: 30
        radius: 6
        color: Qt.rgba(row.tagColor.r, row.tagColor.g, row.tagColor.b, 0.16)
        border.color: row.tagColor
        Text {
            anchors.centerIn: parent
            text: row.code
            color: row.tagColor
            font.pixelSize: Theme.fontNormal
            font.bold: true
            font.family: "monospace"
        }
    }
    Text {
        anchors.left: parent.left
        anchors.leftMargin: Theme.margin
        anchors.top: tag.bottom
        anchors.topMargin: 6
        width: 86
        horizontalAlignment: Text.AlignHCenter
        text: row.system
        color: Theme.textDim
        font.pixelSize: 12
        elide: Text.ElideRight
    }
    Text {
        anchors.left: tag.right
        anchors.leftMargin: 14
        anchors.right: parent.right
        anchors.rightMargin: row.tappable ? Theme.margin + 18 : Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        text: row.description
        color: Theme.text
        font.pixelSize: Theme.fontNormal
        wrapMode: Text.WordWrap
        maximumLineCount: row.ecu === "" ? 3 : 2
        elide: Text.ElideRight
    }
    Text {
        objectName: "ecuText"
        visible: row.ecu !== ""
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 6
        text: row.ecu
        color: Theme.textDim
        font.pixelSize: 12
    }
    // A chevron: the row leads on.
    Item {
        visible: row.tappable
        anchors.right: parent.right
        anchors.rightMargin: Theme.margin
        anchors.verticalCenter: parent.verticalCenter
        width: 10
        height: 16
        Repeater {
            model: [45, -45]
            Rectangle {
                y: index === 0 ? 4 : 10
                width: 10
                height: 2
                radius: 1
                rotation: modelData
                color: Theme.textDim
            }
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
