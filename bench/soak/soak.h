// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/appliance.h"

#include <QElapsedTimer>
#include <QVector>

class Display;
class QTextStream;

/** An hour or more of a house's life, at a steady pace, and what it leaves behind. */
class Soak {
public:
    explicit Soak(double hours);

    /** Lives that long, and writes a line for each sample; false when something goes wrong. */
    bool run(const Display &display, QTextStream &record);
    /** Prints what was there early and late; false when any of it has grown beyond the goal. */
    bool report() const;

private:
    /** What must not grow. */
    struct Sample {
        double minutes;
        double privateMiB;
        int files;
        int threads;
        int objects;
    };

    bool start(const Display &display);
    bool round(int number);
    void publish(const QString &topic, const QByteArray &payload);
    bool tour(int number);
    bool takeSample(QTextStream &record);
    QVector<double> series(double from, double to, double (*figure)(const Sample &)) const;

    const int m_rounds;
    const double m_roundMs;
    Appliance m_appliance;
    QElapsedTimer m_time;
    QVector<Sample> m_samples;
    qint64 m_messages = 0;
    int m_pages = 0;
};
