// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * The appliance's own condition, as its management services publish it.
 *
 * A passive mirror: messaging writes the properties by name; the navigation and the scene read
 * them. All are false or empty until published. A write stores and notifies only when the value
 * changes. Main thread only.
 *
 * - Stage, Init, Installation: where the appliance is in its start-up.
 * - RequireConfigure, RequireReboot, ConfigureIsRunning: what it waits for.
 * - UpdateAvailable: the player offers it. UpdateInstalling: a page of its own shows it.
 * - UpdateInhibited, InhibitReason: whether an available update is held back, and why.
 * - WebIfaceIsUp: whether the appliance's web interface answers.
 * - TimeSynced: whether the clock has been set from the network.
 * - UpdateInfo, InhibitReason: messages write "true" or "false" here, as all state travels as a
 *   boolean.
 */
class VelunorState : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool Stage MEMBER m_stage NOTIFY stateVelunorStageChanged)
    Q_PROPERTY(bool Init MEMBER m_init NOTIFY stateVelunorInitChanged)
    Q_PROPERTY(bool Installation MEMBER m_installation NOTIFY stateVelunorInstallationChanged)
    Q_PROPERTY(bool RequireConfigure MEMBER m_requireConfigure NOTIFY stateRequireConfigureChanged)
    Q_PROPERTY(bool RequireReboot MEMBER m_requireReboot NOTIFY stateRequireRebootChanged)
    Q_PROPERTY(
        bool ConfigureIsRunning MEMBER m_configureIsRunning NOTIFY stateConfigureIsRunningChanged)
    Q_PROPERTY(bool UpdateAvailable MEMBER m_updateAvailable NOTIFY stateUpdateAvailableChanged)
    Q_PROPERTY(bool UpdateInstalling MEMBER m_updateInstalling NOTIFY stateUpdateInstallingChanged)
    Q_PROPERTY(bool UpdateInhibited MEMBER m_updateInhibited NOTIFY stateUpdateInhibitedChanged)
    Q_PROPERTY(bool WebIfaceIsUp MEMBER m_webIfaceIsUp NOTIFY stateWebIfaceIsUpChanged)
    Q_PROPERTY(bool TimeSynced MEMBER m_timeSynced NOTIFY stateTimeSyncedChanged)
    Q_PROPERTY(QString UpdateInfo MEMBER m_updateInfo NOTIFY stateUpdateInfoChanged)
    Q_PROPERTY(QString InhibitReason MEMBER m_inhibitReason NOTIFY stateInhibitReasonChanged)

public:
    static VelunorState *instance();

    explicit VelunorState(QObject *parent = nullptr);

    bool updateInstalling() const { return m_updateInstalling; }

signals:
    // One for each property, emitted after a changed value has been stored.
    void stateVelunorStageChanged();
    void stateVelunorInitChanged();
    void stateVelunorInstallationChanged();
    void stateRequireConfigureChanged();
    void stateRequireRebootChanged();
    void stateConfigureIsRunningChanged();
    void stateUpdateAvailableChanged();
    void stateUpdateInstallingChanged();
    void stateUpdateInhibitedChanged();
    void stateWebIfaceIsUpChanged();
    void stateTimeSyncedChanged();
    void stateUpdateInfoChanged();
    void stateInhibitReasonChanged();

private slots:
    void propertyChanged();

private:
    bool m_stage = false;
    bool m_init = false;
    bool m_installation = false;
    bool m_requireConfigure = false;
    bool m_requireReboot = false;
    bool m_configureIsRunning = false;
    bool m_updateAvailable = false;
    bool m_updateInstalling = false;
    bool m_updateInhibited = false;
    bool m_webIfaceIsUp = false;
    bool m_timeSynced = false;
    QString m_updateInfo;
    QString m_inhibitReason;
};
