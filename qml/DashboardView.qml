import QtQuick
import QtQuick.Controls.Basic
import org.quillot.zarvane 1.0

// The dashboard: two gauges (engine speed and vehicle speed on round meters
// unless the settings chose other values) and the fuel-consumption estimate.
// Stale values are greyed, and the screen says when the link is gone.
ZPage {
    id: page

    property int connectionStatus: 0
    readonly property bool stale: connectionStatus !== 2
    // The readout follows the unit setting; the dials are printed in rpm and km/h.
    property bool imperial: false

    objectName: "dashboardView"
    title: "Dashboard"

    readonly property real meterSize: Math.min(area.width - 2 * Theme.margin,
                                               (area.height - consumptionPanel.height - 3 * 8) / 2)

    // One gauge, filled by the view model: a printed dial for engine and
    // vehicle speed, otherwise the value with its unit over a bar spanning
    // the PID's range.
    component Gauge: Item {
        id: gauge
        property string meterName
        property string textName
        property int pid: 0
        property string dial: ""
        property string title: ""
        property string unit: ""
        property real minimum: 0
        property real maximum: 100
        property real value: 0
        property string readout: ""
        property bool fresh: false
        readonly property bool greyed: page.stale || !fresh
        readonly property real share: maximum > minimum
                                      ? Math.max(0, Math.min(1, (value - minimum) / (maximum - minimum))) : 0

        width: page.meterSize
        height: page.meterSize

        MeterGauge {
            id: meter
            objectName: gauge.meterName
            anchors.fill: parent
            visible: gauge.dial !== ""
            minimum: gauge.minimum
            maximum: gauge.maximum
            startAngle: -135
            endAngle: 135
            background: gauge.dial
            greyed: gauge.greyed
        }
        Rectangle {
            objectName: gauge.objectName + "Panel"
            anchors.fill: parent
            anchors.margins: parent.width * 0.06
            visible: gauge.dial === ""
            radius: Theme.radius
            color: Theme.surface
            border.color: Theme.divider
            opacity: gauge.greyed ? 0.45 : 1
            Text {
                anchors.top: parent.top
                anchors.topMargin: parent.height * 0.1
                anchors.horizontalCenter: parent.horizontalCenter
                width: parent.width - 2 * Theme.margin
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.Wrap
                text: gauge.title
                color: gauge.greyed ? Theme.textDim : Theme.accent
                font.pixelSize: Theme.fontNormal
                font.bold: true
            }
            Rectangle {
                id: bar
                anchors.left: parent.left
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                anchors.margins: Theme.margin
                anchors.bottomMargin: parent.height * 0.18
                height: 14
                radius: 7
                color: Theme.surfaceRaised
                Rectangle {
                    objectName: gauge.objectName + "Bar"
                    width: parent.width * gauge.share
                    height: parent.height
                    radius: parent.radius
                    color: gauge.greyed ? Theme.textDim : Theme.accent
                }
            }
            Text {
                anchors.left: bar.left
                anchors.top: bar.bottom
                anchors.topMargin: 4
                text: gauge.minimum
                color: Theme.textDim
                font.pixelSize: Theme.fontSmall
            }
            Text {
                anchors.right: bar.right
                anchors.top: bar.bottom
                anchors.topMargin: 4
                text: gauge.maximum
                color: Theme.textDim
                font.pixelSize: Theme.fontSmall
            }
        }
        // The reading: in the meter's window, or large on the panel.
        Text {
            id: valueText
            objectName: gauge.textName
            x: 0
            y: gauge.dial !== "" ? gauge.height * 0.6425 : gauge.height * 0.36
            width: gauge.width
            height: gauge.height * (gauge.dial !== "" ? 0.115 : 0.2)
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            text: gauge.readout
            color: gauge.greyed ? Theme.textDim : Theme.text
            font.pixelSize: gauge.height * (gauge.dial !== "" ? 0.08 : 0.16)
            font.bold: true
            font.family: "DejaVu Sans Mono"
        }
        Text {
            anchors.top: valueText.bottom
            anchors.horizontalCenter: parent.horizontalCenter
            visible: gauge.dial === ""
            text: gauge.unit
            color: Theme.textDim
            font.pixelSize: Theme.fontLarge
        }
    }

    // The content area below the header.
    Item {
        id: area
        anchors.fill: parent
    }

    NumericGauge {
        id: rpmReadout
        objectName: "rpmReadout"
        visible: false
    }

    Column {
        anchors.top: parent.top
        anchors.topMargin: 8
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 8

        // Named after their default readings.
        Gauge {
            objectName: "firstGauge"
            meterName: "rpmGauge"
            textName: "rpmText"
        }
        Gauge {
            objectName: "secondGauge"
            meterName: "speedGauge"
            textName: "speedText"
        }
    }

    // On the screen itself, over the gauges, while the link is gone.
    Rectangle {
        objectName: "staleBanner"
        visible: page.stale
        anchors.horizontalCenter: parent.horizontalCenter
        y: page.meterSize + 8 - height / 2
        width: staleText.implicitWidth + 2 * Theme.margin
        height: staleText.implicitHeight + Theme.margin
        radius: Theme.radius
        color: Theme.surfaceRaised
        border.color: Theme.danger
        Text {
            id: staleText
            objectName: "staleText"
            anchors.centerIn: parent
            text: "Not connected"
            color: Theme.danger
            font.pixelSize: Theme.fontLarge
            font.bold: true
        }
    }

    Rectangle {
        id: consumptionPanel
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 96
        color: Theme.surface
        Rectangle {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: parent.top
            height: 1
            color: Theme.divider
        }
        Column {
            id: consumptionLabel
            anchors.left: parent.left
            anchors.leftMargin: Theme.margin
            anchors.verticalCenter: parent.verticalCenter
            width: 150
            spacing: 4
            Text {
                text: "Fuel consumption"
                color: Theme.accent
                font.pixelSize: Theme.fontSmall
                font.bold: true
            }
            Text {
                objectName: "statusText"
                text: page.connectionStatus === 2 ? "Estimated from air flow" : "Not connected"
                color: Theme.textDim
                font.pixelSize: 12
            }
        }
        ConsumptionGauge {
            id: consumptionGauge
            objectName: "consumptionGauge"
            anchors.left: consumptionLabel.right
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.bottom: parent.bottom
            anchors.margins: 12
            anchors.rightMargin: Theme.margin
            // Its estimate is as stale as the readings it comes from.
            opacity: page.stale ? 0.45 : 1
        }
    }
}
