// SPDX-License-Identifier: GPL-3.0-or-later
#include "faketools.h"
#include "testkit/services/broker.h"
#include "testkit/waiting.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTest>

#include <functional>
#include <memory>

namespace {

const QString Doctor = QStringLiteral(TOUCHUI_CHECKOUT "/packaging/velunor-touchui-doctor");
const QString CoreTopic
    = QStringLiteral("Velunor/Controller/remote_control/v4/roon/Roon/serverUrl");

} // namespace

class TestDoctor;
using Preparation = std::function<void(TestDoctor &)>;
Q_DECLARE_METATYPE(Preparation)

/** What the doctor says of a machine in a folder, with a real broker. */
class TestDoctor : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aHealthyMachine();
    void findsWhatIsWrong_data();
    void findsWhatIsWrong();
    void ofSeveralBacklightsItTellsTheOneThatIsDriven();
    void triesAsTheServicesUser();
    void anOrdinaryUserIsNotTakenForTheService();
    void theJournalGivesTheTerminalNoOrders();
    void isCalledWrongly();

private:
    int run(const QStringList &arguments = {});
    void publishCore(const QByteArray &address);
    void machine(const char *file, const QByteArray &text)
    {
        m_tools->write(QStringLiteral("machine/") + QString::fromLatin1(file), text);
    }
    void forbid(const char *file)
    {
        m_tools->append(QStringLiteral("forbidden"), QByteArray(file) + '\n');
    }
    void remove(const char *file)
    {
        const QString path = m_tools->path(QStringLiteral("machine/") + QString::fromLatin1(file));
        QVERIFY(QFile::remove(path) || QDir(path).removeRecursively());
    }

    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<Broker> m_broker;
    QTcpServer m_core;
    QString m_said;
};

void TestDoctor::init()
{
    m_tools = std::make_unique<FakeTools>();
    m_tools->add(QStringLiteral("id"), "[ \"$1\" != -u ] || echo 0");
    m_tools->add(QStringLiteral("setpriv"),
        "echo \"$1 $2 $3\" >\"$here/tried\"; shift 3\n"
        "while read -r path; do case $3 in */$path) exit 1 ;; esac; done <\"$here/forbidden\"\n"
        "exec \"$@\"");
    m_tools->add(QStringLiteral("udevadm"),
        "case $* in */event0) echo ID_INPUT_KEYBOARD=1 ;; *) echo ID_INPUT_TOUCHSCREEN=1 ;; esac");
    m_tools->add(QStringLiteral("systemctl"), "cat \"$here/$1\" 2>/dev/null");
    m_tools->add(QStringLiteral("journalctl"), "echo the last line");
    m_tools->add(QStringLiteral("fc-match"), "cat \"$here/font\"");
    m_tools->add(QStringLiteral("findmnt"), "cat \"$here/mounted\"");
    m_tools->write(QStringLiteral("mounted"), "rw,relatime\n");
    m_tools->write(QStringLiteral("forbidden"), {});
    m_tools->write(QStringLiteral("font"), "Noto Sans");
    m_tools->write(QStringLiteral("is-active"), "active\n");
    m_tools->write(QStringLiteral("is-enabled"), "enabled\n");
    m_tools->write(QStringLiteral("show"), "LC_ALL=C.UTF-8 QT_QPA_PLATFORM=eglfs\n");
    machine("dev/dri/card1", {});
    machine("dev/input/event0", {});
    machine("dev/input/event1", {});
    machine("sys/class/drm/card1-DSI-1/status", "connected\n");
    machine("sys/class/drm/card1-DSI-1/modes", "800x480\n640x480\n");
    machine("sys/class/drm/card1-HDMI-A-1/status", "disconnected\n");
    machine("sys/class/backlight/panel0/brightness", "150\n");
    machine("sys/class/backlight/panel0/bl_power", "0\n");
    machine("data/velunor-touch.ini", "[LCD]\n");
    QVERIFY(m_core.listen(QHostAddress::LocalHost));
    m_broker = std::make_unique<Broker>();
    QVERIFY(m_broker->start());
    publishCore("127.0.0.1:" + QByteArray::number(m_core.serverPort()));
}

void TestDoctor::cleanup()
{
    if (QTest::currentTestFailed())
        qInfo().noquote() << m_said;
    m_broker.reset();
    m_core.close();
}

void TestDoctor::publishCore(const QByteArray &address)
{
    QProcess publisher;
    publisher.start(QStringLiteral("mosquitto_pub"),
        { QStringLiteral("-r"), QStringLiteral("-t"), CoreTopic, QStringLiteral("-m"),
            QString::fromLatin1(address) });
    QVERIFY(publisher.waitForFinished());
    QCOMPARE(publisher.exitCode(), 0);
}

