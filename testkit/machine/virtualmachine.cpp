// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/virtualmachine.h"

#include "testkit/waiting.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QProcess>

#include <csignal>

namespace {

const QString Snapshot = QStringLiteral("kept");
constexpr int Tablet = 32767; // both axes of the pointer
constexpr int StillMs = 1000; // the emulated machine draws several pictures a second
constexpr int AskEveryMs = 100;
constexpr int MonitorMs = 60000; // keeping the memory takes a while

QJsonObject event(const char *type, const QJsonObject &data)
{
    return { { QStringLiteral("type"), QLatin1String(type) }, { QStringLiteral("data"), data } };
}

} // namespace

VirtualMachine::VirtualMachine()
    : m_store(QStringLiteral(TOUCHUI_BUILD "/machine-XXXXXX"))
{
    if (!QFile::link(m_store.filePath(QStringLiteral("disk")), file("disk")))
        qFatal("a machine cannot be kept in %s", qUtf8Printable(m_store.path()));
}

VirtualMachine::~VirtualMachine()
{
    if (QTest::currentTestFailed() && isRunning()) {
        const QString kept = QStringLiteral(TOUCHUI_BUILD "/machine-failed-")
            + QLatin1String(QTest::currentTestFunction()) + QStringLiteral(".png");
        picture().save(kept);
        qWarning("what the panel shows: %s", qUtf8Printable(kept));
        qWarning("%s",
            run(QStringLiteral("journalctl --boot --no-pager --output=short-monotonic | "
                               "grep -v qemu-ga | tail --lines=100"))
                .output.constData());
    }
    cutPower();
}

bool VirtualMachine::launch()
{
    const QStringList arguments { QStringLiteral("--test"), m_directory.path(),
        QStringLiteral("--port"), QStringLiteral("1883"), QStringLiteral("--kernel"),
        QStringLiteral("systemd.setenv=SCENARIO=/usr/local/share/still.json"),
        QStringLiteral("--kernel"), QStringLiteral("systemd.setenv=SIMULATOR=--speed=0"),
        // As for the baselines: with distance fields, places in the glyph cache would matter.
        QStringLiteral("--kernel"), QStringLiteral("systemd.setenv=QML_DISABLE_DISTANCEFIELD=1") };
    QFile::remove(file("qmp"));
    QFile::remove(file("agent"));
    if (!m_qemu.start(QStringLiteral(TOUCHUI_CHECKOUT "/scripts/appliance"), arguments,
            QProcessEnvironment::systemEnvironment())) {
        qWarning("%s", qUtf8Printable(m_qemu.errorText()));
        return false;
    }
    if (!m_monitor.connectTo(file("qmp"), MonitorMs)
        || !m_agent.connectTo(file("agent"), MonitorMs)) {
        qWarning("QEMU does not start:\n%s", qUtf8Printable(m_qemu.lines().join('\n')));
        return false;
    }
    m_monitor.ask(QStringLiteral("qmp_capabilities"), {}, MonitorMs);
    return true;
}

bool VirtualMachine::start()
{
    QFile::remove(m_store.filePath(QStringLiteral("disk")));
    return launch();
}

bool VirtualMachine::startAgain()
{
    return launch();
}

bool VirtualMachine::startFrom(const QString &kept)
{
    const QString disk = m_store.filePath(QStringLiteral("disk"));
    QFile::remove(disk);
    if (!QFile::copy(kept, disk) || !launch())
        return false;
    const QString trouble = monitor(QStringLiteral("loadvm ") + Snapshot);
    if (!trouble.isEmpty())
        qWarning("%s", qUtf8Printable(trouble));
    return trouble.isEmpty() && waitForAgent(MonitorMs);
}

bool VirtualMachine::keepIn(const QString &kept)
{
    const QString trouble = monitor(QStringLiteral("savevm ") + Snapshot);
    if (!trouble.isEmpty())
        qWarning("%s", qUtf8Printable(trouble));
    cutPower();
    QFile::remove(kept);
    return trouble.isEmpty() && QFile::rename(m_store.filePath(QStringLiteral("disk")), kept);
}

void VirtualMachine::cutPower()
{
    if (!isRunning())
        return;
    m_qemu.sendSignal(SIGKILL);
    m_qemu.waitForExit();
}

bool VirtualMachine::waitForPowerOff(int milliseconds)
{
    return waitUntil([this] { return !isRunning(); }, milliseconds);
}

bool VirtualMachine::isEmulated()
{
    return !m_monitor.ask(QStringLiteral("query-kvm"), {}, MonitorMs)
                .value(QStringLiteral("return"))
                .toObject()
                .value(QStringLiteral("enabled"))
                .toBool();
}

