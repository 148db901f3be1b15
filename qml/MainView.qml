import QtQuick
import QtQuick.Controls.Basic

// The start screen: the four main functions and the connection button.
ZPage {
    id: page

    property string avatarImage
    property string buttonText: "Open connection"
    property string buttonIcon
    property bool buttonStatus: true
    property int connectionStatus: 0
    // A lost link is being opened again, with waits in between.
    property bool reconnecting: false
    // Open, but the vehicle behind the adapter has gone quiet.
    property bool vehicleResponding: true

    signal connectionButtonClicked()
    // While opening: give the opening up.
    signal cancelButtonClicked()
    signal settingsButtonClicked()
    signal aboutButtonClicked()
    signal liveDataButtonClicked()
    signal readinessButtonClicked()
    signal clicked(int index)

    title: "Zarvane"
    showBack: false

    readonly property var statusTexts: ["Not connected", "Connecting to the adapter...", "Connected"]
    readonly property var statusColors: [Theme.textDim, Theme.accent, Theme.ok]
    readonly property bool vehicleQuiet: connectionStatus === 2 && !vehicleResponding
    readonly property bool waiting: connectionStatus === 1 || reconnecting

    header: Rectangle {
        implicitHeight: 88
        color: Theme.surface

        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            height: 1
            color: Theme.divider
        }

        Image {
            id: avatar
            anchors.left: parent.left
            anchors.leftMargin: Theme.margin
            anchors.verticalCenter: parent.verticalCenter
            width: 56
            height: 56
            sourceSize.width: 112
            sourceSize.height: 112
            source: page.avatarImage
        }

        Column {
            anchors.left: avatar.right
            anchors.leftMargin: 12
            anchors.right: tools.left
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2
            Text {
                text: page.title
                color: Theme.text
                font.pixelSize: Theme.fontTitle
                font.bold: true
            }
            Row {
                spacing: 6
                Rectangle {
                    width: 10
                    height: 10
                    radius: 5
                    anchors.verticalCenter: parent.verticalCenter
                    color: page.reconnecting ? Theme.accent : page.vehicleQuiet ? Theme.danger
                         : page.statusColors[page.connectionStatus] || Theme.textDim
                }
                Text {
                    objectName: "statusText"
                    text: page.reconnecting ? "Reconnecting..." : page.vehicleQuiet ? "Vehicle not responding"
                        : page.statusTexts[page.connectionStatus] || ""
                    color: Theme.textDim
                    font.pixelSize: Theme.fontSmall
                }
            }
        }

        Row {
            id: tools
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            spacing: 2

            ToolButton {
                id: readinessButton
                objectName: "readinessButton"
                width: 52
                height: 52
                onClicked: page.readinessButtonClicked()
                contentItem: Image {
                    source: "qrc:///readiness.png"
                    sourceSize.width: 64
                    sourceSize.height: 64
                    fillMode: Image.PreserveAspectFit
                }
                background: Rectangle {
                    radius: width / 2
                    color: readinessButton.pressed ? Theme.pressed : "transparent"
                }
            }
            ToolButton {
                id: liveDataButton
                objectName: "liveDataButton"
                width: 52
                height: 52
                onClicked: page.liveDataButtonClicked()
                contentItem: Image {
                    source: "qrc:///livedata.png"
                    sourceSize.width: 64
                    sourceSize.height: 64
                    fillMode: Image.PreserveAspectFit
                }
                background: Rectangle {
                    radius: width / 2
                    color: liveDataButton.pressed ? Theme.pressed : "transparent"
                }
            }
            ToolButton {
                id: settingsButton
                objectName: "settingsButton"
                width: 52
                height: 52
                onClicked: page.settingsButtonClicked()
                contentItem: Image {
                    source: "qrc:///settings.png"
                    sourceSize.width: 64
                    sourceSize.height: 64
                    fillMode: Image.PreserveAspectFit
                    anchors.margins: 10
                }
                background: Rectangle {
                    radius: width / 2
                    color: settingsButton.pressed ? Theme.pressed : "transparent"
                }
            }
            ToolButton {
                id: aboutButton
                objectName: "aboutButton"
                width: 52
                height: 52
                onClicked: page.aboutButtonClicked()
                contentItem: Image {
                    source: "qrc:///about.png"
                    sourceSize.width: 64
                    sourceSize.height: 64
                    fillMode: Image.PreserveAspectFit
                }
                background: Rectangle {
                    radius: width / 2
                    color: aboutButton.pressed ? Theme.pressed : "transparent"
                }
            }
        }
    }

    ListView {
        id: list
        objectName: "mainList"
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: connectionPanel.top
        anchors.topMargin: 8
        clip: true
        interactive: contentHeight > height
        model: typeof mainViewDataModel !== "undefined" ? mainViewDataModel : null

        delegate: ItemDelegate {
            id: row
            width: ListView.view.width
            height: Theme.rowHeight
            onClicked: page.clicked(index)

            background: Rectangle {
                color: row.pressed ? Theme.pressed : "transparent"
                Rectangle {
                    anchors.left: parent.left
                    anchors.right: parent.right
                    anchors.bottom: parent.bottom
                    anchors.leftMargin: 96
                    height: 1
                    color: Theme.divider
                }
            }

            contentItem: Item {
                Image {
                    id: rowImage
                    anchors.left: parent.left
                    anchors.leftMargin: 4
                    anchors.verticalCenter: parent.verticalCenter
                    width: 60
                    height: 60
                    sourceSize.width: 120
                    sourceSize.height: 120
                    source: model.image
                }
                Column {
                    anchors.left: rowImage.right
                    anchors.leftMargin: Theme.margin
                    anchors.right: chevron.left
                    anchors.rightMargin: 8
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: 4
                    Text {
                        width: parent.width
                        text: model.title
                        color: Theme.text
                        font.pixelSize: Theme.fontLarge
                        font.bold: true
                        elide: Text.ElideRight
                    }
                    Text {
                        width: parent.width
                        text: model.subtitle
                        color: Theme.textDim
                        font.pixelSize: Theme.fontSmall
                        elide: Text.ElideRight
                    }
                }
                Text {
                    id: chevron
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    text: "\u203A"
                    color: Theme.textDim
                    font.pixelSize: 34
                }
            }
        }
    }

    Rectangle {
        id: connectionPanel
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 132
        color: Theme.surface

        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            height: 1
            color: Theme.divider
        }

        Row {
            id: busyRow
            anchors.top: parent.top
            anchors.topMargin: 10
            anchors.horizontalCenter: parent.horizontalCenter
            height: 36
            spacing: 10
            BusyIndicator {
                id: busy
                objectName: "busyIndicator"
                width: 36
                height: 36
                running: page.waiting
                visible: running
                palette.dark: Theme.accent
            }
            Text {
                objectName: "panelText"
                anchors.verticalCenter: parent.verticalCenter
                text: page.reconnecting ? "Link lost. Reconnecting..."
                    : page.connectionStatus === 1 ? "Opening the connection, please wait..."
                    : page.vehicleQuiet ? "Vehicle not responding, still trying..."
                    : page.connectionStatus === 2 ? "Adapter and vehicle are ready"
                    : "Tap below to connect to the adapter"
                color: page.waiting ? Theme.accent : page.vehicleQuiet ? Theme.danger : Theme.textDim
                font.pixelSize: Theme.fontSmall
            }
        }

        Button {
            id: connectionButton
            objectName: "connectionButton"
            anchors.left: parent.left
            anchors.right: cancelButton.visible ? cancelButton.left : parent.right
            anchors.rightMargin: cancelButton.visible ? 12 : Theme.margin
            anchors.bottom: parent.bottom
            anchors.margins: Theme.margin
            height: 64
            enabled: page.buttonStatus
            onClicked: page.connectionButtonClicked()

            background: Rectangle {
                radius: Theme.radius
                color: !connectionButton.enabled ? Theme.surfaceRaised
                     : page.connectionStatus === 2 ? (connectionButton.pressed ? Theme.pressed : Theme.surfaceRaised)
                     : (connectionButton.pressed ? Qt.darker(Theme.accent, 1.2) : Theme.accent)
                border.color: page.connectionStatus === 2 ? Theme.ok : "transparent"
                border.width: 2
            }
            contentItem: Item {
                Row {
                    anchors.centerIn: parent
                    spacing: 12
                    Image {
                        anchors.verticalCenter: parent.verticalCenter
                        width: 32
                        height: 32
                        sourceSize.width: 64
                        sourceSize.height: 64
                        source: page.buttonIcon
                        visible: page.buttonIcon !== ""
                        opacity: connectionButton.enabled ? 1 : 0.4
                    }
                    Text {
                        anchors.verticalCenter: parent.verticalCenter
                        text: page.buttonText
                        font.pixelSize: Theme.fontLarge
                        font.bold: true
                        color: !connectionButton.enabled ? Theme.textDim
                             : page.connectionStatus === 2 ? Theme.text : Theme.accentText
                    }
                }
            }
        }

        Button {
            id: cancelButton
            objectName: "cancelButton"
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.margins: Theme.margin
            width: 132
            height: 64
            visible: page.waiting
            text: "Cancel"
            onClicked: page.cancelButtonClicked()

            background: Rectangle {
                radius: Theme.radius
                color: cancelButton.pressed ? Theme.pressed : Theme.surfaceRaised
                border.color: Theme.danger
                border.width: 2
            }
            contentItem: Text {
                text: cancelButton.text
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                font.pixelSize: Theme.fontLarge
                font.bold: true
                color: Theme.text
            }
        }
    }
}
