// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/** What the command line asks for. */
struct Options {
    enum Task { Run, List, Help, Version };

    Task task = Run;
    QString scenario = QStringLiteral("playing"); ///< a name or a file
    double speed = 1;                             ///< simulated seconds per second, 0 to 1000
    quint32 seed = 1;
    quint16 brokerPort = 1883;
    quint16 imagePort = 0;                   ///< 0: any free one
    quint16 webPort = 8080;                  ///< 0: any free one
    QString zone = QStringLiteral("Hugo2X"); ///< the name of the appliance's own zone
    QString panel;                           ///< where a simulated panel is made; empty: nowhere

    /** @p arguments begin with the program's name. False, with the reason, when they are wrong. */
    static bool parse(const QStringList &arguments, Options *options, QString *problem);
    static QString helpText();
};
