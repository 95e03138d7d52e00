import QtQuick
import QtQuick.Layouts

// A system symbol ("phone.fill", "gear", …) drawn in one colour.
Image {
    id: icon

    property string name
    property color color: palette.windowText
    property real size: 20

    width: size
    height: size
    Layout.preferredWidth: size
    Layout.preferredHeight: size
    sourceSize.width: Math.ceil(size * 2)
    sourceSize.height: Math.ceil(size * 2)
    fillMode: Image.PreserveAspectFit
    smooth: true
    // Drawn from its SVG on the image loader's thread: a window full of icons starts without waiting for them.
    asynchronous: true
    source: name.length > 0 ? "image://symbols/" + name + "?color=" + String(icon.color).substring(1) : ""
    Accessible.ignored: true
}
