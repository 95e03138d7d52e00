pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// A city field that completes as the user types, from the offline city database: Up and Down move through the list,
// Enter or a click takes a city.
ColumnLayout {
    id: field

    // A map of name, country, latitude and longitude.
    signal chosen(var city)

    property alias text: input.text
    readonly property alias results: cities

    function choose(row) {
        const city = cities.city(row)
        if (city.name === undefined)
            return
        input.text = ""
        field.chosen(city)
    }
    function focusField() { input.forceActiveFocus() }

    spacing: 2

    CitySearchModel {
        id: cities
        text: input.text
    }

    TextField {
        id: input
        objectName: "citySearch"
        Layout.fillWidth: true
        placeholderText: qsTr("Choose your city")
        Accessible.name: qsTr("Choose your city")
        Accessible.description: qsTr("Type the first letters of a city, then pick it from the list below.")
        Keys.onDownPressed: list.currentIndex = Math.min(list.currentIndex + 1, list.count - 1)
        Keys.onUpPressed: list.currentIndex = Math.max(list.currentIndex - 1, 0)
        Keys.onEscapePressed: event => {
            event.accepted = text.length > 0
            text = ""
        }
        onAccepted: if (list.count > 0) field.choose(Math.max(list.currentIndex, 0))
    }

    ListView {
        id: list
        objectName: "cityResults"
        Layout.fillWidth: true
        Layout.preferredHeight: contentHeight
        visible: count > 0
        interactive: false
        model: cities
        currentIndex: 0
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Cities")
        delegate: ItemDelegate {
            id: row
            required property int index
            required property string name
            required property string detail
            width: ListView.view.width
            highlighted: ListView.isCurrentItem
            text: name + "  ·  " + detail
            Accessible.name: name + ", " + detail
            onClicked: field.choose(index)
            Accessible.onPressAction: field.choose(index)
        }
    }
}
