// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/house/library.h"
#include "simulator/scenario/action.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/**
 * What happens in the simulated house, step by step, read from a file; see docs/scenarios.md.
 */
class Scenario {
public:
    struct Step {
        enum Kind { Message, Act, Repeat };
        Kind kind = Message;
        int afterMs = 0;     ///< simulated time since the step before; 0 or more
        QString topic;       ///< Message: a valid topic
        QByteArray payload;  ///< Message
        bool retain = false; ///< Message
        Action action;       ///< Act
        QString note;
    };

    /** @p mainZone is the name by which the appliance's own zone goes. */
    explicit Scenario(const QString &mainZone = Library::zones().first().name);

    /** False when it cannot be read or is malformed; @p problem is then "FILE:LINE: what". */
    bool load(const QString &fileName, QString *problem);
    /** The same from the text of a file; @p fileName only goes into @p problem. */
    bool parse(const QByteArray &text, const QString &fileName, QString *problem);

    const QVector<Step> &steps() const { return m_steps; }
    /** The note of the first step: what the scenario shows. */
    QString description() const;

private:
    QString m_mainZone;
    QVector<Step> m_steps;
};
