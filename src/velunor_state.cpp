// SPDX-License-Identifier: GPL-3.0-or-later
#include "velunor_state.h"
#include "storeifchanged.h"

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

    // Deliberate: UpdateInhibited and InhibitReason are not connected, their changes are not
    // logged.
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

void VelunorState::setStage(bool value)
{
    if (storeIfChanged(m_stage, value))
        emit stateVelunorStageChanged();
}

void VelunorState::setInit(bool value)
{
    if (storeIfChanged(m_init, value))
        emit stateVelunorInitChanged();
}

void VelunorState::setInstallation(bool value)
{
    if (storeIfChanged(m_installation, value))
        emit stateVelunorInstallationChanged();
}

void VelunorState::setRequireConfigure(bool value)
{
    if (storeIfChanged(m_requireConfigure, value))
        emit stateRequireConfigureChanged();
}

void VelunorState::setRequireReboot(bool value)
{
    if (storeIfChanged(m_requireReboot, value))
        emit stateRequireRebootChanged();
}

void VelunorState::setConfigureIsRunning(bool value)
{
    if (storeIfChanged(m_configureIsRunning, value))
        emit stateConfigureIsRunningChanged();
}

void VelunorState::setUpdateAvailable(bool value)
{
    if (storeIfChanged(m_updateAvailable, value))
        emit stateUpdateAvailableChanged();
}

void VelunorState::setUpdateInstalling(bool value)
{
    if (storeIfChanged(m_updateInstalling, value))
        emit stateUpdateInstallingChanged();
}

void VelunorState::setUpdateInhibited(bool value)
{
    if (storeIfChanged(m_updateInhibited, value))
        emit stateUpdateInhibitedChanged();
}

void VelunorState::setWebIfaceIsUp(bool value)
{
    if (storeIfChanged(m_webIfaceIsUp, value))
        emit stateWebIfaceIsUpChanged();
}

void VelunorState::setTimeSynced(bool value)
{
    if (storeIfChanged(m_timeSynced, value))
        emit stateTimeSyncedChanged();
}

void VelunorState::setUpdateInfo(const QString &value)
{
    if (storeIfChanged(m_updateInfo, value))
        emit stateUpdateInfoChanged();
}

void VelunorState::setInhibitReason(const QString &value)
{
    if (storeIfChanged(m_inhibitReason, value))
        emit stateInhibitReasonChanged();
}
