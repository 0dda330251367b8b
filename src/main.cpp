// SPDX-License-Identifier: GPL-3.0-or-later
#include "commandline.h"
#include "controlledzone.h"
#include "coverartloader.h"
#include "imageprovider.h"
#include "messagehandler.h"
#include "mqtt.h"
#include "navigationcontroller.h"
#include "player.h"
#include "revision.h"
#include "roon.h"
#include "roonzones.h"
#include "screencontroller.h"
#include "settings.h"
#include "sigwatch.h"
#include "systemdwatchdog.h"
#include "velunor_state.h"

#include <QCursor>
#include <QDebug>
#include <QGuiApplication>
#include <QMetaEnum>
#include <QProcessEnvironment>
#include <QQmlApplicationEngine>
#include <QQmlEngine>
#include <QScreen>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace {

/**
 * Offers the one object of class T to the scene. The engine deletes the objects that the scene has
 * used when it is destroyed, at the very end.
 */
template <typename T> void registerSingleton(const char *module, const char *name)
{
    qmlRegisterSingletonType<T>(
        module, 1, 0, name, [](QQmlEngine *, QJSEngine *) -> QObject * { return T::instance(); });
}

void logScreen(const QScreen &screen)
{
    qInfo().noquote().nospace() << "screen name       : " << screen.name();
    qInfo().noquote().nospace() << "screen size       : " << screen.size();
    qInfo().noquote().nospace() << "screen orientation: "
                                << QMetaEnum::fromType<Qt::ScreenOrientation>().valueToKey(
                                       screen.primaryOrientation());
}

} // namespace

int main(int argc, char *argv[])
{
    const QString answer = CommandLine::answer(argc, argv);
    if (!answer.isEmpty())
        return std::fputs(qPrintable(answer), stdout) < 0 || std::fflush(stdout) != 0
            ? EXIT_FAILURE
            : EXIT_SUCCESS;

    const QString debug
        = QProcessEnvironment::systemEnvironment().value(QStringLiteral("TOUCHUI_DEBUG"));
    setDebugLogging(debug == QLatin1String("debug"));
    qInstallMessageHandler(messageHandler);
    if (debugLogging())
        qInfo() << "Enabling DEBUG...";

    QGuiApplication application(argc, argv);
    // Deliberate: the version is that of the appliance's Qt, a fixed text.
    qInfo().noquote().nospace() << "Starting up revision: " << BuildRevision
                                << ", with Qt version: "
                                << "5.15.19";

    SystemdWatchdog *const watchdog = SystemdWatchdog::instance();
    Mqtt *const mqtt = Mqtt::instance();

    UnixSignalWatcher watcher;
    watcher.watchForSignal(SIGINT);
    watcher.watchForSignal(SIGTERM);
    QObject::connect(
        &watcher, &UnixSignalWatcher::unixSignal, &application, &QCoreApplication::quit);
    QObject::connect(&application, &QCoreApplication::aboutToQuit, mqtt, &QObject::deleteLater);
    QObject::connect(&application, &QCoreApplication::aboutToQuit, watchdog, &QObject::deleteLater);

    registerSingleton<Roon>("Velunor.Roon", "Roon");
    registerSingleton<Player>("Velunor.Player", "Player");
    registerSingleton<ScreenController>("Velunor.Screen", "ScreenController");
    registerSingleton<Settings>("Velunor.Settings", "Settings");
    registerSingleton<NavigationController>("Velunor.Navigation", "Navigation");
    registerSingleton<RoonZones>("Velunor.RoonZones", "RoonZones");
    registerSingleton<VelunorState>("Velunor.VelunorState", "VelunorState");

    // The navigation's constructor reads the display's width, so the order counts.
    Settings::instance();
    VelunorState::instance();
    Player::instance();
    Roon::instance();
    ScreenController::instance();
    NavigationController::instance();

    QGuiApplication::setOverrideCursor(QCursor(Qt::BlankCursor));
    qputenv("QML_DISABLE_DISK_CACHE", "true");
    logScreen(*QGuiApplication::primaryScreen());

    QQmlApplicationEngine engine;
    qmlRegisterType<CoverArtLoader>("Velunor.Images", 1, 0, "CoverArtLoader");
    qmlRegisterType<ControlledZone>("Velunor.Zones", 1, 0, "ControlledZone");
    engine.addImageProvider(
        QStringLiteral("velunor"), new ImageProvider(QQmlImageProviderBase::Image));
    engine.load(QUrl(QStringLiteral("qrc:/qml/main.qml")));
    if (engine.rootObjects().isEmpty())
        return -1;

    watchdog->notifyReady();
    qInfo() << "Entering main event loop...";
    const int exitCode = QGuiApplication::exec();
    qInfo().noquote().nospace() << "Left main event loop with exit code " << exitCode;
    return exitCode;
}
