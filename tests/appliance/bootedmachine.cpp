// SPDX-License-Identifier: GPL-3.0-or-later
#include "bootedmachine.h"

#include "testkit/baseline.h"
#include "testkit/waiting.h"

#include <QTcpSocket>

namespace {

/** CONNECT of MQTT 3.1.1 with a clean session and no name, and the answer that lets a client in. */
const QByteArray Connect = QByteArray::fromHex("100c00044d5154540402003c0000");
const QByteArray Welcome = QByteArray::fromHex("20020000");
constexpr int AnswerMs = 500;
constexpr int LookEveryMs = 200;
constexpr int GoneMs = 3000;

// Places on the player page and the settings page.
const QPoint SettingsCorner(790, 470);
const QPoint HandleOfBrightness(438, 143);
const QPoint LowBrightness(300, 143);

QImage pageOnPanel(const QString &page)
{
    return Baseline::named(page + QStringLiteral("-800x480"));
}

} // namespace

QString BootedMachine::kept()
{
    return QStringLiteral(TOUCHUI_BUILD "/tests/appliance/booted.qcow2");
}

qint64 BootedMachine::waitForPage(const QStringList &pages, int milliseconds)
{
    QVector<QImage> wanted;
    for (const QString &page : pages)
        wanted.append(pageOnPanel(page));
    QElapsedTimer time;
    time.start();
    QImage seen;
    do {
        seen = picture();
        for (const QImage &page : qAsConst(wanted)) {
            if (Baseline::isAlike(seen, page))
                return time.elapsed();
        }
        // Whoever looks all the time takes the emulated processor its own.
        QTest::qWait(LookEveryMs);
    } while (time.elapsed() < milliseconds);
    qWarning("the panel does not show the page %s", qUtf8Printable(pages.join(" or ")));
    return -1;
}

bool BootedMachine::comesBack()
{
    QElapsedTimer time;
    time.start();
    // The page from before may still be on view.
    const QImage before = pageOnPanel("player");
    waitUntil([&] { return !Baseline::isAlike(picture(), before); }, PageMs);
    const bool isBack = waitForPage(isEmulated() ? QStringList { "welcome", "player" }
                                                 : QStringList { "welcome" })
        >= 0;
    const qint64 back = time.elapsed();
    const qint64 player = waitForPage("player");
    qInfo(
        "back after %.1f s, player page %.1f s later", double(back) / 1000, double(player) / 1000);
    return isBack && back <= limit() && player >= 0;
}

bool BootedMachine::standsStillOn(const QString &page)
{
    const QImage still = stillPicture();
    const bool isAlike = Baseline::isAlike(still, pageOnPanel(page));
    if (!isAlike)
        qWarning("%.2f %% of the pixels differ from the page %s",
            100 * Baseline::differingShare(still, pageOnPanel(page)), qUtf8Printable(page));
    return isAlike;
}

bool BootedMachine::dim()
{
    const QByteArray before = panel("brightness");
    touch(SettingsCorner);
    if (waitForPage(QStringLiteral("settings")) < 0)
        return false;
    draw(HandleOfBrightness, LowBrightness);
    return waitUntil([&] { return panel("brightness") != before; });
}

void BootedMachine::bringDown(const QString &command)
{
    run(command, GoneMs);
}

bool BootedMachine::waitForBroker(int milliseconds)
{
    return waitUntil(
        [] {
            QTcpSocket client;
            client.connectToHost(QStringLiteral("127.0.0.1"), 1883);
            client.write(Connect);
            QByteArray answer;
            return waitUntil(
                       [&] {
                           answer += client.readAll();
                           return answer.size() >= Welcome.size()
                               || client.state() == QTcpSocket::UnconnectedState;
                       },
                       AnswerMs)
                && answer == Welcome;
        },
        milliseconds);
}

int BootedMachine::starts()
{
    return said(QStringLiteral("journalctl --boot --unit=velunor-touchui --grep='^Starting ' "
                               "--output=cat --quiet | wc -l"))
        .toInt();
}
