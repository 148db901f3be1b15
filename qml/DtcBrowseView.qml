import QtQuick
import QtQuick.Controls.Basic

// Browsing the database by category.
ZPage {
    id: page

    property int listModelCount: 0
    property int filteredCount: 0
    property bool bodyChecked: true
    property bool chassisChecked: true
    property bool powertrainChecked: true
    property bool undefinedChecked: true

    signal bodyChanged(bool checked)
    signal chassisChanged(bool checked)
    signal powertrainChanged(bool checked)
    signal undefinedChanged(bool checked)
    signal viewShown()

    objectName: "dtcBrowseView"
    title: "Browse Codes"

    StackView.onActivated: page.viewShown()

    component CategoryToggle: Button {
        id: toggle
        property bool on: true
        property color tint: Theme.accent
        signal toggled(bool checked)
        height: 44
        onClicked: toggle.toggled(!toggle.on)
        background: Rectangle {
            radius: height / 2
            color: toggle.on ? Qt.rgba(toggle.tint.r, toggle.tint.g, toggle.tint.b, 0.2)
                 : toggle.pressed ? Theme.pressed : Theme.surfaceRaised
            border.width: toggle.on ? 2 : 1
            border.color: toggle.on ? toggle.tint : Theme.divider
        }
        contentItem: Text {
            text: toggle.text
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            font.pixelSize: Theme.fontSmall
            font.bold: true
            color: toggle.on ? toggle.tint : Theme.textDim
        }
    }

    Rectangle {
        id: controls
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        height: column.implicitHeight + 2 * 12
        color: Theme.surface

        Column {
            id: column
            x: Theme.margin
            y: 12
            width: parent.width - 2 * Theme.margin
            spacing: 10

            Grid {
                id: toggles
                width: parent.width
                columns: 2
                spacing: 8
                readonly property real cell: (width - spacing) / 2
                CategoryToggle {
                    objectName: "powertrainToggle"
                    width: toggles.cell
                    text: "Powertrain"
                    tint: Theme.accent
                    on: page.powertrainChecked
                    onToggled: checked => { page.powertrainChecked = checked; page.powertrainChanged(checked) }
                }
                CategoryToggle {
                    objectName: "bodyToggle"
                    width: toggles.cell
                    text: "Body"
                    tint: "#5fb3f0"
                    on: page.bodyChecked
                    onToggled: checked => { page.bodyChecked = checked; page.bodyChanged(checked) }
                }
                CategoryToggle {
                    objectName: "chassisToggle"
                    width: toggles.cell
                    text: "Chassis"
                    tint: "#9ccc65"
                    on: page.chassisChecked
                    onToggled: checked => { page.chassisChecked = checked; page.chassisChanged(checked) }
                }
                CategoryToggle {
                    objectName: "undefinedToggle"
                    width: toggles.cell
                    text: "Network"
                    tint: "#ba8cf0"
                    on: page.undefinedChecked
                    onToggled: checked => { page.undefinedChecked = checked; page.undefinedChanged(checked) }
                }
            }

            Text {
                objectName: "countText"
                text: page.filteredCount + " codes listed"
                color: Theme.textDim
                font.pixelSize: Theme.fontSmall
            }
        }
        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            height: 1
            color: Theme.divider
        }
    }

    DtcCodeList {
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: controls.bottom
        anchors.bottom: parent.bottom
        emptyText: "Choose at least one category"
        model: typeof dtcBrowseListModel !== "undefined" ? dtcBrowseListModel : null
    }
}
