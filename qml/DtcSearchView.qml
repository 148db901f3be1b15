import QtQuick
import QtQuick.Controls.Basic

// Searching the database: a text and the field it is looked for in.
ZPage {
    id: page

    property int listModelCount: 0
    property int filteredCount: 0
    property int currentField: 0

    signal filterChanged(string filter)
    signal fieldChanged(int field)
    signal viewShown()

    objectName: "dtcSearchView"
    title: "Search Codes"

    readonly property var fieldNames: ["Code", "Description", "Category"]

    StackView.onActivated: page.viewShown()

    component FieldButton: Button {
        id: fieldButton
        property int field
        readonly property bool selected: page.currentField === field
        width: (fieldRow.width - 2 * fieldRow.spacing) / 3
        height: 44
        onClicked: {
            page.currentField = field
            page.fieldChanged(field)
        }
        background: Rectangle {
            radius: height / 2
            color: fieldButton.selected ? Theme.accent
                 : fieldButton.pressed ? Theme.pressed : Theme.surfaceRaised
            border.color: fieldButton.selected ? Theme.accent : Theme.divider
        }
        contentItem: Text {
            text: page.fieldNames[fieldButton.field]
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            font.pixelSize: Theme.fontSmall
            font.bold: true
            color: fieldButton.selected ? Theme.accentText : Theme.text
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

            TextField {
                id: searchField
                objectName: "searchField"
                width: parent.width
                height: 52
                placeholderText: "Search in " + page.fieldNames[page.currentField].toLowerCase() + "..."
                color: Theme.text
                placeholderTextColor: Theme.textDim
                selectionColor: Theme.accent
                selectedTextColor: Theme.accentText
                font.pixelSize: Theme.fontNormal
                leftPadding: 14
                inputMethodHints: Qt.ImhNoPredictiveText
                onTextChanged: page.filterChanged(text)
                background: Rectangle {
                    radius: Theme.radius
                    color: Theme.surfaceRaised
                    border.width: searchField.activeFocus ? 2 : 1
                    border.color: searchField.activeFocus ? Theme.accent : Theme.divider
                }
            }

            Row {
                id: fieldRow
                width: parent.width
                spacing: 8
                FieldButton { objectName: "fieldButton0"; field: 0 }
                FieldButton { objectName: "fieldButton1"; field: 1 }
                FieldButton { objectName: "fieldButton2"; field: 2 }
            }

            Text {
                objectName: "countText"
                text: page.filteredCount + " of " + page.listModelCount + " codes"
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
        emptyText: "No matching codes"
        model: typeof dtcSearchListModel !== "undefined" ? dtcSearchListModel : null
    }
}
