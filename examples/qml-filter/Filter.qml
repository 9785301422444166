import QtQuick

Rectangle {
    id: root
    required property var garden
    property alias letters: search.text

    color: "white"

    Rectangle {
        id: field
        width: parent.width
        height: 36
        color: "#eef2ee"
        TextInput {
            id: search
            anchors { fill: parent; margins: 8 }
            focus: true
            font.pixelSize: 16
            onTextChanged: root.garden.filter(text)
        }
        Text {
            visible: search.text === ""
            anchors { fill: parent; margins: 8 }
            text: "Filter"
            color: "#7a857a"
            font.pixelSize: 16
        }
    }
    ListView {
        anchors { top: field.bottom; bottom: parent.bottom; left: parent.left; right: parent.right }
        clip: true
        model: root.garden.plants
        delegate: Rectangle {
            id: row
            required property int index
            required property string name
            required property bool selected // which every model over a list tells
            width: ListView.view.width
            height: 28
            color: selected ? "#b8dcb4" : index % 2 ? "#f4f7f4" : "white"
            Text {
                x: 8
                anchors.verticalCenter: parent.verticalCenter
                text: row.name
                font.pixelSize: 15
            }
            MouseArea {
                anchors.fill: parent
                onClicked: root.garden.toggle(row.index)
            }
        }
    }
}
