// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QObject>
#include <QTimer>

/**
 * Stands in for the services that publish the appliance's own state and its display settings.
 *
 * An update goes through its stages by a timer of its own, which runs only during the update.
 */
class StateService : public QObject {
    Q_OBJECT

public:
    /** @p speed: simulated seconds per second; at 0 an update never gets beyond its first stage. */
    explicit StateService(double speed, QObject *parent = nullptr);

    /** Publishes everything. */
    void start();
    void republish();

    /** Offers an update, with its version as @p info; an empty one takes the offer back. */
    void offerUpdate(const QString &info);
    /** Begins to install; false, with the reason, when there is none or it may not be now. */
    bool installUpdate(QString *reason);
    bool isInstalling() const { return m_stage != Stage::None; }

    /** Forbids updates with a reason to show, or allows them when that is empty. */
    void inhibitUpdates(const QString &reason);

signals:
    void publish(const QString &topic, const QByteArray &payload, bool retain);
    /** One line for people. */
    void told(const QString &line);

private:
    enum class Stage { None, Installing, Rebooting, Starting };

    void set(const char *key, const QByteArray &value);
    void enter(Stage stage);
    void nextStage();

    double m_speed;
    bool m_started = false;
    QMap<QByteArray, QByteArray> m_state;
    Stage m_stage = Stage::None;
    QTimer m_stageTimer;
};
