// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/options.h"
#include "simulator/scenario/actionrunner.h"
#include "simulator/scenario/scenarioplayer.h"
#include "simulator/services/appliancelink.h"
#include "simulator/services/disturbance.h"
#include "simulator/services/fakepanel.h"
#include "simulator/services/imageservice.h"
#include "simulator/services/remotecontrolservice.h"
#include "simulator/services/stateservice.h"
#include "simulator/services/webservice.h"

#include <QTimer>

/** The whole simulated appliance: makes the services and joins them. */
class Simulator : public QObject {
    Q_OBJECT

public:
    /** Exit statuses of the program. */
    enum Status {
        Ended = 0,
        WrongOptions = 2,
        MalformedScenario = 3,
        NoBroker = 4,
        CannotServe = 5
    };

    Simulator(const Options &options, const Scenario &scenario, QObject *parent = nullptr);

    /**
     * Takes the ports, makes the panel and begins to connect; false, with the reason, when a port
     * is taken or the panel cannot be made.
     */
    bool start(QString *problem);
    /** Leaves the broker; what is retained stays there, as when a service ends. */
    void stop();

    /** Gives every zone something to play: the first one all music, the others an album each. */
    static void fillQueues(RemoteControlService *remote);

signals:
    /** The simulation is over, with this exit status. */
    void ended(int status);
    /**
     * One line for people, cut when very long, without newlines, control characters, or characters
     * that change the direction of the text.
     */
    void told(const QString &line);

private:
    void tell(const QString &line);
    void run(const Action &action);
    void publishFromScenario(const QString &topic, const QByteArray &payload, bool retain);
    void obey(const QByteArray &payload);
    void takeFault(const QByteArray &payload);
    void updateClock();

    Options m_options;
    RemoteControlService m_remote;
    StateService m_state;
    ImageService m_images;
    WebService m_web;
    FakePanel m_panel;
    Disturbance m_disturbance;
    ActionRunner m_actions;
    ScenarioPlayer m_player;
    ApplianceLink m_link;
    QTimer m_clock;                  ///< runs only while something plays
    QVector<Scenario::Step> m_early; ///< messages for after the services' first ones
    bool m_started = false;
    bool m_begun = false;
};
