// SPDX-License-Identifier: GPL-3.0-or-later
// Each way in which an application may include the classes.
#include <QtMqtt/QMqttClient>
#include <QtMqtt/QMqttMessage>
#include <QtMqtt/QMqttSubscription>
#include <QtMqtt/QMqttTopicFilter>
#include <QtMqtt/QMqttTopicName>
#include <QtMqtt/QtMqtt>
#include <QtMqtt/qmqttclient.h>
#include <QtMqtt/qmqttmessage.h>
#include <QtMqtt/qmqttsubscription.h>
#include <QtMqtt/qmqtttopicfilter.h>
#include <QtMqtt/qmqtttopicname.h>
#include <QMqttClient>
#include <QMqttMessage>
#include <QMqttSubscription>
#include <QMqttTopicFilter>
#include <QMqttTopicName>

#include "oursalone.h"

#include <QtCore/QSet>
#include <QtTest/QtTest>

namespace {
template <typename T> QString streamed(const T &value)
{
    QString text;
    QDebug(&text) << "x" << value;
    return text.trimmed();
}

template <typename T> QByteArray stored(const T &value)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out << value;
    return bytes;
}

template <typename T> T restored(const QByteArray &bytes)
{
    T value;
    QDataStream in(bytes);
    in >> value;
    return value;
}
} // namespace

/** The value classes. */
class TestTopics : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void nameIsSplitIntoLevels_data();
    void nameIsSplitIntoLevels();
    void nameCountsCharactersNotBytes();
    void nameIsAValue();
    void namePrintsLikeAClass_data();
    void namePrintsLikeAClass();
    void filterValidity_data();
    void filterValidity();
    void sharedFilterHasAName_data();
    void sharedFilterHasAName();
    void filterMatches_data();
    void filterMatches();
    void filterIsAValue();
    void messageIsAValue();
};

void TestTopics::nameIsSplitIntoLevels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("levels");
    QTest::newRow("null") << QString() << false << 0 << QStringList { "" };
    QTest::newRow("empty") << "" << false << 0 << QStringList { "" };
    QTest::newRow("one level") << "a" << true << 1 << QStringList { "a" };
    QTest::newRow("slash") << "/" << true << 2 << QStringList { "", "" };
    QTest::newRow("two slashes") << "//" << true << 3 << QStringList { "", "", "" };
    QTest::newRow("leading slash") << "/a" << true << 2 << QStringList { "", "a" };
    QTest::newRow("trailing slash") << "a/" << true << 2 << QStringList { "a", "" };
    QTest::newRow("empty level") << "a//b" << true << 3 << QStringList { "a", "", "b" };
    QTest::newRow("dollar") << "$SYS/x" << true << 2 << QStringList { "$SYS", "x" };
    QTest::newRow("blanks") << "a b/ c" << true << 2 << QStringList { "a b", " c" };
    QTest::newRow("hash") << "a/#" << false << 2 << QStringList { "a", "#" };
    QTest::newRow("plus") << "a+/b" << false << 2 << QStringList { "a+", "b" };
    const QString zero = QString("a/") + QChar(QChar::Null);
    QTest::newRow("zero") << zero << false << 2 << zero.split('/');
    QTest::newRow("accents") << u8"k\u00fcche/\u00e9t\u00e9" << true << 2
                             << QStringList { u8"k\u00fcche", u8"\u00e9t\u00e9" };
}

void TestTopics::nameIsSplitIntoLevels()
{
    QFETCH(QString, name);
    const QMqttTopicName topic(name);
    QCOMPARE(topic.name(), name);
    QTEST(topic.isValid(), "valid");
    QTEST(topic.levelCount(), "count");
    QTEST(topic.levels(), "levels");
}

void TestTopics::nameCountsCharactersNotBytes()
{
    QVERIFY(QMqttTopicName(QString(65535, 'x')).isValid());
    QVERIFY(QMqttTopicName(QString(65535, QChar(0xfc))).isValid());
    QVERIFY(!QMqttTopicName(QString(65536, 'x')).isValid());
}

