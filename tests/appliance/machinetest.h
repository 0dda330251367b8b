// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "bootedmachine.h"

#include <QTest>

#include <memory>

/** The base of tests that begin on the kept machine, with the player page on view. */
class MachineTest : public QObject {
    Q_OBJECT

protected slots:
    void init();
    void cleanup() { m_machine.reset(); }

protected:
    BootedMachine &machine() { return *m_machine; }
    /** Whether a shell command in the machine succeeds; says what it printed when it does not. */
    bool does(const QString &command);

private:
    std::unique_ptr<BootedMachine> m_machine;
};
