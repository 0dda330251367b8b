// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/remotecommand.h"

#include <QTest>

class TestRemoteCommand : public QObject {
    Q_OBJECT

private slots:
    void understands_data();
    void understands();
    void malformedIsInvalidWithAReason_data();
    void malformedIsInvalidWithAReason();
};

void TestRemoteCommand::understands_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    const auto row
        = [](const char *name, const char *payload, RemoteCommand::Kind kind, const char *text) {
              QTest::newRow(name) << QByteArray(payload) << int(kind) << QString::fromLatin1(text);
          };
    row("play/pause", R"({"command":"playpause","zone_id":"Z"})", RemoteCommand::PlayPause,
        "play/pause");
    row("previous", R"({"command":"previous","zone_id":"Z"})", RemoteCommand::Previous, "previous");
    row("next", R"({"command":"next","zone_id":"Z"})", RemoteCommand::Next, "next");
    row("radio", R"({"command":"set_radio","radio":true,"zone_id":"Z"})", RemoteCommand::SetRadio,
        "radio on");
    row("shuffle", R"({"command":"set_shuffle","shuffle":false,"zone_id":"Z"})",
        RemoteCommand::SetShuffle, "shuffle off");
    row("loop", R"({"command":"set_loopmode","loop":"loop_one","zone_id":"Z"})",
        RemoteCommand::SetLoop, "loop \"loop_one\"");
    row("absolute", R"({"command":"set_volume","how":"absolute","value":33.3,"zone_id":"Z"})",
        RemoteCommand::SetVolume, "volume to 33.3");
    row("up", R"({"command":"set_volume","how":"relative","value":0.5,"zone_id":"Z"})",
        RemoteCommand::ChangeVolume, "volume by +0.5");
    row("down", R"({"command":"set_volume","how":"relative","value":-1.0,"zone_id":"Z"})",
        RemoteCommand::ChangeVolume, "volume by -1");
    row("standby", R"({"command":"toggle_standby"})", RemoteCommand::ToggleStandby,
        "toggle standby (for the display)");
}

void TestRemoteCommand::understands()
{
    QFETCH(QByteArray, payload);
    QFETCH(int, kind);
    QFETCH(QString, text);
    const RemoteCommand command = RemoteCommand::parse(payload);
    QCOMPARE(int(command.kind), kind);
    QCOMPARE(command.text(), text);
    QCOMPARE(
        command.zoneId, kind == RemoteCommand::ToggleStandby ? QString() : QStringLiteral("Z"));
}

void TestRemoteCommand::malformedIsInvalidWithAReason_data()
{
    QTest::addColumn<QByteArray>("payload");
    const char *const payloads[] = { "", "{", "[]", "7", "\xff\xfe", "{}", R"({"command":7})",
        R"({"command":"NEXT","zone_id":"Z"})", R"({"command":"next"})",
        R"({"command":"next","zone_id":7})", R"({"command":"set_radio","zone_id":"Z"})",
        R"({"command":"set_radio","radio":"true","zone_id":"Z"})",
        R"({"command":"set_shuffle","radio":true,"zone_id":"Z"})",
        R"({"command":"set_volume","value":1,"zone_id":"Z"})",
        R"({"command":"set_volume","how":"sideways","value":1,"zone_id":"Z"})",
        R"({"command":"set_volume","how":"absolute","value":"1","zone_id":"Z"})",
        R"({"command":"set_volume","how":"absolute","value":nan,"zone_id":"Z"})" };
    for (const char *const payload : payloads)
        QTest::newRow(payload) << QByteArray(payload);
}

void TestRemoteCommand::malformedIsInvalidWithAReason()
{
    QFETCH(QByteArray, payload);
    const RemoteCommand command = RemoteCommand::parse(payload);
    QCOMPARE(int(command.kind), int(RemoteCommand::Invalid));
    QVERIFY(!command.error.isEmpty());
}

QTEST_GUILESS_MAIN(TestRemoteCommand)
#include "tst_remotecommand.moc"