void TestTopics::nameIsAValue()
{
    const QMqttTopicName a = QLatin1String("a/b"); // both conversions are implicit
    QMqttTopicName b = QString("a/b");
    QCOMPARE(a, b);
    QVERIFY(!(a != b));
    QVERIFY(!(a < b));
    QVERIFY(a != QMqttTopicName(QLatin1String("A/b")));
    QVERIFY(a < QMqttTopicName(QLatin1String("a/c")));
    QCOMPARE(qHash(a), qHash(QString("a/b")));
    QCOMPARE(qHash(a, 7), qHash(QString("a/b"), 7));
    QCOMPARE(QSet<QMqttTopicName>({ a, b }).size(), 1);

    b.setName("c");
    QCOMPARE(b.name(), QString("c"));
    QMqttTopicName c = a;
    c.swap(b);
    QCOMPARE(b, a);
    QCOMPARE(c.name(), QString("c"));

    QCOMPARE(stored(a), stored(QString("a/b")));
    QCOMPARE(restored<QMqttTopicName>(stored(a)), a);

    QCOMPARE(QVariant::fromValue(a).value<QMqttTopicName>(), a);
    QVERIFY(!QVariant::fromValue(a).canConvert<QString>());
}

void TestTopics::namePrintsLikeAClass_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << "a/b"
                           << R"(x QMqttTopicName("a/b"))";
    QTest::newRow("empty") << ""
                           << R"(x QMqttTopicName(""))";
    QTest::newRow("quotes") << "a\"b\n"
                            << R"(x QMqttTopicName("a\"b\n"))";
    QTest::newRow("accents") << u8"\u00fc" << QString::fromUtf8(u8"x QMqttTopicName(\"\u00fc\")");
}

void TestTopics::namePrintsLikeAClass()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QCOMPARE(streamed(QMqttTopicName(name)), text);
    QCOMPARE(streamed(QMqttTopicFilter(name)), text.replace("TopicName", "TopicFilter"));

    QString bare;
    QDebug(&bare).noquote() << QMqttTopicName(name) << "y"; // the outer stream keeps its blanks
    QCOMPARE(bare.trimmed(), "QMqttTopicName(" + name + ") y");
}

void TestTopics::filterValidity_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<bool>("valid");
    for (const char *filter : { "#", "+", "/", "a", "a/#", "+/a", "a/+", "a/+/b", "+/+", "a//b",
             "+/#", "/#", "$share/g/a", "$share/g/#", "$SYS/#" })
        QTest::newRow(filter) << filter << true;
    for (const char *filter :
        { "a#", "a/#/b", "##", "#/a", "a+/b", "a/+b", "a/b#", "$share/g", "$share//a" })
        QTest::newRow(filter) << filter << false;
    if (!IsModule) { // which looks at the first wildcard only
        QTest::newRow("$share") << "$share" << true;
        for (const char *filter : { "+/b+", "++", "$share/g/", "$share/+/a+" })
            QTest::newRow(filter) << filter << false;
    }
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("zero") << QString("a") + QChar(QChar::Null) << false;
    QTest::newRow("longest") << QString(65535, 'x') << true;
    QTest::newRow("too long") << QString(65536, 'x') << false;
    QTest::newRow("longest, in more bytes") << QString(65535, QChar(0xfc)) << true;
    QTest::newRow("accents and wildcards") << u8"k\u00fcche/+/\u65e5/#" << true;
    QTest::newRow("wildcard behind an accent") << u8"k\u00fc+" << false;
    QTest::newRow("many slashes") << QString(65535, '/') << true;
}

void TestTopics::filterValidity()
{
    QFETCH(QString, filter);
    QTEST(QMqttTopicFilter(filter).isValid(), "valid");
}

void TestTopics::sharedFilterHasAName_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("name");
    QTest::newRow("shared") << "$share/group/a/b"
                            << "group";
    QTest::newRow("no filter") << "$share/group"
                               << "group";
    QTest::newRow("no group") << "$share//a"
                              << "";
    QTest::newRow("plain") << "a/group/b"
                           << "";
    QTest::newRow("only the word") << "$share"
                                   << "";
}

