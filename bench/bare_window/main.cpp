// SPDX-License-Identifier: GPL-3.0-or-later
#include <QGuiApplication>
#include <QQmlApplicationEngine>

#include <systemd/sd-daemon.h>

/** The least that a Qt Quick program can be: a window with one text, ready when it is loaded. */
int main(int argc, char *argv[])
{
    QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.load(QUrl(QStringLiteral("qrc:/bare_window.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    sd_notify(0, "READY=1");
    return QGuiApplication::exec();
}
