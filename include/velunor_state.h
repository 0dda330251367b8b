// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * The appliance's own condition, as its management services publish it: start-up stages, updates,
 * reboots.
 *
 * A passive mirror: messaging writes the properties by name; the navigation and the scene read
 * them. A write notifies only when the value changes. Main thread only.
 */
class VelunorState : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool Stage READ stage WRITE setStage NOTIFY stateVelunorStageChanged)
    Q_PROPERTY(bool Init READ init WRITE setInit NOTIFY stateVelunorInitChanged)
    Q_PROPERTY(bool Installation READ installation WRITE setInstallation NOTIFY
            stateVelunorInstallationChanged)
    Q_PROPERTY(bool RequireConfigure READ requireConfigure WRITE setRequireConfigure NOTIFY
            stateRequireConfigureChanged)
    Q_PROPERTY(bool RequireReboot READ requireReboot WRITE setRequireReboot NOTIFY
            stateRequireRebootChanged)
    Q_PROPERTY(bool ConfigureIsRunning READ configureIsRunning WRITE setConfigureIsRunning NOTIFY
            stateConfigureIsRunningChanged)
    Q_PROPERTY(bool UpdateAvailable READ updateAvailable WRITE setUpdateAvailable NOTIFY
            stateUpdateAvailableChanged)
    Q_PROPERTY(bool UpdateInstalling READ updateInstalling WRITE setUpdateInstalling NOTIFY
            stateUpdateInstallingChanged)
    Q_PROPERTY(bool UpdateInhibited READ updateInhibited WRITE setUpdateInhibited NOTIFY
            stateUpdateInhibitedChanged)
    Q_PROPERTY(
        bool WebIfaceIsUp READ webIfaceIsUp WRITE setWebIfaceIsUp NOTIFY stateWebIfaceIsUpChanged)
    Q_PROPERTY(bool TimeSynced READ timeSynced WRITE setTimeSynced NOTIFY stateTimeSyncedChanged)
    Q_PROPERTY(QString UpdateInfo READ updateInfo WRITE setUpdateInfo NOTIFY stateUpdateInfoChanged)
    Q_PROPERTY(QString InhibitReason READ inhibitReason WRITE setInhibitReason NOTIFY
            stateInhibitReasonChanged)

public:
    static VelunorState *instance();

    explicit VelunorState(QObject *parent = nullptr);

    bool stage() const { return m_stage; }
    void setStage(bool value);

    bool init() const { return m_init; }
    void setInit(bool value);

    bool installation() const { return m_installation; }
    void setInstallation(bool value);

    bool requireConfigure() const { return m_requireConfigure; }
    void setRequireConfigure(bool value);

    bool requireReboot() const { return m_requireReboot; }
    void setRequireReboot(bool value);

    bool configureIsRunning() const { return m_configureIsRunning; }
    void setConfigureIsRunning(bool value);

    bool updateAvailable() const { return m_updateAvailable; }
    void setUpdateAvailable(bool value);

    bool updateInstalling() const { return m_updateInstalling; }
    void setUpdateInstalling(bool value);

    /** Whether an available update is held back; inhibitReason() says why. */
    bool updateInhibited() const { return m_updateInhibited; }
    void setUpdateInhibited(bool value);

    /** Whether the appliance's web interface answers. */
    bool webIfaceIsUp() const { return m_webIfaceIsUp; }
    void setWebIfaceIsUp(bool value);

    /** Whether the clock has been set from the network. */
    bool timeSynced() const { return m_timeSynced; }
    void setTimeSynced(bool value);

    QString updateInfo() const { return m_updateInfo; }
    void setUpdateInfo(const QString &value);

    QString inhibitReason() const { return m_inhibitReason; }
    void setInhibitReason(const QString &value);

signals:
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
