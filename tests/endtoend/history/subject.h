// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scene.h"
#include "step.h"
#include "testkit/machine/panelkind.h"
#include "testkit/process/program.h"

class BrokerClient;

/** A program that lives through a history, and can be looked at afterwards. */
class Subject {
public:
    /** The services publish for this program alone. */
    Subject(BrokerClient *services, const PanelKind &panel);

    /** Starts the program with an empty settings file; it has subscribed when this returns. */
    bool start(const QString &wantedZone);
    bool endWelcome();
    bool perform(const Step &step);
    bool perform(const History &history);
    /** Waits until all that was published is handled, and ends the touch that may be left. */
    bool catchUp();
    /** Leaves whichever page there is, by touches as a user would. */
    bool goToPlayerPage();
    /** Waits until nothing changes any more by itself, except labels that scroll. */
    bool settle();

    /** What the display controls, by name. */
    QString wantedZone();
    /** The player page as it stands. */
    Scene playerPage();
    /** Opens the pop-up by a touch on this item, if it is shown, looks at it and closes it. */
    Scene popup(const QString &openedBy, const QString &sign);

    bool stop() { return m_program.stop(); }
    /** What went wrong, for the report of the first thing above that failed. */
    QString trouble() const { return m_trouble; }

private:
    bool touch(Step::Kind kind, const QPointF &place);
    bool fillsScreen();
    bool waitUntilHandled();
    bool leaveOtherPages();
    QString page();
    bool isPageReady();
    bool failed(const QString &what);
    int runningTimers();

    BrokerClient *const m_services;
    const PanelKind m_panel;
    Program m_program;
    QString m_trouble;
    QPointF m_lastPlace;
    bool m_isTouched = false;
    int m_markers = 0;
};
