// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/simulator.h"

#include "simulator/house/library.h"
#include "simulator/house/simulatedtime.h"

namespace {

constexpr int ClockMs = 1000;      // of simulated time
constexpr int ShortestTickMs = 10; // of real time
constexpr int LongestLine = 1000;  // in characters, beyond which nobody reads

/** Whether it would change the direction of everything after it on the terminal. */
bool turnsText(QChar character)
{
    switch (character.direction()) {
    case QChar::DirLRE:
    case QChar::DirRLE:
    case QChar::DirLRO:
    case QChar::DirRLO:
    case QChar::DirLRI:
    case QChar::DirRLI:
    case QChar::DirFSI:
        return true;
    default:
        return false;
    }
}

/** What comes from outside as one line of readable length. */
QString oneLine(QString text)
{
    const int tooMany = text.size() - LongestLine;
    if (tooMany > 0) {
        text.truncate(LongestLine);
        text += QStringLiteral("… (%1 more)").arg(tooMany);
    }
    for (QChar &character : text) {
        const bool breaksLine = character.category() == QChar::Other_Control
            || character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
        if (breaksLine || turnsText(character))
            character = QChar::ReplacementCharacter;
    }
    return text;
}

} // namespace

Simulator::Simulator(const Options &options, const Scenario &scenario, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_remote(options.zone, options.seed)
    , m_state(options.speed)
    , m_web([this](QString *reason) { return m_state.installUpdate(reason); })
    , m_disturbance(m_remote.mainZone()->id(), options.seed)
    , m_actions(&m_remote, &m_state, &m_images, &m_disturbance)
    , m_player(scenario, options.speed)
    , m_link(options.brokerPort)
{
    fillQueues(&m_remote);
    connect(&m_remote, &RemoteControlService::publish, &m_link, &ApplianceLink::publish);
    connect(&m_state, &StateService::publish, &m_link, &ApplianceLink::publish);
    connect(&m_disturbance, &Disturbance::publish, &m_link, &ApplianceLink::publish);
    connect(&m_player, &ScenarioPlayer::message, this, &Simulator::publishFromScenario);
    connect(&m_player, &ScenarioPlayer::action, this, &Simulator::run);
    connect(&m_player, &ScenarioPlayer::finished, this,
        [this] { tell(QStringLiteral("scenario: at its end, everything goes on")); });
    connect(&m_disturbance, &Disturbance::finished, this, [this] {
        m_remote.republish();
        m_state.republish();
    });
    connect(&m_remote, &RemoteControlService::told, this, &Simulator::tell);
    connect(&m_state, &StateService::told, this, &Simulator::tell);
    connect(&m_images, &ImageService::told, this, &Simulator::tell);
    connect(&m_web, &WebService::told, this, &Simulator::tell);
    connect(&m_panel, &FakePanel::told, this, &Simulator::tell);
    connect(&m_remote, &RemoteControlService::playingChanged, this, &Simulator::updateClock);
    connect(&m_actions, &ActionRunner::quitRequested, this, [this] { emit ended(Ended); });

    connect(&m_link, &ApplianceLink::connected, this, [this] {
        tell(QStringLiteral("broker: connected"));
        if (!m_begun) {
            m_begun = true;
            updateClock();
            m_player.begin();
        }
    });
    connect(&m_link, &ApplianceLink::connectionLost, this,
        [this] { tell(QStringLiteral("broker: connection lost, waiting for it to come back")); });
    connect(&m_link, &ApplianceLink::unreachable, this, [this] { emit ended(NoBroker); });
    connect(&m_link, &ApplianceLink::commandReceived, this, &Simulator::obey);
    connect(&m_link, &ApplianceLink::faultReceived, this, &Simulator::takeFault);
    connect(&m_link, &ApplianceLink::displayReported, this,
        [this](const QString &what, const QByteArray &payload) {
            tell(QStringLiteral("%1: %2").arg(what, QString::fromUtf8(payload)));
        });

    m_clock.setTimerType(Qt::PreciseTimer);
    if (m_options.speed > 0)
        m_clock.setInterval(qMax(ShortestTickMs, realMs(ClockMs, m_options.speed)));
    connect(&m_clock, &QTimer::timeout, this,
        [this] { m_remote.advance(qRound(m_clock.interval() * m_options.speed)); });
}

void Simulator::fillQueues(RemoteControlService *remote)
{
    QVector<const Album *> music;
    for (const Album &album : Library::albums()) {
        if (!album.radio)
            music.append(&album);
    }
    remote->mainZone()->setQueue(music);
    const QVector<ZoneDescription> &zones = Library::zones();
    for (int i = 1; i < zones.size(); ++i)
        remote->zone(zones.at(i).name)->setQueue({ music.at(i % music.size()) });
}

bool Simulator::start(QString *problem)
{
    if (!m_images.listen(m_options.imagePort)) {
        *problem = QStringLiteral("cannot serve cover art on port %1: %2")
                       .arg(m_options.imagePort)
                       .arg(m_images.errorText());
        return false;
    }
    if (!m_web.listen(m_options.webPort)) {
        *problem = QStringLiteral("cannot be the web service on port %1: %2")
                       .arg(m_options.webPort)
                       .arg(m_web.errorText());
        return false;
    }
    if (!m_options.panel.isEmpty() && !m_panel.create(m_options.panel, problem))
        return false;
    tell(QStringLiteral("image: serving at %1").arg(m_images.address()));
    tell(QStringLiteral("web: serving at 127.0.0.1:%1").arg(m_web.port()));
    // What the scenario begins with is true from the first message on; its own messages replace
    // what the services say.
    m_player.prepare();
    m_state.start();
    m_remote.start(m_images.address());
    m_started = true;
    for (const Scenario::Step &step : qAsConst(m_early))
        publishFromScenario(step.topic, step.payload, step.retain);
    m_early.clear();
    // A broker that takes the connection and is then silent is waited for without end.
    tell(QStringLiteral("broker: waiting for an answer at 127.0.0.1:%1").arg(m_options.brokerPort));
    m_link.connectToBroker();
    return true;
}

void Simulator::stop()
{
    m_link.disconnectFromBroker();
}

void Simulator::tell(const QString &line)
{
    emit told(oneLine(line));
}

void Simulator::run(const Action &action)
{
    QString reason;
    if (m_actions.run(action, &reason))
        tell(QStringLiteral("action: ") + action.words());
    else
        tell(QStringLiteral("action: %1: refused: %2").arg(action.words(), reason));
}

void Simulator::publishFromScenario(const QString &topic, const QByteArray &payload, bool retain)
{
    if (m_started) {
        m_link.publish(topic, payload, retain);
        return;
    }
    Scenario::Step step;
    step.topic = topic;
    step.payload = payload;
    step.retain = retain;
    m_early.append(step);
}

void Simulator::obey(const QByteArray &payload)
{
    const RemoteCommand command = RemoteCommand::parse(payload);
    if (command.kind == RemoteCommand::Invalid) {
        tell(QStringLiteral("command: not understood: %1: %2")
                 .arg(command.error, QString::fromUtf8(payload)));
        return;
    }
    QString line = QStringLiteral("command: ") + command.text();
    if (!command.zoneId.isEmpty())
        line += QStringLiteral(" in ") + m_remote.nameOf(command.zoneId);
    tell(line); // first, so that what follows from it comes after it
    QString reason;
    if (!m_remote.obey(command, &reason))
        tell(QStringLiteral("command: refused: ") + reason);
}

void Simulator::takeFault(const QByteArray &payload)
{
    Action action;
    QString problem;
    if (Action::fromText(QString::fromUtf8(payload), &action, &problem))
        run(action);
    else
        tell(QStringLiteral("fault: not understood: %1").arg(problem));
}

void Simulator::updateClock()
{
    const bool needed = m_begun && m_options.speed > 0 && m_remote.isPlaying();
    if (needed && !m_clock.isActive())
        m_clock.start();
    else if (!needed)
        m_clock.stop();
}
