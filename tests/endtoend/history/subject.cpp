// SPDX-License-Identifier: GPL-3.0-or-later
#include "subject.h"

#include "testkit/pagenames.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"
#include "topicbegin.h"

#include <QFile>

using namespace std::chrono_literals;

namespace {

/** Longer than any timer of the player page and its pop-ups. */
constexpr auto TimersOver = 6000ms;
/** Fewer would do: each touch leads one page on. */
constexpr int TouchesToPlayerPage = 5;

QJsonObject withProperties(const QString &type, const QJsonObject &properties)
{
    return { { QStringLiteral("type"), type }, { QStringLiteral("where"), properties } };
}

} // namespace

Subject::Subject(BrokerClient *services, const PanelKind &panel)
    : m_services(services)
    , m_panel(panel)
{
}

bool Subject::start(const QString &wantedZone)
{
    QFile::remove(QStringLiteral("/data/velunor-touch.ini"));
    m_panel.describeTo(m_program);
    m_program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_CONTROL_ZONE"), wantedZone);
    // Without this, Qt draws the outlines of larger glyphs a fraction of a pixel aside, as the last
    // small glyph was drawn.
    m_program.setEnvironment(QStringLiteral("QT_MAX_CACHED_GLYPH_SIZE"), QStringLiteral("1000"));
    // The last filter that it subscribes to has a retained message.
    return (m_program.startAndWait()
               && m_program.waitForLine(Line::info(QStringLiteral("Mqtt::updateSpotify() state")))
               && m_panel.fitWindowOf(m_program) && waitUntil([this] { return fillsScreen(); }))
        || failed(QStringLiteral("did not start"));
}

bool Subject::fillsScreen()
{
    const QRectF pages = m_program.probe().area(QStringLiteral("rotator"));
    return pages == QRectF({ 0, 0 }, QSizeF(m_panel.screen));
}

bool Subject::endWelcome()
{
    const Probe::Target welcomeTimer(withProperties(QStringLiteral("QTimer"),
        { { QStringLiteral("interval"), 5000 }, { QStringLiteral("active"), true } }));
    // On a busy machine its five seconds may have gone before.
    if (m_program.probe().alive(welcomeTimer) > 0)
        m_program.probe().setObjectProperty(welcomeTimer, QStringLiteral("interval"), 0);
    return waitUntil([this] { return page() != PageNames::Welcome; })
        || failed(QStringLiteral("stays on the welcome page"));
}

bool Subject::perform(const History &history)
{
    return std::all_of(
        history.begin(), history.end(), [this](const Step &step) { return perform(step); });
}

bool Subject::perform(const Step &step)
{
    switch (step.kind) {
    case Step::Message:
        m_services->publish(step.topic, step.payload);
        return true;
    case Step::TapItem: {
        const QPointF centre = m_program.probe().centre(step.item);
        if (centre.x() >= 0 && !m_isTouched)
            m_program.probe().tap(centre);
        return m_program.isRunning() || failed(QStringLiteral("ended"));
    }
    case Step::Press:
    case Step::Move:
    case Step::Release:
        return touch(step.kind, step.place);
    case Step::GoToPlayer:
        return leaveOtherPages();
    case Step::WaitUntilHandled:
        break;
    }
    return waitUntilHandled();
}

bool Subject::waitUntilHandled()
{
    const QString marker = QStringLiteral("marker_%1").arg(++m_markers);
    const int from = m_program.logSize();
    m_services->publish(TopicBegin::Settings + marker, QByteArray());
    return (m_program.waitForLine(
                Line::debug(QStringLiteral("Mqtt::updateSettings() ") + marker), from)
               && waitUntil([this] { return isPageReady(); }))
        || failed(QStringLiteral("does not handle messages"));
}

bool Subject::touch(Step::Kind kind, const QPointF &place)
{
    Probe &probe = m_program.probe();
    const QPointF onScreen
        = m_panel.onScreen({ place.x() * m_panel.page.width(), place.y() * m_panel.page.height() });
    bool done = true;
    if (kind == Step::Press && !m_isTouched)
        done = probe.press(onScreen);
    else if (kind == Step::Move && m_isTouched)
        done = probe.move(onScreen);
    else if (kind == Step::Release && m_isTouched)
        done = probe.release(onScreen);
    if (kind != Step::Move)
        m_isTouched = kind == Step::Press;
    m_lastPlace = place;
    return done || failed(QStringLiteral("takes no touches"));
}

