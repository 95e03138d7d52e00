pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The first screen: a greeting by the hour and a saying, with a waiting wave while the saying may still arrive.
Item {
    id: welcome

    required property var viewModel
    // The moment the greeting is for (tests set it).
    property date now: new Date()
    property int count: 0
    readonly property string quote: viewModel.randomQuote
    // Without a quote to come (no fortune files installed), the greeting stands alone.
    readonly property bool waiting: quote.length === 0 && viewModel.quoteAwaited

    // The wave moves only while it can be seen: behind another section it would keep the window drawing.
    Timer {
        interval: 500
        repeat: true
        running: welcome.visible && welcome.waiting
        onTriggered: welcome.count = welcome.count === 3 ? 0 : welcome.count + 1
    }

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 720)
        spacing: 0

        Label {
            objectName: "greeting"
            Layout.alignment: Qt.AlignHCenter
            Layout.margins: 30
            text: welcome.viewModel.greeting(welcome.now)
            font.pixelSize: 34
            color: welcome.palette.placeholderText
        }

        Label {
            id: quoteLabel
            objectName: "quote"
            Layout.fillWidth: true
            Layout.leftMargin: 30
            Layout.rightMargin: 30
            visible: welcome.quote.length > 0
            text: "\"" + welcome.quote + "\""
            font.pixelSize: 34
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            // Fades in when the quote arrives (bound to the quote, not to the visibility that every change of
            // section flips).
            opacity: welcome.quote.length > 0 ? 1 : 0
            Behavior on opacity { NumberAnimation { duration: 600; easing.type: Easing.InOutQuad } }
        }

        Row {
            objectName: "indicator"
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 30
            visible: welcome.waiting
            spacing: 10
            width: 100
            height: 40
            Repeater {
                model: 3
                delegate: Rectangle {
                    required property int index
                    objectName: "mark" + (index + 1)
                    width: 26
                    height: 26
                    radius: 13
                    color: welcome.palette.highlight
                    y: welcome.count === index + 1 ? -20 + 14 : 14
                    Behavior on y { NumberAnimation { duration: 200; easing.type: Easing.InOutQuad } }
                }
            }
        }
    }
}
