// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/hostidentity.h"

#include <QProcess>

#include <sched.h>
#include <unistd.h>

bool appearAs(const QByteArray &hostName)
{
    const bool named = unshare(CLONE_NEWUTS) == 0
        && sethostname(hostName.constData(), static_cast<size_t>(hostName.size())) == 0;
    // The peer is the first of the two that the kernel lists, and the first one counts.
    const QString setUp = QStringLiteral(
        "ip link add lan1 type veth peer name lan0 && ip address add 192.0.2.17/24 dev lan0 && "
        "ip link set lan0 up && ip link set lan1 up");
    return named && QProcess::execute(QStringLiteral("sh"), { QStringLiteral("-c"), setUp }) == 0;
}