QString VirtualMachine::monitor(const QString &line)
{
    const QJsonObject answer = m_monitor.ask(QStringLiteral("human-monitor-command"),
        { { QStringLiteral("command-line"), line } }, MonitorMs);
    return answer.isEmpty() ? QStringLiteral("QEMU does not answer")
                            : answer.value(QStringLiteral("return")).toString();
}

QImage VirtualMachine::picture()
{
    const QString taken = file("picture.ppm");
    m_monitor.ask(
        QStringLiteral("screendump"), { { QStringLiteral("filename"), taken } }, MonitorMs);
    // From a kept state on, until the guest draws again, QEMU shows the margin of the guest's
    // buffer.
    const QImage shown(taken);
    return shown.isNull() ? shown : shown.copy(QRect(QPoint(0, 0), m_size));
}

QImage VirtualMachine::stillPicture()
{
    QImage last;
    QImage now = picture();
    do {
        last = now;
        QTest::qWait(StillMs); // stillness is a length of time, there is nothing to wait for
        now = picture();
    } while (now != last);
    return now;
}

void VirtualMachine::pointer(const QPoint &place)
{
    const auto axis = [](const char *name, int value, int length) {
        return event("abs",
            { { QStringLiteral("axis"), QLatin1String(name) },
                { QStringLiteral("value"), (2 * value + 1) * Tablet / (2 * length) } });
    };
    m_monitor.ask(QStringLiteral("input-send-event"),
        { { QStringLiteral("events"),
            QJsonArray {
                axis("x", place.x(), m_size.width()), axis("y", place.y(), m_size.height()) } } },
        MonitorMs);
}

void VirtualMachine::button(bool down)
{
    m_monitor.ask(QStringLiteral("input-send-event"),
        { { QStringLiteral("events"),
            QJsonArray { event("btn",
                { { QStringLiteral("button"), QStringLiteral("left") },
                    { QStringLiteral("down"), down } }) } } },
        MonitorMs);
}

void VirtualMachine::touch(const QPoint &place)
{
    draw(place, place);
}

void VirtualMachine::draw(const QPoint &from, const QPoint &to)
{
    pointer(from);
    button(true);
    if (to != from)
        pointer(to);
    button(false);
}

VirtualMachine::Outcome VirtualMachine::run(const QString &command, int milliseconds)
{
    const QJsonObject started
        = m_agent
              .ask(QStringLiteral("guest-exec"),
                  { { QStringLiteral("path"), QStringLiteral("/bin/sh") },
                      { QStringLiteral("arg"), QJsonArray { QStringLiteral("-c"), command } },
                      { QStringLiteral("capture-output"), true } },
                  milliseconds)
              .value(QStringLiteral("return"))
              .toObject();
    QJsonObject ended;
    if (!started.isEmpty()) {
        // Whoever asks all the time takes the emulated processor its own.
        QElapsedTimer time;
        time.start();
        do {
            QTest::qWait(AskEveryMs);
            ended = m_agent.ask(QStringLiteral("guest-exec-status"), started, milliseconds)
                        .value(QStringLiteral("return"))
                        .toObject();
        } while (!ended.isEmpty() && !ended.value(QStringLiteral("exited")).toBool()
            && time.elapsed() < milliseconds);
    }
    if (!ended.value(QStringLiteral("exited")).toBool())
        return { -1, {} };
    const auto decoded = [&](const char *key) {
        return QByteArray::fromBase64(ended.value(QLatin1String(key)).toString().toLatin1());
    };
    return { ended.value(QStringLiteral("exitcode")).toInt(-1),
        decoded("out-data") + decoded("err-data") };
}

bool VirtualMachine::waitForAgent(int milliseconds)
{
    return m_agent.synchronise(QStringLiteral("guest-sync"), milliseconds);
}

VirtualMachine::Outcome VirtualMachine::look(const QString &command)
{
    const QString whole = m_store.filePath(QStringLiteral("whole"));
    QProcess shell;
    shell.start(QStringLiteral("sh"),
        { QStringLiteral("-euc"),
            QStringLiteral("PATH=$PATH:/sbin:/usr/sbin; qemu-img convert -O raw \"$0\" \"$1\"; ")
                + command,
            m_store.filePath(QStringLiteral("disk")), whole });
    const bool ended = shell.waitForFinished(CommandMs);
    QFile::remove(whole);
    return { ended ? shell.exitCode() : -1, shell.readAllStandardOutput() };
}

QByteArray VirtualMachine::faultsOfDisk()
{
    const Outcome check = look(QStringLiteral("e2fsck -fn \"$1\""));
    return check.status == 0 ? QByteArray() : check.output + "e2fsck has ended with an error";
}

QByteArray VirtualMachine::fileOnDisk(const QString &path)
{
    // The journal is replayed, as the kernel does it; status 1 tells of that.
    return look(QStringLiteral("e2fsck -fy \"$1\" >&2 || [ $? -eq 1 ]; debugfs -R 'cat %1' \"$1\"")
                    .arg(path))
        .output;
}
