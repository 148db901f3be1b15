import QtQuick
import QtQuick.Controls.Basic

// The application's button: amber when it is the main action.
Button {
    id: button

    property bool primary: true

    implicitHeight: 52
    implicitWidth: Math.max(112, label.implicitWidth + 40)

    background: Rectangle {
        radius: Theme.radius
        color: !button.enabled ? Theme.surfaceRaised
             : button.primary ? (button.pressed ? Qt.darker(Theme.accent, 1.2) : Theme.accent)
             : (button.pressed ? Theme.pressed : Theme.surfaceRaised)
        border.color: button.primary ? "transparent" : Theme.divider
    }
    contentItem: Text {
        id: label
        text: button.text
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        font.pixelSize: Theme.fontNormal
        font.bold: true
        color: !button.enabled ? Theme.textDim : button.primary ? Theme.accentText : Theme.text
    }
}
