import QtQuick
import QtQuick.Controls
import Telverra

// A dialog whose standard buttons a screen reader's Press clicks.
Dialog {
    footer: DialogButtonBox {
        visible: count > 0
        delegate: ActionButton {}
    }
}
