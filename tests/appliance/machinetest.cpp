// SPDX-License-Identifier: GPL-3.0-or-later
#include "machinetest.h"

void MachineTest::init()
{
    m_machine = std::make_unique<BootedMachine>();
    QVERIFY(m_machine->resume());
    QVERIFY(m_machine->waitForPage(QStringLiteral("player")) >= 0);
}

bool MachineTest::does(const QString &command)
{
    const VirtualMachine::Outcome outcome = m_machine->run(command);
    if (outcome.status != 0)
        qWarning("%s: %d\n%s", qUtf8Printable(command), outcome.status, outcome.output.constData());
    return outcome.status == 0;
}
