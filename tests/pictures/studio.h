// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/machine/display.h"
#include "testkit/machine/panelkind.h"
#include "testkit/process/program.h"
#include "testkit/process/simulatorprogram.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"

#include <QImage>

/**
 * The real program on a display of its own, with the simulated appliance, in a world in which time
 * stands still: the clock shows one moment for ever and nothing plays on.  So the same steps give
 * the same pictures.
 */
class Studio {
public:
    explicit Studio(const PanelKind &kind);

    /**
     * Starts everything; the welcome page is shown then.  False, with a message, when something
     * does not start.
     */
    bool start();

    /** Has the simulated appliance do something, for example "play album=3"; see its --help. */
    bool act(const QByteArray &action);
    /** Publishes a display setting. */
    bool set(const char *key, const QByteArray &value);
    /** Touches an item, described as Probe does. */
    bool tap(const Probe::Target &item);
    /** Touches the page at a place where nothing is. */
    bool tapBeside();

    /**
     * Has the player page light up the volume after a change for this long, instead of a moment
     * that only some of the pictures fall into.
     */
    bool highlightVolume(int milliseconds);

    /** Waits until the page of this name is shown. */
    bool waitForPage(const QString &name);
    bool waitForItem(const Probe::Target &item);
    bool waitUntilGone(const Probe::Target &item);
    /** Keeps the pop-up that is open from closing by itself, however long its picture takes. */
    bool keepOpen();
    /** Waits until a text is shown. */
    bool waitForText(const QString &text);

    /**
     * What the panel shows once nothing moves any more, upright whichever way the panel is mounted.
     */
    QImage picture();

    /** Tells what the program has logged, for a run that went wrong. */
    void printLog() const;

private:
    bool startSimulator();

    const PanelKind m_kind;
    Display m_display;
    Broker m_broker;
    SimulatorProgram m_simulator;
    BrokerClient m_services;
    Program m_program;
};
