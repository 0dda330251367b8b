// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "signallog.h"

/** A client that is aimed at a port of 127.0.0.1, with the log of its signals. */
class LoggedClient : public QMqttClient {
public:
    explicit LoggedClient(quint16 port);

    /** Connects, and takes the signals of that from the log; false where they are others. */
    bool connects();

    SignalLog log { this };
};
