// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "changenotifier.h"

#include <QObject>
#include <QString>

/**
 * What is known of the Roon Core, and the appliance's own network identity.
 *
 * A passive mirror: messaging writes the core's properties by name; the scene, the player, the
 * navigation and the cover art read them. Texts are empty until published. Main thread only.
 */
class Roon : public QObject {
    Q_OBJECT
    Q_PROPERTY(
        bool coreDetected READ coreDetected WRITE setCoreDetected NOTIFY coreDetectionChanged)
    Q_PROPERTY(QString serverName READ serverName WRITE setServerName)
    Q_PROPERTY(QString id READ id WRITE setId)
    Q_PROPERTY(QString serverUrl READ serverUrl WRITE setServerUrl)
    Q_PROPERTY(QString version READ version WRITE setVersion)
    Q_PROPERTY(QString ipAddress READ ipAddress CONSTANT)
    Q_PROPERTY(QString localHostName READ localHostName CONSTANT)

public:
    /** The one object, made by the first call; deleted with the scene's engine if used by it. */
    static Roon *instance();

    /** Nothing is known at first, and no core detected. */
    explicit Roon(QObject *parent = nullptr);

    /** Whether the core has been found on the network. */
    bool coreDetected() const { return m_coreDetected; }
    /** Notifies on every write, so that each status message makes the listeners look again. */
    void setCoreDetected(bool detected);

    /** The name that the core goes by. A change is not notified. */
    QString serverName() const { return m_serverName; }
    void setServerName(const QString &name) { m_serverName = name; }

    /** The core's own identifier. A change is not notified. */
    QString id() const { return m_id; }
    void setId(const QString &id) { m_id = id; }

    /** Host and port of the core's image service, "HOST:PORT". */
    QString serverUrl() const { return m_serverUrl; }
    /** Tells serverUrlNotifier() of a change; the scene is not told. */
    void setServerUrl(const QString &url);
    /** For whoever fetches from the image service; lives as long as this object. */
    const ChangeNotifier *serverUrlNotifier() const { return &m_serverUrlNotifier; }

    /** The core's version, as it is published. A change is not notified. */
    QString version() const { return m_version; }
    void setVersion(const QString &version) { m_version = version; }

    /**
     * The first IPv4 address of the first interface that is up, running and not loopback, such as
     * "192.168.1.20"; empty when there is no such interface or it has no IPv4 address. Looked up on
     * every call, and read by the scene only once for each binding.
     */
    QString ipAddress() const;

    /** The machine's host name as it is configured; looked up and read in the same way. */
    QString localHostName() const;

signals:
    /** coreDetected() was written, and may be what it was before. */
    void coreDetectionChanged();

private:
    bool m_coreDetected = false;
    QString m_serverName;
    QString m_id;
    QString m_serverUrl;
    ChangeNotifier m_serverUrlNotifier;
    QString m_version;
};
