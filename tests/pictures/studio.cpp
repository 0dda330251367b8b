// SPDX-License-Identifier: GPL-3.0-or-later
#include "studio.h"

#include "simulator/services/topics.h"
#include "testkit/waiting.h"

#include <QRegularExpression>
#include <QTransform>

#include <cstdio>

namespace {

// A Wednesday in November, the longest names of both that German has.
constexpr char Moment[] = "2026-11-18 19:05:00";

/** The window draws nothing while this long nothing changes. */
constexpr int StillMs = 300;

/** Longer than any picture takes. */
constexpr int NeverMs = 1000000;

} // namespace

Studio::Studio(const PanelKind &kind)
    : m_kind(kind)
    , m_display(kind.screen)
    , m_broker(Broker::Subscriptions)
{
    m_kind.describeTo(m_program);
    // Glyphs drawn from distance fields differ in the last bit with their places in the glyph
    // cache, which are a matter of timing.
    m_program.setEnvironment(QStringLiteral("QML_DISABLE_DISTANCEFIELD"), QStringLiteral("1"));
    m_program.setEnvironment(QStringLiteral("TZ"), QStringLiteral("UTC"));
    m_program.setEnvironment(QStringLiteral("LD_PRELOAD"), QStringLiteral(TOUCHUI_FAKETIME));
    m_program.setEnvironment(QStringLiteral("FAKETIME"), QString::fromLatin1(Moment));
    m_program.setEnvironment(QStringLiteral("FAKETIME_DONT_FAKE_MONOTONIC"), QStringLiteral("1"));
}

bool Studio::start()
{
    if (!m_display.start() || !m_broker.start() || !m_services.connectToBroker()
        || !startSimulator())
        return false;
    m_program.drawOn(m_display.name());
    return m_program.startAndWait() && waitForPage(QStringLiteral("Welcome"))
        && m_kind.fitWindowOf(m_program);
}

bool Studio::startSimulator()
{
    // Retained once it has come, so the program may start when it likes.
    return m_simulator.startAndWait(
               { QStringLiteral("--scenario"), QStringLiteral("playing"), QStringLiteral("--speed"),
                   QStringLiteral("0"), QStringLiteral("--image-port"), QStringLiteral("9330") })
        && m_services.waitFor(Topics::core("coreDetected"), "true");
}

bool Studio::act(const QByteArray &action)
{
    m_services.publish(Topics::fault(), action);
    return m_services.flush();
}

bool Studio::set(const char *key, const QByteArray &value)
{
    m_services.publish(Topics::settings(key), value, true);
    return m_services.flush();
}

bool Studio::tap(const Probe::Target &item)
{
    return m_program.probe().tap(item);
}

bool Studio::tapBeside()
{
    return m_program.probe().tap(QPointF(2, 2));
}

bool Studio::highlightVolume(int milliseconds)
{
    return m_program.probe().setObjectProperty(
        "highlightTimer", QStringLiteral("interval"), milliseconds);
}

bool Studio::waitForPage(const QString &name)
{
    // A page under construction is there already, but not all of its items have found their places.
    constexpr int LoaderReady = 1;
    return waitUntil([&] {
        return m_program.probe().property(QStringLiteral("loader") + name, QStringLiteral("status"))
            == LoaderReady;
    });
}

bool Studio::waitForItem(const Probe::Target &item)
{
    return waitUntil([&] { return m_program.probe().shows(item); });
}

bool Studio::waitUntilGone(const Probe::Target &item)
{
    return waitUntil([&] { return !m_program.probe().shows(item); });
}

bool Studio::keepOpen()
{
    const QJsonObject running { { QStringLiteral("running"), true } };
    const Probe::Target timer(
        QJsonObject { { QStringLiteral("name"), QStringLiteral("closeTimer") },
            { QStringLiteral("where"), running } });
    return waitUntil([&] { return m_program.probe().alive(timer) == 1; })
        && m_program.probe().setObjectProperty(timer, QStringLiteral("interval"), NeverMs);
}

bool Studio::waitForText(const QString &text)
{
    return waitForItem(Probe::Target::text(text));
}

QImage Studio::picture()
{
    Probe &probe = m_program.probe();
    probe.frames();
    do {
        QTest::qWait(StillMs); // stillness is a length of time, there is nothing to wait for
    } while (probe.frames() > 0);
    const QImage grabbed = probe.picture();
    return m_kind.isUpright() ? grabbed
                              : grabbed.transformed(QTransform().rotate(-m_kind.rotation));
}

void Studio::printLog() const
{
    for (const LogLine &line : m_program.log())
        std::fprintf(stderr, "    %s\n", qUtf8Printable(line.whole));
}
