import QtQuick
import QtQuick.Controls.Basic
import org.quillot.zarvane 1.0

// The dashboard: engine speed and vehicle speed on round meters, and the
// fuel-consumption estimate.
ZPage {
    id: page

    property int connectionStatus: 0
    // The readout follows the unit setting; the dial is printed in km/h.
    property bool imperial: false
    property real speed: 0

    objectName: "dashboardView"
    title: "Dashboard"

    readonly property real meterSize: Math.min(area.width - 2 * Theme.margin,
                                               (area.height - consumptionPanel.height - 3 * 8) / 2)

    // The digital reading inside a meter's window.
    component Readout: Text {
        property MeterGauge meter
        x: meter.x
        y: meter.y + meter.height * 0.6425
        width: meter.width
        height: meter.height * 0.115
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        color: Theme.text
        font.pixelSize: meter.height * 0.08
        font.bold: true
        font.family: "DejaVu Sans Mono"
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

        Item {
            width: page.meterSize
            height: page.meterSize
            MeterGauge {
                id: rpmGauge
                objectName: "rpmGauge"
                anchors.fill: parent
                minimum: 0
                maximum: 8000
                startAngle: -135
                endAngle: 135
                background: ":/dial_rpm.svg"
            }
            Readout {
                objectName: "rpmText"
                meter: rpmGauge
                text: Math.round(rpmReadout.value)
            }
        }
        Item {
            width: page.meterSize
            height: page.meterSize
            MeterGauge {
                id: speedGauge
                objectName: "speedGauge"
                anchors.fill: parent
                minimum: 0
                maximum: 240
                startAngle: -135
                endAngle: 135
                background: ":/dial_speed.svg"
            }
            Readout {
                objectName: "speedText"
                meter: speedGauge
                text: page.imperial ? Math.round(page.speed) + " mph" : Math.round(speedGauge.value)
            }
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
        }
    }
}
