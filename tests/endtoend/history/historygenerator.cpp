// SPDX-License-Identifier: GPL-3.0-or-later
#include "historygenerator.h"

#include "topicbegin.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QStringList Rooms { "Kitchen", "Bath", "Hall", QStringLiteral("B\u00fcro & Flur"),
    "<b>Attic</b>" };

/** Those of the pictures that the image service has, and some that it has not. */
const QByteArrayList ImageKeys { "red", "green", "blue", "late", "later", "red", "green", "blue",
    "late", "later", "trouble", "garbage", "missing", "" };

} // namespace

HistoryGenerator::HistoryGenerator(quint32 seed, const QByteArrayList &coreAddresses)
    : m_random(seed)
    , m_coreAddresses(coreAddresses)
    , m_smallVolumeChanges(chance(20))
    , m_zone("z0")
    , m_zoneIds { m_zone }
{
}

History HistoryGenerator::history()
{
    m_history.clear();
    beginning();
    m_calm = false;
    if (chance(65))
        happen(50 + below(150));
    returnToPlayer();
    m_calm = true;
    happen(50 + below(150));
    return m_history;
}

void HistoryGenerator::happen(int steps)
{
    chooseActivities();
    const int size = m_history.size() + steps;
    while (m_history.size() < size)
        (this->*oneOf(m_activities))();
}

void HistoryGenerator::chooseActivities()
{
    struct {
        Activity activity;
        int weight;
    } const all[] {
        { &HistoryGenerator::zoneText, 8 },
        { &HistoryGenerator::zoneFlag, 8 },
        { &HistoryGenerator::zoneNumber, 4 },
        { &HistoryGenerator::playbackState, 3 },
        { &HistoryGenerator::loop, 2 },
        { &HistoryGenerator::picture, 5 },
        { &HistoryGenerator::track, 8 },
        { &HistoryGenerator::volume, 6 },
        { &HistoryGenerator::range, 4 },
        { &HistoryGenerator::zoneList, m_calm ? 1 : 3 },
        { &HistoryGenerator::core, 6 },
        { &HistoryGenerator::setting, 5 },
        { &HistoryGenerator::state, 2 },
        { &HistoryGenerator::oddity, 2 },
        { &HistoryGenerator::touch, 12 },
    };
    m_activities = QVector<Activity>(15, &HistoryGenerator::wait);
    for (const auto &candidate : all) {
        if (chance(60))
            m_activities += QVector<Activity>(candidate.weight, candidate.activity);
    }
}

void HistoryGenerator::shuffle(History *history)
{
    for (int i = history->size() - 1; i > 0; --i)
        std::swap((*history)[i], (*history)[below(i + 1)]);
}

void HistoryGenerator::publish(const QString &topic, const QByteArray &payload)
{
    m_history.append(Step::message(topic, payload));
}

void HistoryGenerator::publishZone(const QString &key, const QByteArray &payload)
{
    publish(TopicBegin::Zones + m_zone + QLatin1Char('/') + key, payload);
}

void HistoryGenerator::beginning()
{
    publish(TopicBegin::Core + "serverUrl", m_coreAddresses.first());
    publish(TopicBegin::Core + "coreDetected", "true");
    publish(Topics::availableZones(), R"([{"id":"z0","name":"Kitchen"}])");
    publishZone("name", "Kitchen");
    publishZone("state", "playing");
    m_history.append(Step::wait());
}

void HistoryGenerator::returnToPlayer()
{
    m_history.append(Step::touch(Step::Release, {}));
    publish(TopicBegin::Core + "coreDetected", "true");
    zoneList();
    publish(TopicBegin::Settings + "touchscreen_screensaver_time", "10");
    m_history.append(Step::wait());
    m_history.append(Step::goToPlayer());
}

void HistoryGenerator::zoneText()
{
    static const QStringList keys { "nowPlaying/song", "nowPlaying/artist", "nowPlaying/album" };
    publishZone(oneOf(keys), text());
}

void HistoryGenerator::zoneFlag()
{
    static const QStringList keys { "is_previous_allowed", "is_next_allowed", "is_pause_allowed",
        "is_play_allowed", "is_seek_allowed", "settings/shuffle", "settings/autoRadio",
        "volume/available", "volume/is_muted" };
    publishZone(oneOf(keys), flag());
}

void HistoryGenerator::zoneNumber()
{
    static const QStringList keys { "nowPlaying/seekPosition", "nowPlaying/length",
        "queue_items_remaining", "queue_time_remaining" };
    publishZone(oneOf(keys), number());
}

void HistoryGenerator::playbackState()
{
    static const QByteArrayList states { "playing", "playing", "paused", "stopped", "loading",
        "unknown", "", "PLAYING" };
    publishZone("state", oneOf(states));
}

