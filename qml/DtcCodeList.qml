import QtQuick
import QtQuick.Controls.Basic

// A list of trouble codes under an explanatory note; says so when empty.
// Lists read from a car are tappable: a code opens its detail.
Item {
    id: box

    property bool tappable: false
    signal codeClicked(int index)

    property string explanation
    property string emptyText
    property alias model: list.model
    readonly property alias list: list

    Rectangle {
        id: note
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: noteText.implicitHeight + 28
        color: Theme.surface
        visible: box.explanation !== ""
        Rectangle {
            anchors.left: parent.left
            anchors.top: parent.top
            anchors.bottom: parent.bottom
            width: 4
            color: Theme.accent
        }
        Text {
            id: noteText
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            anchors.leftMargin: Theme.margin + 4
            anchors.rightMargin: Theme.margin
            text: box.explanation
            color: Theme.textDim
            font.pixelSize: Theme.fontSmall
            wrapMode: Text.WordWrap
        }
    }

    ListView {
        id: list
        objectName: "codeList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: note.visible ? note.bottom : parent.top
        anchors.bottom: parent.bottom
        clip: true
        reuseItems: true
        cacheBuffer: 840
        boundsBehavior: Flickable.StopAtBounds
        delegate: DtcDelegate {
            width: ListView.view.width
            code: model.code
            description: model.description
            system: model.system
            // Lists read from a car say which ECU reported each code.
            ecu: model.ecu !== undefined && model.ecu !== "" ? model.ecu + " " + model.ecuAddress : ""
            tappable: box.tappable
            onClicked: box.codeClicked(index)
        }
        ScrollBar.vertical: ScrollBar {
            policy: list.contentHeight > list.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
        }
    }

    Text {
        objectName: "emptyText"
        anchors.centerIn: list
        visible: list.count === 0 && box.emptyText !== ""
        text: box.emptyText
        color: Theme.textDim
        font.pixelSize: Theme.fontNormal
    }
}
