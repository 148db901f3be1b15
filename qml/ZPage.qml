import QtQuick
import QtQuick.Controls.Basic

// A screen of the page stack with the common header and a way back.
Page {
    id: page

    property bool showBack: true

    function goBack() {
        if (page.StackView.view && page.StackView.view.depth > 1)
            page.StackView.view.pop()
    }

    background: Rectangle { color: Theme.background }

    header: PageHeader {
        id: pageHeader
        title: page.title
        showBack: page.showBack
        onBack: page.goBack()
    }
}
