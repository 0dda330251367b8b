// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/house/library.h"

#include <QSet>
#include <QTest>

#include <algorithm>

class TestLibrary : public QObject {
    Q_OBJECT

private slots:
    void everyAlbumCanBePlayed();
    void namesAndKeysAreUnique();
    void hasTheAwkwardOnes();
    void zonesAreUniqueAndTheirLimitsAgree();
};

void TestLibrary::everyAlbumCanBePlayed()
{
    for (const Album &album : Library::albums()) {
        QVERIFY2(!album.tracks.isEmpty(), qPrintable(album.name));
        for (const Track &track : album.tracks) {
            QVERIFY2(!track.song.isEmpty(), qPrintable(album.name));
            QVERIFY2(track.seconds > 0, qPrintable(track.song));
        }
    }
}

void TestLibrary::namesAndKeysAreUnique()
{
    QSet<QString> names;
    QSet<QByteArray> keys;
    for (const Album &album : Library::albums()) {
        names.insert(album.name);
        keys.insert(album.imageKey());
        QCOMPARE(Library::findAlbum(album.name), &album);
    }
    QCOMPARE(names.size(), Library::albums().size());
    QCOMPARE(keys.size(), Library::albums().size());
    QVERIFY(!Library::findAlbum(QStringLiteral("lanterns on the breakwater")));
}

void TestLibrary::hasTheAwkwardOnes()
{
    bool rightToLeft = false;
    bool eastAsian = false;
    bool longTitle = false;
    bool station = false;
    bool noCover = false;
    bool overAnHour = false;
    for (const Album &album : Library::albums()) {
        station = station || album.radio;
        noCover = noCover || album.imageKey() == "NO_IMAGE";
        for (const Track &track : album.tracks) {
            rightToLeft = rightToLeft || track.song.isRightToLeft();
            eastAsian = eastAsian
                || std::any_of(track.song.cbegin(), track.song.cend(),
                    [](QChar c) { return c.script() == QChar::Script_Han; });
            longTitle = longTitle || track.song.size() > 120;
            overAnHour = overAnHour || track.seconds > 3600;
        }
    }
    QVERIFY(rightToLeft);
    QVERIFY(eastAsian);
    QVERIFY(longTitle);
    QVERIFY(station);
    QVERIFY(noCover);
    QVERIFY(overAnHour);
}

void TestLibrary::zonesAreUniqueAndTheirLimitsAgree()
{
    QSet<QString> ids;
    QSet<QString> names;
    bool halfSteps = false;
    bool fixedVolume = false;
    for (const ZoneDescription &zone : Library::zones()) {
        ids.insert(zone.id);
        names.insert(zone.name);
        const VolumeRange &range = zone.volume;
        QVERIFY2(range.min <= range.hardLimitMin && range.hardLimitMin <= range.start
                && range.start <= range.softLimit && range.softLimit <= range.hardLimitMax
                && range.hardLimitMax <= range.max && range.step > 0,
            qPrintable(zone.name));
        halfSteps = halfSteps || (range.type == "db" && range.step < 1);
        fixedVolume = fixedVolume || !range.available;
    }
    QCOMPARE(ids.size(), Library::zones().size());
    QCOMPARE(names.size(), Library::zones().size());
    QVERIFY(halfSteps);
    QVERIFY(fixedVolume);
}

QTEST_GUILESS_MAIN(TestLibrary)
#include "tst_library.moc"
