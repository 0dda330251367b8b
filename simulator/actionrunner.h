// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "action.h"

#include <QObject>

class Disturbance;
class ImageService;
class RemoteControlService;
class StateService;

/** Carries actions out on the simulated services, which must outlive it. */
class ActionRunner : public QObject {
    Q_OBJECT

public:
    ActionRunner(RemoteControlService *remote, StateService *state, ImageService *images,
        Disturbance *disturbance, QObject *parent = nullptr);

    /** False, with the reason, when there is no such zone or it cannot do that. */
    bool run(const Action &action, QString *reason);

signals:
    void quitRequested();

private:
    bool runOnZone(const Action &action, bool *known, QString *reason);
    bool play(const Action &action, QString *reason);

    RemoteControlService *m_remote;
    StateService *m_state;
    ImageService *m_images;
    Disturbance *m_disturbance;
};
