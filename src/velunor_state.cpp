// SPDX-License-Identifier: GPL-3.0-or-later
#include "velunor_state.h"

#include <QDebug>
#include <QThread>

VelunorState *VelunorState::instance()
{
    static VelunorState *const theInstance = new VelunorState;
    return theInstance;
}

VelunorState::VelunorState(QObject *parent)
    : QObject(parent)
{
    qDebug().noquote().nospace() << "VelunorState::constructor in thread "
                                 << QThread::currentThreadId();

    // Deliberate: UpdateInhibited and InhibitReason are left out, so their changes are not logged.
    constexpr void (VelunorState::*logged[])() = {
        &VelunorState::stateVelunorStageChanged,
        &VelunorState::stateVelunorInitChanged,
        &VelunorState::stateVelunorInstallationChanged,
        &VelunorState::stateRequireConfigureChanged,
        &VelunorState::stateRequireRebootChanged,
        &VelunorState::stateConfigureIsRunningChanged,
        &VelunorState::stateUpdateAvailableChanged,
        &VelunorState::stateUpdateInstallingChanged,
        &VelunorState::stateWebIfaceIsUpChanged,
        &VelunorState::stateTimeSyncedChanged,
        &VelunorState::stateUpdateInfoChanged,
    };
    for (const auto changed : logged)
        connect(this, changed, this, &VelunorState::propertyChanged);
}

void VelunorState::propertyChanged()
{
    qInfo() << "VelunorState::propertyChanged()";
    qDebug().noquote().nospace() << "VelunorState::propertyChanged() update_available: "
                                 << m_updateAvailable;
}
