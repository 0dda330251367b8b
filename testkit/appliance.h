// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/machine/panel.h"
#include "testkit/process/program.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/services/imageserver.h"

/**
 * A whole appliance: broker, publishing services, image service, panel and the program, which
 * controls the zone "Kitchen" with the id "z1".
 *
 * Everything is published retained, as the services do, and reaches the program in the order of
 * the calls; handled() waits until it has.
 */
class Appliance : public QObject {
    Q_OBJECT

public:
    explicit Appliance(QObject *parent = nullptr);

    Panel panel; ///< first, because the program looks for it when it starts
    Broker broker;
    BrokerClient services;
    ImageServer images;
    Program program;

    /** Starts broker and services and publishes what scenarios/openings/paused.json says. */
    bool startServices();
    /**
     * startServices(), then the program; waits until the player page is shown.  The welcome page is
     * cut short.
     */
    bool start();
    /** Ends the welcome page once the zone is known: by its timer, but without the wait. */
    bool skipWelcome();

    /** The same without the zone. */
    void endWelcome();

    /** A property of the core, for example "coreDetected". */
    void publishCore(const QString &property, const QByteArray &value);
    /** A value of the zone below its id, for example "nowPlaying/song". */
    void publishZone(const QString &key, const QByteArray &value);
    /** Gives the zone a volume with a range; the player page shows its volume then. */
    void publishVolume();
    /** The list of available zones, as JSON. */
    void publishZones(const QByteArray &json);
    /** A key of the display settings, for example "touchscreen_scrolling". */
    void publishSetting(const QString &key, const QByteArray &value);
    /** A property of the appliance's state, for example "UpdateAvailable". */
    void publishState(const QString &property, const QByteArray &value);
    /** A command of the remote control, as JSON; not retained. */
    void sendCommand(const QByteArray &json);

    /** Waits until the program has handled all that was published; needs debug logging. */
    bool handled();

    /** Every message on the command topic so far, the test's own included. */
    QList<QByteArray> commands() const;

    /** The song that the player page names; empty while it is not on view. */
    QString songOnView();

    /** See Program::waitForPage(). */
    bool waitForPage(const QString &name) { return program.waitForPage(name); }

private:
    int m_markers = 0;
};
