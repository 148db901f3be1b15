pragma Singleton
import QtQuick

// The application's colours and sizes: a dark cockpit with amber accents.
QtObject {
    readonly property color background: "#11151b"
    readonly property color surface: "#1a2029"
    readonly property color surfaceRaised: "#232b36"
    readonly property color pressed: "#2d3743"
    readonly property color divider: "#2b333e"
    readonly property color text: "#e9eef3"
    readonly property color textDim: "#8d99a8"
    readonly property color accent: "#f5a524"
    readonly property color accentText: "#1b1405"
    readonly property color ok: "#34c38f"
    readonly property color danger: "#ef5350"
    readonly property color dim: "#b3000000"

    readonly property int margin: 16
    readonly property int radius: 10
    readonly property int fontSmall: 14
    readonly property int fontNormal: 17
    readonly property int fontLarge: 21
    readonly property int fontTitle: 24
    readonly property int headerHeight: 64
    readonly property int rowHeight: 92
}