void HistoryGenerator::loop()
{
    static const QByteArrayList loops { "disabled", "loop", "loop_one", "", "shuffle" };
    publishZone("settings/loop", oneOf(loops));
}

void HistoryGenerator::picture()
{
    publishZone("nowPlaying/imageKey", oneOf(ImageKeys));
}

/** The next track: all of it, in any order. */
void HistoryGenerator::track()
{
    History messages;
    std::swap(messages, m_history);
    publishZone("nowPlaying/song", text());
    if (chance(70))
        publishZone("nowPlaying/artist", text());
    if (chance(70))
        publishZone("nowPlaying/album", text());
    publishZone("nowPlaying/imageKey", oneOf(ImageKeys));
    publishZone("nowPlaying/length", number());
    publishZone("nowPlaying/seekPosition", number());
    shuffle(&m_history);
    std::swap(messages, m_history);
    m_history += messages;
}

void HistoryGenerator::volume()
{
    static const QByteArrayList small { "40.05", "40", "40.1", "39.95", "0.05", "0" };
    if (m_smallVolumeChanges && chance(50))
        publishZone("volume/value", oneOf(small));
    else
        publishZone("volume/value", QByteArray::number(below(240) / 2.0 - 20));
}

void HistoryGenerator::range()
{
    static const QStringList ends { "volume/min", "volume/max", "volume/hard_limit_min",
        "volume/hard_limit_max", "volume/soft_limit" };
    static const QByteArrayList values { "0", "100", "75", "-80", "-10.5", "50", "nan", "" };
    static const QByteArrayList steps { "1", "0.5", "2", "0", "-1", "0.1", "5", "abc" };
    if (chance(30))
        publishZone("volume/step", oneOf(steps));
    else
        publishZone(oneOf(ends), oneOf(values));
}

/** Another list of zones: rooms alone and in groups, most often with the first one among them. */
void HistoryGenerator::zoneList()
{
    if (!m_calm && chance(8)) {
        static const QByteArrayList odd { "[]", "", "{}", "[{}]", "no list", R"([{"id":"z1"}])" };
        publish(Topics::availableZones(), oneOf(odd));
        return;
    }
    QJsonArray list;
    m_zoneIds.clear();
    QStringList rooms = Rooms;
    while (!rooms.isEmpty()) {
        QStringList members;
        do
            members.append(rooms.takeAt(below(rooms.size())));
        while (!rooms.isEmpty() && chance(25));
        const bool hasFirst = members.contains(Rooms.first());
        if (chance(20) && !(m_calm && hasFirst))
            continue;
        const int number = Rooms.indexOf(members.first());
        const QString id = QString(members.size() > 1 ? "g%1" : "z%1").arg(number);
        const QString name = members.join(" + ");
        list.append(QJsonObject { { "id", id }, { "name", name } });
        m_zoneIds.append(id);
    }
    publish(Topics::availableZones(), QJsonDocument(list).toJson(QJsonDocument::Compact));
    // A group's service tells what it is, though not always at once.
    for (const QJsonValue &element : qAsConst(list)) {
        m_zone = element["id"].toString();
        if (chance(m_calm ? 100 : 60))
            publishZone("name", element["name"].toString().toUtf8());
        if (chance(30))
            outputs();
    }
    if (!m_zoneIds.isEmpty())
        m_zone = oneOf(m_zoneIds);
    for (const QJsonValue &element : qAsConst(list)) {
        if (element["name"].toString().contains(Rooms.first()) && chance(80))
            m_zone = element["id"].toString();
    }
}

void HistoryGenerator::outputs()
{
    QJsonArray outputs;
    for (const QString &room : Rooms) {
        if (chance(40))
            outputs.append(QJsonObject { { "display_name", room } });
    }
    publishZone("outputs", QJsonDocument(outputs).toJson(QJsonDocument::Compact));
}

void HistoryGenerator::core()
{
    static const QByteArrayList names { "Core", "", "Other" };
    switch (below(4)) {
    case 0:
        publish(TopicBegin::Core + "coreDetected", m_calm || chance(75) ? "true" : flag());
        break;
    case 1:
        publish(TopicBegin::Core + "serverName", oneOf(names));
        break;
    default:
        publish(TopicBegin::Core + "serverUrl", oneOf(m_coreAddresses));
        break;
    }
}

void HistoryGenerator::setting()
{
    static const QStringList flags { "touchscreen_scrolling", "touchscreen_scrolling",
        "touchscreen_hide_option_buttons", "touchscreen_show_blur_image", "touchscreen_clock24",
        "touchscreen_blankscreen", "touchscreen_hide_power_button" };
    static const QByteArrayList colours { "grey", "green", "custom", "purple", "" };
    static const QByteArrayList times { "10", "5", "0", "300", "many" };
    if (chance(85))
        publish(TopicBegin::Settings + oneOf(flags), flag());
    else if (chance(60))
        publish(TopicBegin::Settings + "touchscreen_clockcolor", oneOf(colours));
    else
        publish(TopicBegin::Settings + "touchscreen_screensaver_time", m_calm ? "5" : oneOf(times));
}

