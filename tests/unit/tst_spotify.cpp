// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"
#include "metatable.h"
#include "samplevalue.h"
#include "spotify.h"

#include <QTest>

class TestSpotify : public QObject {
    Q_OBJECT

private slots:
    void init() { m_log.reset(new LogCapture); }
    void cleanup() { m_log.reset(); }

    void metaObjectIsTheInterface();
    void constructorLogsItsLine();
    void startsEmpty();
    void keepsWhatIsWritten_data();
    void keepsWhatIsWritten();
    void instanceIsOneObject();

private:
    QScopedPointer<LogCapture> m_log;
};

void TestSpotify::metaObjectIsTheInterface()
{
    const QMetaObject &meta = Spotify::staticMetaObject;
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta),
        QStringList({ "QString state read write", "uint nowPlaying_seekPosition read write",
            "uint nowPlaying_length read write", "QString nowPlaying_album read write",
            "QString nowPlaying_song read write", "QString nowPlaying_artist read write",
            "QString nowPlaying_imageUrl read write" }));
    QCOMPARE(methodTable(meta), QStringList());
    QCOMPARE(enumeratorTable(meta), QStringList());
}

void TestSpotify::constructorLogsItsLine()
{
    const Spotify spotify;
    QCOMPARE(m_log->take(), QStringList({ constructorLine(QStringLiteral("Spotify")) }));
}

void TestSpotify::startsEmpty()
{
    const Spotify spotify;
    QVERIFY(!spotify.parent());
    const QMetaObject &meta = Spotify::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QVariant value = meta.property(i).read(&spotify);
        QVERIFY2(value == QVariant(value.userType(), nullptr), meta.property(i).name());
    }
}

void TestSpotify::keepsWhatIsWritten_data()
{
    QTest::addColumn<int>("index");
    const QMetaObject &meta = Spotify::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
        QTest::newRow(meta.property(i).name()) << i;
}

void TestSpotify::keepsWhatIsWritten()
{
    QFETCH(int, index);
    Spotify spotify;
    const Spotify fresh;
    const QMetaObject &meta = Spotify::staticMetaObject;
    const QMetaProperty property = meta.property(index);
    const QVariant sample = sampleValue(spotify, property);
    m_log->clear();
    QVERIFY(property.write(&spotify, sample));
    QCOMPARE(property.read(&spotify), sample);
    QVERIFY(property.write(&spotify, sample));
    QCOMPARE(property.read(&spotify), sample);
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (i != index)
            QCOMPARE(meta.property(i).read(&spotify), meta.property(i).read(&fresh));
    }
    QCOMPARE(m_log->take(), QStringList());
}

void TestSpotify::instanceIsOneObject()
{
    QVERIFY(Spotify::instance());
    QCOMPARE(Spotify::instance(), Spotify::instance());
    QVERIFY(!Spotify::instance()->parent());
}

QTEST_GUILESS_MAIN(TestSpotify)
#include "tst_spotify.moc"
