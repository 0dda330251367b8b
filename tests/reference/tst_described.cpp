// SPDX-License-Identifier: GPL-3.0-or-later
#include "brokertopics.h"
#include "roon.h"
#include "roonzone.h"
#include "settings.h"
#include "spotify.h"
#include "testkit/services/mqttreference.h"
#include "velunor_state.h"

#include <QFile>
#include <QMetaProperty>
#include <QMqttTopicFilter>
#include <QMqttTopicName>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

namespace {

/** "NAME TYPE" of each property of a class that can be written. */
QStringList writable(const QMetaObject &metaObject)
{
    QStringList found;
    // Messages can write the objectName that every object has as well. It means nothing.
    for (int i = metaObject.propertyOffset(); i < metaObject.propertyCount(); ++i) {
        const QMetaProperty property = metaObject.property(i);
        if (property.isWritable())
            found.append(QStringLiteral("%1 %2").arg(property.name(), property.typeName()));
    }
    found.sort();
    return found;
}

QStringList described(const QString &object)
{
    QStringList found;
    for (const MqttReference::Entry &entry : MqttReference::instance().entries()) {
        if (entry.object == object)
            found.append(entry.property + QLatin1Char(' ') + entry.type);
    }
    found.sort();
    return found;
}

QStringList topics(bool received)
{
    QStringList found;
    for (const MqttReference::Entry &entry : MqttReference::instance().entries()) {
        if (entry.received == received)
            found.append(entry.topic);
    }
    found.removeDuplicates();
    return found;
}

} // namespace

/** The description of the messages names what the program has, and nothing else. */
class TestDescribed : public QObject {
    Q_OBJECT

private slots:
    void whatMessagesWriteIsDescribed_data();
    void whatMessagesWriteIsDescribed();
    void topicsLeadToTheirProperties();
    void settingsAreDescribed();
    void whatIsSubscribedToIsDescribed();
    void reportsAreDescribed();
};

void TestDescribed::whatMessagesWriteIsDescribed_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QStringList>("properties");
    for (const QMetaObject *const metaObject :
        { &Roon::staticMetaObject, &RoonZone::staticMetaObject, &Spotify::staticMetaObject,
            &VelunorState::staticMetaObject })
        QTest::newRow(metaObject->className())
            << QString(metaObject->className()) << writable(*metaObject);
}

void TestDescribed::whatMessagesWriteIsDescribed()
{
    QFETCH(QString, object);
    QFETCH(QStringList, properties);
    QVERIFY(!properties.isEmpty());
    QCOMPARE(described(object), properties);
}

void TestDescribed::topicsLeadToTheirProperties()
{
    for (const MqttReference::Entry &entry : MqttReference::instance().entries()) {
        if (entry.object.isEmpty() || entry.object == QLatin1String("Settings"))
            continue;
        const QString ending
            = QLatin1Char('/') + QString(entry.topic).section('/', -2).replace('/', '_');
        const QString lastLevel = entry.topic.section('/', -1);
        QVERIFY2(lastLevel == entry.property || ending.endsWith(QLatin1Char('/') + entry.property),
            qPrintable(entry.topic));
    }
}

void TestDescribed::settingsAreDescribed()
{
    // Settings have no properties of the keys' names: the keys stand in the code.
    QFile source(QStringLiteral(TOUCHUI_CHECKOUT "/src/mqtt.cpp"));
    QVERIFY(source.open(QIODevice::ReadOnly));
    const QString code = QString::fromUtf8(source.readAll());
    QStringList keys;
    const QRegularExpression comparison(QStringLiteral("key == QLatin1String\\(\"([^\"]+)\"\\)"));
    for (auto match = comparison.globalMatch(code); match.hasNext();)
        keys.append(QStringLiteral("Velunor/Settings/v2/") + match.next().captured(1));
    QVERIFY(!keys.isEmpty());
    // None is taken in another way.
    QCOMPARE(code.count(QStringLiteral("settings->set")), keys.size());

    QStringList documented;
    for (const MqttReference::Entry &entry : MqttReference::instance().entries()) {
        if (entry.object != QLatin1String("Settings"))
            continue;
        documented.append(entry.topic);
        const int index
            = Settings::staticMetaObject.indexOfProperty(entry.property.toLatin1().constData());
        QVERIFY2(index >= 0, qPrintable(entry.topic));
        QCOMPARE(QString(Settings::staticMetaObject.property(index).typeName()), entry.type);
    }
    keys.sort();
    documented.sort();
    QCOMPARE(documented, keys);
}

void TestDescribed::whatIsSubscribedToIsDescribed()
{
    const QList<QMqttTopicFilter> filters { BrokerTopics::settings(), BrokerTopics::state(),
        BrokerTopics::core(), BrokerTopics::zones(), BrokerTopics::remoteConnected(),
        BrokerTopics::spotify(), BrokerTopics::command() };
    QStringList described = topics(true);
    const int all = described.size();
    QVERIFY(all > filters.size());
    for (const QMqttTopicFilter &filter : filters) {
        QStringList below;
        std::copy_if(described.begin(), described.end(), std::back_inserter(below),
            [&filter](const QString &topic) { return filter.match(QMqttTopicName(topic)); });
        QVERIFY2(!below.isEmpty(), qPrintable(filter.filter()));
        for (const QString &topic : qAsConst(below))
            described.removeOne(topic);
    }
    QCOMPARE(described, QStringList()); // described, and not subscribed to
}

void TestDescribed::reportsAreDescribed()
{
    QStringList described = topics(false);
    described.sort();
    QStringList published { BrokerTopics::command(), BrokerTopics::displayZone(),
        BrokerTopics::displayIdle(), BrokerTopics::displayBrightness() };
    published.sort();
    QCOMPARE(described, published);
}

QTEST_GUILESS_MAIN(TestDescribed)
#include "tst_described.moc"
