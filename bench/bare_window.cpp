// bare_window: a Qt Quick Controls window with nothing in it, started the way Telverra starts its own (the same
// style, size and engine). first_frame.sh compares the time to the first frame of both.
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickStyle>

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QQuickStyle::setStyle(QStringLiteral("Fusion"));
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nimport QtQuick.Controls\n"
                    "ApplicationWindow { visible: true; width: 1000; height: 680; title: \"Telverra\" }");
    return QGuiApplication::exec();
}