bool Subject::catchUp()
{
    return touch(Step::Release, m_lastPlace) && waitUntilHandled();
}

bool Subject::goToPlayerPage()
{
    return (leaveOtherPages() && waitUntil([this] { return page() == PageNames::Player; })
               && m_program.waitForPage(PageNames::Player))
        || failed(QStringLiteral("stays on the page ") + page());
}

bool Subject::leaveOtherPages()
{
    Probe &probe = m_program.probe();
    for (int i = 0; i < TouchesToPlayerPage; ++i) {
        const QString left = page();
        if (left == PageNames::Settings)
            probe.tap(Probe::Target::text(QStringLiteral("Velunor Settings")));
        else if (left == PageNames::Clock || left == PageNames::ScreenSaver)
            probe.tap(
                m_panel.onScreen({ 0.5 * m_panel.page.width(), 0.5 * m_panel.page.height() }));
        else
            break;
        if (!waitUntil([&] { return page() != left && isPageReady(); }))
            return failed(QStringLiteral("does not leave the page ") + left);
    }
    return true;
}

bool Subject::settle()
{
    Probe &probe = m_program.probe();
    const Probe::Target waiting(
        withProperties(QStringLiteral("CoverArtLoader"), { { QStringLiteral("waiting"), true } }));
    const Probe::Target patience(withProperties(QStringLiteral("QTimer"),
        { { QStringLiteral("interval"), 1000 }, { QStringLiteral("active"), true } }));
    // Once its patience is over, a fetch that goes on has had its effect.
    if (!waitUntil([&] { return probe.alive(waiting) == 0 || probe.alive(patience) == 0; }))
        return failed(QStringLiteral("goes on fetching a cover"));
    return waitUntil([&] { return probe.pass(TimersOver) && runningTimers() == 0; })
        || failed(QStringLiteral("has timers that do not end"));
}

QString Subject::wantedZone()
{
    return m_program.probe()
        .objectProperty(Probe::Target::type(QStringLiteral("Player")), QStringLiteral("wantedZone"))
        .toString();
}

Scene Subject::playerPage()
{
    return Scene::ofWindow(&m_program.probe());
}

Scene Subject::popup(const QString &openedBy, const QString &sign)
{
    Probe &probe = m_program.probe();
    if (!probe.shows(openedBy))
        return Scene();
    Scene scene;
    if (probe.tap(Probe::Target(openedBy)) && waitUntil([&] { return probe.shows(sign); }))
        scene = Scene::ofPopup(&probe);
    else
        failed(QStringLiteral("does not open a pop-up after a touch on ") + openedBy);
    if (!settle() || !waitUntil([&] { return !probe.shows(sign); }))
        failed(QStringLiteral("does not close a pop-up"));
    return scene;
}

QString Subject::page()
{
    return m_program.probe()
        .objectProperty(Probe::Target::type(QStringLiteral("QQuickWindowQmlImpl")),
            QStringLiteral("currentScreen"))
        .toString();
}

/** A page that is still being made has a name already, but takes no touches. */
bool Subject::isPageReady()
{
    constexpr int LoaderReady = 1; // QML's Loader.Ready
    return m_program.probe().property(QStringLiteral("loader") + page(), QStringLiteral("status"))
        == QJsonValue(LoaderReady);
}

bool Subject::failed(const QString &what)
{
    if (m_trouble.isEmpty())
        m_trouble = m_program.isRunning()
            ? what
            : QStringLiteral("ended with status %1").arg(m_program.exitStatus());
    return false;
}

int Subject::runningTimers()
{
    return m_program.probe().alive(Probe::Target(withProperties(QStringLiteral("QQmlTimer"),
        { { QStringLiteral("running"), true }, { QStringLiteral("repeat"), false } })));
}
