import QtQuick
import QtQuick.Controls.Basic

// The root: a page stack with the main view at the bottom, the shared
// query dialog and the shared notice banner on top.
Rectangle {
    id: root

    readonly property alias depth: stack.depth
    readonly property alias busy: stack.busy
    readonly property alias currentPage: stack.currentItem

    // Pushes the named document and returns its page; the main view is
    // never created twice: asking for it goes back to it.
    function loadView(document) {
        if (document === "MainView.qml") {
            stack.pop(null)
            return mainView
        }
        return stack.push(Qt.resolvedUrl(document))
    }

    function back() {
        if (queryDialog.visible)
            queryDialog.reject()
        else if (stack.depth > 1)
            stack.pop()
    }

    width: 480
    height: 854
    color: Theme.background

    StackView {
        id: stack
        anchors.fill: parent
        initialItem: mainView
        focus: true
        Keys.onBackPressed: root.back()
        Keys.onEscapePressed: root.back()
    }

    MainView {
        id: mainView
        objectName: "mainView"
    }

    QueryDialog {
        id: queryDialog
        objectName: "queryDialog"
        anchors.fill: parent
        z: 10
    }

    InfoBanner {
        id: infoBanner
        objectName: "infoBanner"
        z: 20
    }
}