int TestDoctor::run(const QStringList &arguments)
{
    QProcess doctor;
    QProcessEnvironment environment = m_tools->environment();
    environment.insert(
        QStringLiteral("VELUNOR_DOCTOR_ROOT"), m_tools->path(QStringLiteral("machine")));
    doctor.setProcessEnvironment(environment);
    doctor.setProcessChannelMode(QProcess::MergedChannels);
    doctor.start(Doctor, arguments);
    if (!doctor.waitForFinished() || doctor.exitStatus() != QProcess::NormalExit)
        return -1;
    m_said = QString::fromUtf8(doctor.readAll());
    return doctor.exitCode();
}

void TestDoctor::aHealthyMachine()
{
    QCOMPARE(run(), 0);
    const QString core = QString::number(m_core.serverPort());
    QCOMPARE(m_said.split(QLatin1Char('\n')),
        QStringList({
            QStringLiteral("ok  panel        /dev/dri/card1, card1-DSI-1, mode 800x480"),
            QStringLiteral("ok  touch        /dev/input/event1"),
            QStringLiteral("ok  backlight    /sys/class/backlight/panel0, brightness 150, "
                           "bl_power 0 (0 is on)"),
            QStringLiteral("ok  /data        settings have been saved"),
            QStringLiteral("ok  broker       127.0.0.1:1883"),
            QStringLiteral("ok  covers       127.0.0.1:") + core,
            QStringLiteral("ok  locale       C.UTF-8"),
            QStringLiteral("ok  fonts        Noto Sans"),
            QStringLiteral("ok  service      running"),
            QString(),
            QStringLiteral("The service said last:"),
            QStringLiteral("    the last line"),
            QString(),
        }));
}

void TestDoctor::findsWhatIsWrong_data()
{
    QTest::addColumn<Preparation>("prepare");
    QTest::addColumn<QString>("row"); // its beginning
    QTest::addColumn<int>("status");

    const auto fails = [](const char *name, const Preparation &prepare, const char *row) {
        QTest::newRow(name) << prepare << QString::fromLatin1(row) << 1;
    };
    const auto passes = [](const char *name, const Preparation &prepare, const char *row) {
        QTest::newRow(name) << prepare << QString::fromLatin1(row) << 0;
    };
    using Test = TestDoctor;
    fails(
        "no user", [](Test &test) { test.m_tools->add(QStringLiteral("id"), "exit 1"); },
        "NO  user         there is no user velunor-touchui");
    fails(
        "no graphics", [](Test &test) { test.remove("dev/dri"); },
        "NO  panel        there is no /dev/dri");
    fails(
        "no panel", [](Test &test) { test.remove("sys/class/drm/card1-DSI-1"); },
        "NO  panel        no connector says");
    fails(
        "forbidden panel", [](Test &test) { test.forbid("dev/dri/card1"); },
        "NO  panel        velunor-touchui may not open /dev/dri/card1");
    fails(
        "no touch", [](Test &test) { test.remove("dev/input/event1"); },
        "NO  touch        no touch device");
    fails(
        "forbidden touch", [](Test &test) { test.forbid("dev/input/event1"); },
        "NO  touch        velunor-touchui may not open /dev/input/event1");
    passes(
        "a mouse alone",
        [](Test &test) { test.m_tools->add(QStringLiteral("udevadm"), "echo ID_INPUT_MOUSE=1"); },
        "??  touch        /dev/input/event1 is a mouse");
    passes(
        "no backlight", [](Test &test) { test.remove("sys/class/backlight/panel0"); },
        "??  backlight    none");
    fails(
        "forbidden brightness", [](Test &test) { test.forbid("panel0/brightness"); },
        "NO  backlight    velunor-touchui may not write /sys/class/backlight/panel0/brightness");
    fails(
        "forbidden power", [](Test &test) { test.forbid("panel0/bl_power"); },
        "NO  backlight    velunor-touchui may not write /sys/class/backlight/panel0/bl_power");
    fails(
        "no data", [](Test &test) { test.remove("data"); }, "NO  /data        it is missing");
    fails(
        "forbidden data", [](Test &test) { test.forbid("data"); },
        "NO  /data        velunor-touchui may not write it");
    fails(
        "read-only data",
        [](Test &test) {
            test.forbid("data");
            test.m_tools->write(QStringLiteral("mounted"), "ro,relatime\n");
        },
        "NO  /data        it is mounted read-only");
    fails(
        "forbidden settings", [](Test &test) { test.forbid("data/velunor-touch.ini"); },
        "NO  /data        velunor-touchui may not change /data/velunor-touch.ini");
    passes(
        "no settings yet", [](Test &test) { test.remove("data/velunor-touch.ini"); },
        "ok  /data        nothing has been saved yet");
    fails(
        "no broker", [](Test &test) { QVERIFY(test.m_broker->stop()); },
        "NO  broker       nobody answers at 127.0.0.1:1883");
    passes(
        "no core yet", [](Test &test) { test.publishCore({}); },
        "??  covers       the Roon Core has not been published");
    passes(
        "core is away", [](Test &test) { test.m_core.close(); }, "??  covers       127.0.0.1:");
    passes(
        "core is nonsense", [](Test &test) { test.publishCore("$(reboot) x"); },
        "??  covers       the published address");
    passes(
        "locale of the default file",
        [](Test &test) {
            test.machine("etc/default/velunor-touchui", "#LC_ALL=C.UTF-8\nLC_ALL=C\n");
        },
        "??  locale       \"C\" is not UTF-8");
    passes(
        "another font",
        [](Test &test) { test.m_tools->write(QStringLiteral("font"), "DejaVu Sans"); },
        "??  fonts        DejaVu Sans stands in");
    fails(
        "no fonts", [](Test &test) { test.m_tools->write(QStringLiteral("font"), {}); },
        "NO  fonts        there are none");
    fails(
        "stopped",
        [](Test &test) { test.m_tools->write(QStringLiteral("is-active"), "inactive\n"); },
        "NO  service      inactive: systemctl start velunor-touchui");
    fails(
        "ends again and again",
        [](Test &test) { test.m_tools->write(QStringLiteral("is-active"), "activating\n"); },
        "NO  service      starting, or ending");
    passes(
        "no systemd",
        [](Test &test) {
            test.m_tools->add(QStringLiteral("systemctl"), "exit 127");
            test.m_tools->add(QStringLiteral("journalctl"), "exit 127");
        },
        "??  service      systemd does not answer");
    passes(
        "not at boot",
        [](Test &test) { test.m_tools->write(QStringLiteral("is-enabled"), "disabled\n"); },
        "??  service      not started at boot");
}

