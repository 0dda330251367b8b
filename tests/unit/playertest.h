// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "logcapture.h"
#include "player.h"
#include "roonzone.h"
#include "signalrecorder.h"

#include <QObject>

#include <memory>

/** Makes the surroundings of a player that wants the zone "Kitchen"; for the start of a program. */
void startPlayerWithoutBroker();

/**
 * What tests of the player start from: a player that controls the zone "Kitchen" with the id "z1",
 * which is available, and no broker.
 */
class PlayerTest : public QObject {
    Q_OBJECT

protected slots:
    void init();

private slots:
    void initTestCase() { startPlayerWithoutBroker(); }
    void cleanup();

protected:
    /** The player's own lines so far. */
    QStringList lines() { return m_log->take(QStringLiteral("player.cpp")); }

    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<Player> m_player; ///< has not been updated yet
    std::unique_ptr<SignalRecorder> m_signals;
    RoonZone *m_zone = nullptr; ///< the collection's
};
