// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * The appliance's own condition, as its management services publish it.
 *
 * A passive mirror: messaging writes the properties by name; the navigation and the scene read
 * UpdateAvailable and UpdateInstalling, nothing reads the others. All are false or empty until
 * published. Main thread only.
 */
class VelunorState : public QObject {
    Q_OBJECT
    // Which stages of its start-up the appliance has reached.
    Q_PROPERTY(bool Stage MEMBER m_stage NOTIFY stateVelunorStageChanged)
    Q_PROPERTY(bool Init MEMBER m_init NOTIFY stateVelunorInitChanged)
    Q_PROPERTY(bool Installation MEMBER m_installation NOTIFY stateVelunorInstallationChanged)
    /** Whether the appliance has to be configured before it can be used. */
    Q_PROPERTY(bool RequireConfigure MEMBER m_requireConfigure NOTIFY stateRequireConfigureChanged)
    /** Whether it has to be restarted. */
    Q_PROPERTY(bool RequireReboot MEMBER m_requireReboot NOTIFY stateRequireRebootChanged)
    /** Whether it is being configured. */
    Q_PROPERTY(
        bool ConfigureIsRunning MEMBER m_configureIsRunning NOTIFY stateConfigureIsRunningChanged)
    /** Whether there is an update; the player page offers it. */
    Q_PROPERTY(bool UpdateAvailable MEMBER m_updateAvailable NOTIFY stateUpdateAvailableChanged)
    /** Whether an update is being installed; a page of its own says so. */
    Q_PROPERTY(bool UpdateInstalling MEMBER m_updateInstalling NOTIFY stateUpdateInstallingChanged)
    /** Whether updates are held back; the player page offers one all the same. */
    Q_PROPERTY(bool UpdateInhibited MEMBER m_updateInhibited NOTIFY stateUpdateInhibitedChanged)
    /** Whether the appliance's web interface is up. */
    Q_PROPERTY(bool WebIfaceIsUp MEMBER m_webIfaceIsUp NOTIFY stateWebIfaceIsUpChanged)
    /** Whether the appliance's clock is synchronised. */
    Q_PROPERTY(bool TimeSynced MEMBER m_timeSynced NOTIFY stateTimeSyncedChanged)
    // What the update is, and why updates are held back. Messages write "true" or "false" here, as
    // all state travels as a boolean.
    Q_PROPERTY(QString UpdateInfo MEMBER m_updateInfo NOTIFY stateUpdateInfoChanged)
    Q_PROPERTY(QString InhibitReason MEMBER m_inhibitReason NOTIFY stateInhibitReasonChanged)

public:
    /** The one object, made by the first call; deleted with the scene's engine if used by it. */
    static VelunorState *instance();

    /** Nothing has been published yet. */
    explicit VelunorState(QObject *parent = nullptr);

    /** The property UpdateInstalling. */
    bool updateInstalling() const { return m_updateInstalling; }

signals:
    // One for each property, emitted after a changed value has been stored, not for an equal one.
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