void HistoryGenerator::state()
{
    static const QStringList flags { "UpdateAvailable", "UpdateAvailable", "UpdateInhibited",
        "RequireReboot", "TimeSynced", "UpdateInfo" };
    publish(TopicBegin::State + oneOf(flags), flag());
}

/** What no service should send. */
void HistoryGenerator::oddity()
{
    static const QStringList topics { TopicBegin::Core + "unknown", TopicBegin::Zones + "/name",
        TopicBegin::Zones + "z0", TopicBegin::Zones + "z0/unknown",
        TopicBegin::Zones + "z0/settings", TopicBegin::Zones + "z0/nowPlaying",
        TopicBegin::Zones + "stranger/name", TopicBegin::Zones + "z0/id",
        TopicBegin::Settings + "unknown", TopicBegin::State + "Unknown",
        TopicBegin::Spotify + "state", Topics::connected() };
    if (!m_calm && chance(30))
        publish(Topics::command(), chance(50) ? R"({"command":"toggle_standby"})" : "{");
    else
        publish(oneOf(topics), text());
}

void HistoryGenerator::touch()
{
    static const QStringList items { "radio", "shuffle", "loop", "playPause", "previous", "next",
        "zoneName", "volumeBox", "volumeBox", "volumeUp", "volumeDown", "updateBadge",
        "volumeSlider", "zoneListHeader" };
    static const QStringList waysOut { "cover", "settingsCorner", "cycleCorner" };
    if (chance(50)) {
        m_history.append(Step::tapItem(!m_calm && chance(15) ? oneOf(waysOut) : oneOf(items)));
        return;
    }
    // On the panel right of the cover, where the pop-ups are as well; otherwise anywhere.
    const bool inside = m_calm || chance(70);
    const auto place = [this, inside] {
        const QPointF anywhere(below(1000) / 1000.0, below(1000) / 1000.0);
        return inside ? QPointF(0.52 + 0.36 * anywhere.x(), 0.2 + 0.65 * anywhere.y()) : anywhere;
    };
    switch (below(4)) {
    case 0: {
        const QPointF tapped = place();
        m_history.append(Step::touch(Step::Press, tapped));
        m_history.append(Step::touch(Step::Release, tapped));
        break;
    }
    case 1:
        m_history.append(Step::touch(Step::Press, place()));
        break;
    case 2:
        m_history.append(Step::touch(Step::Move, place()));
        break;
    default:
        m_history.append(Step::touch(Step::Release, place()));
        break;
    }
}

void HistoryGenerator::wait()
{
    m_history.append(Step::wait());
}

QByteArray HistoryGenerator::text()
{
    static const QByteArrayList texts { "", "Hi", "Half", "Relief", "Leaf by Leaf", "Ode to Joy",
        "A title of middle length", "Caf\xc3\xa9 del Mar", "\xe4\xb8\xad\xe6\x96\x87\xe6\xad\x8c",
        "\xd7\xa9\xd7\x9c\xd7\x95\xd7\x9d", "<b>bold</b> & <i>more</i>", "two\nlines", "   ",
        "broken \xc3\x28 text", QByteArray("zero\0byte", 9), "0" };
    switch (below(5)) {
    case 0:
    case 1:
        return oneOf(texts);
    case 2:
        return longText(3 + below(5));
    case 3:
        return longText(8 + below(20));
    default:
        return chance(10) ? longText(500) : longText(2 + below(40));
    }
}

QByteArray HistoryGenerator::longText(int words)
{
    static const QByteArrayList pool { "symphony", "in", "D", "minor", "for", "strings", "Op.",
        "125", "- Allegro", "ma non troppo", "(live)", "WWW", "iii", "Stra\303\237e", "of", "f" };
    QByteArrayList text;
    for (int i = 0; i < words; ++i)
        text.append(oneOf(pool));
    return text.join(' ');
}

QByteArray HistoryGenerator::number()
{
    static const QByteArrayList odd { "0", "1", "59", "60", "3725", "-1", "abc", "", "4294967295",
        "4294967296", "1e3", "12.5" };
    return chance(40) ? oneOf(odd) : QByteArray::number(below(400));
}

QByteArray HistoryGenerator::flag()
{
    static const QByteArrayList flags { "true", "true", "true", "false", "false", "0", "1", "",
        "False", "no" };
    return oneOf(flags);
}
