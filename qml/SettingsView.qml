import QtQuick
import QtQuick.Controls.Basic

// Connection settings: how the adapter is reached, where it is and whether
// it may be reset; the units every screen shows and the dashboard's gauges.
ZPage {
    id: page

    property string connectionMethodText: "bluetooth"
    property string bluetoothDevice: "None"
    property string bluetoothAddress: "00:00:00:00:00:00"
    property string ipAddress: "0.0.0.0"
    property string ipPort: "0"
    property string ipAddressError
    property string ipPortError
    property string serialDevice
    property string serialBaudRate: "38400"
    property string serialDeviceError
    property string serialBaudRateError
    property string unitSystemText: "metric"
    property bool noReset: false
    // Each {pid, text}; the two gauges' PIDs.
    property var gaugeChoices: []
    property int firstGaugePid: 12
    property int secondGaugePid: 13

    signal connectionMethodChanged(string method)
    // ipAddress and ipPort already own the ...Changed() signal names.
    signal ipAddressEdited(string address)
    signal ipPortEdited(string port)
    signal searchBluetoothDevices()
    signal serialDeviceEdited(string device)
    signal serialBaudRateEdited(string rate)
    signal unitSystemChanged(string units)
    signal noResetToggled(bool noReset)
    signal gaugeChosen(int gauge, int pid)

    title: "Settings"

    readonly property bool bluetooth: connectionMethodText === "bluetooth"
    readonly property bool serial: connectionMethodText === "serial"

    component SectionLabel: Text {
        color: Theme.accent
        font.pixelSize: Theme.fontSmall
        font.bold: true
        font.capitalization: Font.AllUppercase
        font.letterSpacing: 1
    }

    component FieldLabel: Text {
        color: Theme.textDim
        font.pixelSize: Theme.fontSmall
    }

    component MethodButton: Button {
        id: methodButton
        property bool selected
        checkable: false
        height: 52
        background: Rectangle {
            radius: Theme.radius
            color: methodButton.selected ? Theme.accent
                 : methodButton.pressed ? Theme.pressed : Theme.surfaceRaised
            border.color: methodButton.selected ? Theme.accent : Theme.divider
        }
        contentItem: Text {
            text: methodButton.text
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            font.pixelSize: Theme.fontNormal
            font.bold: true
            color: methodButton.selected ? Theme.accentText : Theme.text
        }
    }

    component Field: TextField {
        id: field
        property bool invalid
        height: 52
        color: Theme.text
        placeholderTextColor: Theme.textDim
        selectionColor: Theme.accent
        selectedTextColor: Theme.accentText
        font.pixelSize: Theme.fontNormal
        leftPadding: 14
        background: Rectangle {
            radius: Theme.radius
            color: Theme.surfaceRaised
            border.width: field.activeFocus || field.invalid ? 2 : 1
            border.color: field.invalid ? Theme.danger : field.activeFocus ? Theme.accent : Theme.divider
        }
    }

    component GaugeChoice: ComboBox {
        id: choice
        property int gauge
        property int pid
        width: parent.width
        height: 52
        model: page.gaugeChoices
        textRole: "text"
        valueRole: "pid"
        // Set, not bound: a choice of the user's replaces any binding, and a
        // new model resets the index after its change handlers ran.
        function showPid() {
            const choices = page.gaugeChoices
            currentIndex = choices.findIndex(c => c.pid === pid)
        }
        onPidChanged: Qt.callLater(showPid)
        onModelChanged: Qt.callLater(showPid)
        onActivated: page.gaugeChosen(gauge, currentValue)
        font.pixelSize: Theme.fontNormal
        background: Rectangle {
            radius: Theme.radius
            color: choice.pressed ? Theme.pressed : Theme.surfaceRaised
            border.color: Theme.divider
        }
        contentItem: Text {
            leftPadding: 14
            text: choice.displayText
            color: Theme.text
            font.pixelSize: Theme.fontNormal
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
    }

    Flickable {
        objectName: "settingsForm"
        anchors.fill: parent
        contentHeight: form.implicitHeight + 2 * Theme.margin
        clip: true

        Column {
            id: form
            x: Theme.margin
            y: Theme.margin
            width: parent.width - 2 * Theme.margin
            spacing: 12

            SectionLabel { text: "Connection method" }

            Row {
                width: parent.width
                spacing: 12
                MethodButton {
                    objectName: "bluetoothButton"
                    width: (parent.width - 2 * parent.spacing) / 3
                    text: "Bluetooth"
                    selected: page.bluetooth
                    onClicked: page.connectionMethodChanged("bluetooth")
                }
                MethodButton {
                    objectName: "wifiButton"
                    width: (parent.width - 2 * parent.spacing) / 3
                    text: "Wi-Fi"
                    selected: page.connectionMethodText === "wifi"
                    onClicked: page.connectionMethodChanged("wifi")
                }
                MethodButton {
                    objectName: "serialButton"
                    width: (parent.width - 2 * parent.spacing) / 3
                    text: "Serial"
                    selected: page.serial
                    onClicked: page.connectionMethodChanged("serial")
                }
            }

            Item { width: 1; height: 8 }

            Column {
                width: parent.width
                spacing: 12
                visible: page.bluetooth

                SectionLabel { text: "Bluetooth adapter" }

                Rectangle {
                    width: parent.width
                    height: 76
                    radius: Theme.radius
                    color: Theme.surface
                    border.color: Theme.divider
                    Column {
                        anchors.left: parent.left
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        anchors.leftMargin: 14
                        spacing: 4
                        Text {
                            objectName: "bluetoothDeviceText"
                            text: page.bluetoothDevice === "None" ? "No device chosen" : page.bluetoothDevice
                            color: Theme.text
                            font.pixelSize: Theme.fontNormal
                            font.bold: true
                        }
                        Text {
                            text: page.bluetoothAddress
                            color: Theme.textDim
                            font.pixelSize: Theme.fontSmall
                            font.family: "monospace"
                        }
                    }
                }

                Button {
                    id: searchButton
                    objectName: "searchButton"
                    width: parent.width
                    height: 52
                    text: "Search for devices"
                    onClicked: page.searchBluetoothDevices()
                    background: Rectangle {
                        radius: Theme.radius
                        color: searchButton.pressed ? Theme.pressed : Theme.surfaceRaised
                        border.color: Theme.accent
                    }
                    contentItem: Text {
                        text: searchButton.text
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                        color: Theme.accent
                        font.pixelSize: Theme.fontNormal
                        font.bold: true
                    }
                }
            }

            Column {
                width: parent.width
                spacing: 8
                visible: !page.bluetooth && !page.serial

                SectionLabel { text: "Wi-Fi adapter" }

                FieldLabel { text: "IP address or host name" }
                Field {
                    id: ipField
                    objectName: "ipAddressField"
                    width: parent.width
                    // The never-set marker shows as an empty field with a hint.
                    readonly property string shown: page.ipAddress === "0.0.0.0" ? "" : page.ipAddress
                    text: shown
                    invalid: page.ipAddressError !== ""
                    placeholderText: "192.168.0.10"
                    inputMethodHints: Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText
                    onEditingFinished: if (text !== shown) page.ipAddressEdited(text)
                }
                Text {
                    objectName: "ipAddressErrorText"
                    width: parent.width
                    visible: page.ipAddressError !== ""
                    text: page.ipAddressError
                    color: Theme.danger
                    font.pixelSize: Theme.fontSmall
                    wrapMode: Text.WordWrap
                }

                Item { width: 1; height: 4 }

                FieldLabel { text: "Port" }
                Field {
                    id: portField
                    objectName: "ipPortField"
                    width: parent.width
                    readonly property string shown: page.ipPort === "0" ? "" : page.ipPort
                    text: shown
                    invalid: page.ipPortError !== ""
                    placeholderText: "35000"
                    inputMethodHints: Qt.ImhDigitsOnly
                    onEditingFinished: if (text !== shown) page.ipPortEdited(text)
                }
                Text {
                    objectName: "ipPortErrorText"
                    width: parent.width
                    visible: page.ipPortError !== ""
                    text: page.ipPortError
                    color: Theme.danger
                    font.pixelSize: Theme.fontSmall
                    wrapMode: Text.WordWrap
                }
            }

            Column {
                width: parent.width
                spacing: 8
                visible: page.serial

                SectionLabel { text: "Serial adapter" }

                FieldLabel { text: "Device" }
                Field {
                    objectName: "serialDeviceField"
                    width: parent.width
                    text: page.serialDevice
                    invalid: page.serialDeviceError !== ""
                    placeholderText: "/dev/ttyUSB0"
                    inputMethodHints: Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText
                    onEditingFinished: if (text !== page.serialDevice) page.serialDeviceEdited(text)
                }
                Text {
                    objectName: "serialDeviceErrorText"
                    width: parent.width
                    visible: page.serialDeviceError !== ""
                    text: page.serialDeviceError
                    color: Theme.danger
                    font.pixelSize: Theme.fontSmall
                    wrapMode: Text.WordWrap
                }

                Item { width: 1; height: 4 }

                FieldLabel { text: "Baud rate (a number, or auto)" }
                Field {
                    objectName: "serialBaudRateField"
                    width: parent.width
                    text: page.serialBaudRate
                    invalid: page.serialBaudRateError !== ""
                    placeholderText: "38400"
                    inputMethodHints: Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText
                    onEditingFinished: if (text !== page.serialBaudRate) page.serialBaudRateEdited(text)
                }
                Text {
                    objectName: "serialBaudRateErrorText"
                    width: parent.width
                    visible: page.serialBaudRateError !== ""
                    text: page.serialBaudRateError
                    color: Theme.danger
                    font.pixelSize: Theme.fontSmall
                    wrapMode: Text.WordWrap
                }
            }

            Item { width: 1; height: 8 }

            Text {
                width: parent.width
                wrapMode: Text.WordWrap
                color: Theme.textDim
                font.pixelSize: Theme.fontSmall
                text: page.bluetooth
                      ? "Pair the adapter with this device first, then choose it from the search."
                      : page.serial
                      ? "Plug the adapter in, or bind a Bluetooth one to /dev/rfcomm0. Most adapters talk at 38400 baud; auto tries the usual rates."
                      : "Join the adapter's Wi-Fi network first. Most adapters listen on 192.168.0.10, port 35000."
            }

            Item { width: 1; height: 8 }

            SectionLabel { text: "Units" }

            Row {
                width: parent.width
                spacing: 12
                MethodButton {
                    objectName: "metricButton"
                    width: (parent.width - parent.spacing) / 2
                    text: "Metric"
                    selected: page.unitSystemText === "metric"
                    onClicked: page.unitSystemChanged("metric")
                }
                MethodButton {
                    objectName: "imperialButton"
                    width: (parent.width - parent.spacing) / 2
                    text: "Imperial"
                    selected: page.unitSystemText === "imperial"
                    onClicked: page.unitSystemChanged("imperial")
                }
            }

            Item { width: 1; height: 8 }

            SectionLabel { text: "Dashboard gauges" }
            FieldLabel { text: "Upper gauge" }
            GaugeChoice {
                objectName: "firstGaugeChoice"
                gauge: 0
                pid: page.firstGaugePid
            }
            FieldLabel { text: "Lower gauge" }
            GaugeChoice {
                objectName: "secondGaugeChoice"
                gauge: 1
                pid: page.secondGaugePid
            }

            Item { width: 1; height: 8 }

            SectionLabel { text: "Adapter" }
            Switch {
                id: noResetSwitch
                objectName: "noResetSwitch"
                width: parent.width
                text: "Do not reset the adapter"
                checked: page.noReset
                onToggled: page.noResetToggled(checked)
                contentItem: Text {
                    leftPadding: noResetSwitch.indicator.width + 12
                    text: noResetSwitch.text
                    color: Theme.text
                    font.pixelSize: Theme.fontNormal
                    verticalAlignment: Text.AlignVCenter
                }
            }
            FieldLabel {
                width: parent.width
                wrapMode: Text.WordWrap
                text: "For adapters that drop the link when reset: the connection opens with a warm start."
            }
        }
    }
}
