// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/scenario/actionkind.h"

#include <QObject>

struct Action;

/** Carries actions out on the simulated services, which must outlive it. */
class ActionRunner : public QObject {
    Q_OBJECT

public:
    ActionRunner(RemoteControlService *remote, StateService *state, ImageService *images,
        Disturbance *disturbance, QObject *parent = nullptr);

    /** @p action is one that parsed. False, with the reason, when it cannot be carried out now. */
    bool run(const Action &action, QString *reason);

signals:
    void quitRequested();

private:
    const ActionTargets m_targets;
};
