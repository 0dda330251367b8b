// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/actionrunner.h"

#include "simulator/scenario/action.h"

ActionRunner::ActionRunner(RemoteControlService *remote, StateService *state, ImageService *images,
    Disturbance *disturbance, QObject *parent)
    : QObject(parent)
    , m_targets { remote, state, images, disturbance, [this] { emit quitRequested(); } }
{
}

bool ActionRunner::run(const Action &action, QString *reason)
{
    return ActionKind::find(action.name)->carryOut(m_targets, action, reason);
}
