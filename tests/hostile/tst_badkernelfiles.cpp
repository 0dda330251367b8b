// SPDX-License-Identifier: GPL-3.0-or-later
#include "ordeal.h"

using namespace PageNames;

namespace {

const QString Unwritten = "SysFile::write() failed to open file: /sys/class/backlight/panel0/";

} // namespace

/** A panel that the kernel does not show, does not let anybody write, or takes away. */
class TestBadKernelFiles : public Ordeal {
    Q_OBJECT

private slots:
    void missing();
    void readOnly_data();
    void readOnly();
    void vanishing();
};

void TestBadKernelFiles::missing()
{
    house().panel.remove();
    QVERIFY(startPlayer());
    QVERIFY(comesThrough(Player, UsualBound));
    QVERIFY(program().count(Line::warning("SysFile::write() failed to open file: ")) > 0);
}

void TestBadKernelFiles::readOnly_data()
{
    QTest::addColumn<bool>("later");
    QTest::newRow("from the start") << false;
    QTest::newRow("while it runs") << true;
}

void TestBadKernelFiles::readOnly()
{
    QFETCH(bool, later);
    if (!later)
        house().panel.makeUnwritable();
    QVERIFY(startPlayer());
    if (later)
        house().panel.makeUnwritable();
    const int before = program().logSize();
    QVERIFY(comesThrough(Player, UsualBound));
    QVERIFY(program().count(Line::warning(Unwritten + "brightness"), before) >= 3);
    QVERIFY(program().count(Line::warning(Unwritten + "bl_power"), before) >= 2);
}

void TestBadKernelFiles::vanishing()
{
    QVERIFY(startPlayer());
    house().panel.remove();
    QVERIFY(answersTouches(Player));
    QVERIFY(program().count(Line::warning(Unwritten + "brightness")) >= 3);
    QVERIFY(program().count(Line::warning(Unwritten + "bl_power")) >= 2);
    QCOMPARE(house().panel.brightness(), QByteArray()); // it is not made anew
    // When the panel is back it is written as before.
    house().panel.create();
    QVERIFY(comesThrough(Player, UsualBound));
    QCOMPARE(house().panel.brightness(), QByteArray("150"));
    QCOMPARE(house().panel.power(), QByteArray("0"));
}

QTEST_GUILESS_MAIN(TestBadKernelFiles)
#include "tst_badkernelfiles.moc"
