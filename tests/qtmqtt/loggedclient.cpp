// SPDX-License-Identifier: GPL-3.0-or-later
#include "loggedclient.h"

#include "address.h"

#include <QtTest/QtTest>

LoggedClient::LoggedClient(quint16 port)
{
    aim(this, port);
}

bool LoggedClient::connects()
{
    const QStringList expected { "stateChanged(Connecting)", "stateChanged(Connected)",
        "connected" };
    connectToHost();
    const bool asExpected = QTest::qWaitFor([&] { return log.entries() == expected; }, 20000);
    const QStringList entries = log.take();
    if (!asExpected)
        qWarning(
            "not the signals of a connection: %s", qUtf8Printable(entries.mid(0, 10).join(", ")));
    return asExpected;
}
