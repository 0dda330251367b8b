// SPDX-License-Identifier: GPL-3.0-or-later
#include <QGuiApplication>
#include <QQmlApplicationEngine>

#include <systemd/sd-daemon.h>

/**
 * The least that a Qt Quick program can be: a window with one text, ready when it is loaded. The
 * environment may name a scene in which the text changes or moves.
 */
int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.load(
        QUrl(qEnvironmentVariable("TOUCHUI_BARE_SCENE", QStringLiteral("qrc:/bare_window.qml"))));
    if (engine.rootObjects().isEmpty())
        return 1;
    sd_notify(0, "READY=1");
    return QGuiApplication::exec();
}