void TestTopics::sharedFilterHasAName()
{
    QFETCH(QString, filter);
    QTEST(QMqttTopicFilter(filter).sharedSubscriptionName(), "name");
}

void TestTopics::filterMatches_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("always");   // with no option
    QTest::addColumn<bool>("noDollar"); // with the option that spares "$" topics
    const auto row = [](const char *filter, const char *name, bool always, bool noDollar) {
        QTest::addRow("%s and %s", filter, name) << filter << name << always << noDollar;
    };
    row("a/b", "a/b", true, true);
    row("a/b", "a/B", false, false);
    row("a/b", "a", false, false);
    row("a", "a/b", false, false);
    row("a", "a/", false, false);
    row("a/#", "a/b", true, true);
    row("a/#", "a/b/c", true, true);
    row("a/#", "a", true, true);
    row("a/#", "a/", true, true);
    row("a/#", "b", false, false);
    row("+", "a", true, true);
    row("+", "/a", false, false);
    row("/+", "/a", true, true);
    row("+/+", "/a", true, true);
    row("a/+", "a/", true, true);
    row("a/+", "a", false, false);
    row("a/+", "a/b/c", false, false);
    row("a/+/c", "a//c", true, true);
    row("a/+/#", "a", false, false);
    row("#", "a/b", true, true);
    row("#", "/", true, true);
    row("#", "$SYS/x", true, false);
    row("+/x", "$SYS/x", true, false);
    row("$SYS/#", "$SYS/x", true, true);
    row("$SYS/+", "$SYS/x", true, true);
    row("\u00fc", "u", false, false);
    if (IsModule)
        return; // it compares beginnings, and lets invalid ones match
    row("a/#", "ab", false, false);
    row("a/#", "ab/c", false, false);
    row("a/+/#", "a/b", true, true);
    row("a/+/#", "a/b/c/d", true, true);
    row("$share/g/a/#", "a/b", true, true);
    row("$share/g/#", "$SYS/x", true, false);
    row("$share/g//a", "/a", true, true);
    row("$share/g/+", "a", true, true);
    row("\u00fc/+/#", "\u00fc/\u65e5", true, true);
    row("a/b#", "a/b#", false, false);
    row("#", "a/+", false, false);
    row("#", "", false, false);
    row("", "a", false, false);
}

void TestTopics::filterMatches()
{
    QFETCH(QString, filter);
    QFETCH(QString, name);
    QTEST(QMqttTopicFilter(filter).match(name), "always");
    QTEST(QMqttTopicFilter(filter).match(
              name, QMqttTopicFilter::WildcardsDontMatchDollarTopicMatchOption),
        "noDollar");
}

void TestTopics::filterIsAValue()
{
    const QMqttTopicFilter a = QLatin1String("a/#");
    QMqttTopicFilter b = QString("a/#");
    QCOMPARE(a, b);
    QVERIFY(a < QMqttTopicFilter(QLatin1String("b")));
    QCOMPARE(qHash(a, 3), qHash(QString("a/#"), 3));
    b.setFilter("c");
    QVERIFY(a != b);
    QMqttTopicFilter c = a;
    c.swap(b);
    QCOMPARE(b, a);

    QCOMPARE(restored<QMqttTopicFilter>(stored(a)), a);
    QCOMPARE(QVariant::fromValue(a).value<QMqttTopicFilter>(), a);
}

void TestTopics::messageIsAValue()
{
    const QMqttMessage message;
    QCOMPARE(message, QMqttMessage());
    QVERIFY(!(message != QMqttMessage()));
    QCOMPARE(message.id(), quint16(0));
    QCOMPARE(message.qos(), quint8(0));
    QVERIFY(!message.retain());
    QVERIFY(!message.duplicate());
    QVERIFY(message.payload().isEmpty());
    QVERIFY(message.topic().name().isEmpty());
}

QTEST_GUILESS_MAIN(TestTopics)
#include "tst_topics.moc"
