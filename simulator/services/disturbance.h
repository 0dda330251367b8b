// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QRandomGenerator>
#include <QTimer>

/**
 * Messages that no healthy service would send: far too many, or malformed.
 *
 * They are not true; finished() asks for the truth to be published again.
 */
class Disturbance : public QObject {
    Q_OBJECT

public:
    static constexpr int MostPerSecond = 100000;
    static constexpr int LongestFloodS = 3600;
    static constexpr int MostNoise = 100000;

    Disturbance(const QString &zoneId, quint32 seed, QObject *parent = nullptr);

    /**
     * Changes of the zone at a steady rate, in real time; one flood at a time. From 1 to
     * MostPerSecond a second, for up to LongestFloodS seconds, so that an int can count them.
     */
    void flood(int perSecond, int seconds);
    /** Malformed messages on all kinds of topics, MostNoise at most, all at once, not retained. */
    void noise(int count);

signals:
    void publish(const QString &topic, const QByteArray &payload, bool retain);
    void finished();

private:
    void floodOn();
    QString noiseTopic();
    QByteArray noisePayload();

    QString m_zoneId;
    QRandomGenerator m_random;
    QTimer m_timer;
    QElapsedTimer m_elapsed;
    int m_perSecond = 0;
    int m_sent = 0;
    int m_total = 0;
};
