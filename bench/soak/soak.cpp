// SPDX-License-Identifier: GPL-3.0-or-later
#include "soak.h"

#include "bench/eventwait.h"
#include "bench/statistics.h"
#include "bench/subject.h"
#include "simulator/services/topics.h"
#include "testkit/pagenames.h"
#include "testkit/process/processfigures.h"

#include <QTextStream>

#include <cmath>
#include <cstdio>

using namespace PageNames;

namespace {

// An hour has at least a million messages, ten thousand covers and two thousand page switches.
constexpr int RoundsPerHour = 10080;
constexpr int MessagesPerRound = 100;
constexpr int RoundsPerTour = 5;    // each a tour through four pages
constexpr int CoverKeys = 500;      // more than anything could keep
constexpr int Samples = 200;        // over the whole time
constexpr double GrowthGoal = 0.02; // of what is there after the first tenth

} // namespace

Soak::Soak(double hours)
    : m_rounds(qMax(Samples, int(std::lround(hours * RoundsPerHour))))
    , m_roundMs(3600.0 * 1000 / RoundsPerHour)
{
}

bool Soak::start(const Display &display)
{
    for (int i = 0; i < CoverKeys; ++i) {
        ImageServer::Behaviour cover;
        cover.colour = QColor::fromHsv(i * 359 / CoverKeys, 200, 200);
        m_appliance.images.setBehaviour(QString::number(i), cover);
    }
    Subject::prepareProbedProgram(m_appliance.program, Subject::OpenGl, display);
    if (!m_appliance.start())
        return false;
    m_appliance.publishVolume();
    m_time.start();
    return true;
}

void Soak::publish(const QString &topic, const QByteArray &payload)
{
    m_appliance.services.publish(topic, payload);
    ++m_messages;
}

/** A track begins, is played for a while, and the other services go about their work. */
bool Soak::round(int number)
{
    const auto zone = [](const char *key) { return Topics::zone("z1", key); };
    const QByteArray text = QByteArray::number(number);
    publish(zone("nowPlaying/imageKey"), QByteArray::number(number % CoverKeys));
    publish(zone("nowPlaying/song"), "Song " + text + QByteArray(number % 60, 'o'));
    publish(zone("nowPlaying/artist"), "Artist " + text);
    publish(zone("nowPlaying/album"), "Album " + text);
    publish(zone("nowPlaying/length"), QByteArray::number(100 + number % 900));
    publish(zone("state"), number % 3 ? "playing" : "loading");
    publish(zone("settings/shuffle"), number % 2 ? "true" : "false");
    publish(Topics::settings("touchscreen_scrolling"), number % 4 ? "true" : "false");
    publish(Topics::settings("touchscreen_show_blur_image"), number % 7 ? "true" : "false");
    publish(Topics::core("version"), text);
    // A zone that comes, speaks and goes.
    const QString guest = "guest" + QString::number(number);
    publish(Topics::availableZones(),
        R"([{"id":"z1","name":"Kitchen"},{"id":")" + guest.toUtf8() + R"(","name":"Guest"}])");
    publish(Topics::zone(guest, "nowPlaying/song"), "Hello");
    publish(Topics::zone(guest, "outputs"), R"([{"display_name":"Guest"}])");
    publish(Topics::availableZones(), R"([{"id":"z1","name":"Kitchen"}])");
    // What nobody understands.
    publish(zone("nonsense"), text);
    publish(zone("outputs"), "{");
    publish(Topics::command(), "{\"command\":\"" + text + "\"}");
    for (int i = 17; i < MessagesPerRound; ++i) {
        if (i % 4 == 0)
            publish(zone("volume/value"), QByteArray::number((number + i) % 80));
        else
            publish(zone("nowPlaying/seekPosition"), QByteArray::number(i));
    }
    if (!m_appliance.services.flush())
        return false;
    m_appliance.services.clear();
    return number % RoundsPerTour != 0 || tour(number);
}

/** Through the pages by touches, one way and the other in turns, and back to the player. */
bool Soak::tour(int number)
{
    publish(Topics::zone("z1", "state"), "playing");
    Probe &probe = m_appliance.program.probe();
    const auto go = [this](const QString &page) {
        ++m_pages;
        return m_appliance.waitForPage(page);
    };
    if (number % (2 * RoundsPerTour) == 0)
        return probe.tap("settingsCorner") && go(Settings) && probe.tap("title") && go(Player);
    return probe.tap("cover") && go(Clock) && probe.tap("Clock") && go(ScreenSaver)
        && probe.tap("ScreenSaver") && go(Player);
}

bool Soak::takeSample(QTextStream &record)
{
    const qint64 process = m_appliance.program.processId();
    // Of the same page, with a cover, so that only what is left over counts.
    const Sample sample { double(m_time.elapsed()) / 60000,
        double(ProcessFigures::privateKiB(process)) / 1024, ProcessFigures::openFiles(process),
        ProcessFigures::threads(process),
        m_appliance.program.probe().alive(Probe::Target::type("QObject")) };
    if (sample.objects <= 0)
        return false;
    m_samples.append(sample);
    record << sample.minutes << ',' << sample.privateMiB << ',' << sample.files << ','
           << sample.threads << ',' << sample.objects << ',' << m_messages << '\n';
    record.flush();
    return true;
}

bool Soak::run(const Display &display, QTextStream &record)
{
    if (!start(display))
        return false;
    record << "minutes,private_mib,files,threads,objects,messages\n";
    for (int number = 0; number < m_rounds; ++number) {
        if (!round(number))
            return false;
        if ((number + 1) * Samples / m_rounds > number * Samples / m_rounds && !takeSample(record))
            return false;
        const qint64 ahead = qint64((number + 1) * m_roundMs) - m_time.elapsed();
        if (ahead > 0)
            serveEvents(int(ahead));
    }
    return m_appliance.program.stop();
}

QVector<double> Soak::series(double from, double to, double (*figure)(const Sample &)) const
{
    QVector<double> result;
    for (int i = int(from * m_samples.size()); i < int(to * m_samples.size()); ++i)
        result.append(figure(m_samples.at(i)));
    return result;
}

bool Soak::report() const
{
    struct Figure {
        const char *name;
        double (*value)(const Sample &);
    };
    const Figure figures[] {
        { "private memory, MiB", [](const Sample &sample) { return sample.privateMiB; } },
        { "open files", [](const Sample &sample) { return double(sample.files); } },
        { "threads", [](const Sample &sample) { return double(sample.threads); } },
        { "objects in the program", [](const Sample &sample) { return double(sample.objects); } },
    };
    std::printf("%.0f minutes: %lld messages, %d covers fetched, %d pages\n",
        m_samples.last().minutes, m_messages, m_appliance.images.requests().size(), m_pages);
    // Medians, because a sample meets the program in the middle of its work.
    std::printf("%-24s %12s %12s %8s\n", "", "second tenth", "last tenth", "growth");
    bool isWell = true;
    for (const Figure &figure : figures) {
        const double before = median(series(0.1, 0.2, figure.value));
        const double after = median(series(0.9, 1.0, figure.value));
        const double growth = (after - before) / before;
        isWell = isWell && growth <= GrowthGoal;
        std::printf("%-24s %12.1f %12.1f %+7.1f%%\n", figure.name, before, after, 100 * growth);
    }
    return isWell;
}
