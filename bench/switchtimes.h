// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <QVector>

#include <map>

/** How long the switches between pages took, by their names; in the order in which they came. */
class SwitchTimes {
public:
    /** One switch, in milliseconds. */
    struct Sample {
        double untilComplete; ///< from the decision to the first frame that shows all of the page
        double neitherShown;  ///< of it, how long the panel showed neither page as it stands
    };

    void add(const QString &name, const Sample &sample);

    QStringList names() const { return m_names; }
    /** Medians of the samples of this name. There must be one. */
    Sample median(const QString &name) const;

private:
    struct Samples {
        QVector<double> untilComplete;
        QVector<double> neitherShown;
    };

    QStringList m_names;
    std::map<QString, Samples> m_samples;
};