void TestDoctor::findsWhatIsWrong()
{
    QFETCH(Preparation, prepare);
    QFETCH(QString, row);
    QFETCH(int, status);
    prepare(*this);
    QCOMPARE(run(), status);
    QVERIFY(QString(QLatin1Char('\n') + m_said).contains(QLatin1Char('\n') + row));
    // One fault has one row, and nothing else is touched by it.
    QCOMPARE(m_said.count(QStringLiteral("NO ")), status);
}

void TestDoctor::ofSeveralBacklightsItTellsTheOneThatIsDriven()
{
    // The program takes the first in the order of the folder, which is hardly ever that of the
    // names.
    const QDir folder(m_tools->path(QStringLiteral("machine/sys/class/backlight")));
    const auto first = [&folder](QDir::SortFlags order) {
        return folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, order).value(0);
    };
    for (int i = 1; first(QDir::Unsorted) == first(QDir::Name); ++i) {
        QVERIFY(i < 100);
        const QByteArray panel = "sys/class/backlight/panel" + QByteArray::number(i);
        machine(panel + "/brightness", QByteArray::number(i));
        machine(panel + "/bl_power", "0\n");
    }
    QCOMPARE(run(), 0);
    QVERIFY2(m_said.contains(QStringLiteral("ok  backlight    /sys/class/backlight/")
                 + first(QDir::Unsorted) + QLatin1Char(',')),
        qPrintable(m_said));
}

void TestDoctor::triesAsTheServicesUser()
{
    QCOMPARE(run(), 0);
    QCOMPARE(m_tools->read(QStringLiteral("tried")).trimmed(),
        QByteArray("--reuid=velunor-touchui --regid=velunor-touchui --init-groups"));
}

void TestDoctor::anOrdinaryUserIsNotTakenForTheService()
{
    m_tools->add(QStringLiteral("id"), "[ \"$1\" != -u ] || echo 1000");
    remove("sys/class/backlight/panel0/brightness"); // neither may write it, not even root
    QCOMPARE(run(), 0);
    QVERIFY(m_said.contains(QLatin1String("??  user         not root")));
    QVERIFY(m_said.contains(QLatin1String("??  backlight    you may not write")));
    QCOMPARE(m_tools->read(QStringLiteral("tried")), QByteArray());
}

void TestDoctor::theJournalGivesTheTerminalNoOrders()
{
    m_tools->add(
        QStringLiteral("journalctl"), "printf 'Grün\\033[2J\\033]0;title\\007\\302\\2331mend\\n'");
    QCOMPARE(run(), 0);
    QVERIFY2(
        m_said.endsWith(QStringLiteral("\n    Grün?[2J?]0;title??1mend\n")), qPrintable(m_said));
}

void TestDoctor::isCalledWrongly()
{
    QCOMPARE(run({ QStringLiteral("--all") }), 2);
    QVERIFY(m_said.startsWith(QLatin1String("Usage: velunor-touchui-doctor")));
    QCOMPARE(run({ QStringLiteral("--help") }), 0);
    QVERIFY(m_said.startsWith(QLatin1String("Usage: velunor-touchui-doctor")));
}

QTEST_GUILESS_MAIN(TestDoctor)
#include "tst_doctor.moc"
