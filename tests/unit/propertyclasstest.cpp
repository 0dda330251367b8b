// SPDX-License-Identifier: GPL-3.0-or-later
#include "propertyclasstest.h"

#include "samplevalue.h"
#include "signalrecorder.h"

#include <QMetaProperty>
#include <QTest>

namespace {

QMetaProperty propertyAt(const QObject &object, int row)
{
    return object.metaObject()->property(object.metaObject()->propertyOffset() + row);
}

/** As QVariant compares, but not over the border between types: 0 is not false. */
bool isSame(const QVariant &one, const QVariant &other)
{
    return one.userType() == other.userType() && one == other;
}

/**
 * What is written, one after the other: the value that is there, each other value twice, and the
 * way back.
 */
QVariantList stepsOf(const PropertyRow &row)
{
    QVariantList values = row.values();
    if (values.isEmpty()) {
        const QVariant sample = sampleValue(row.start());
        values = { sample, sampleValue(sample) };
    }
    QVariantList steps { row.start() };
    for (const QVariant &value : qAsConst(values))
        steps.append({ value, value });
    steps.append({ row.start(), row.start() });
    return steps;
}

} // namespace

QStringList PropertyClassTest::propertyEntries() const
{
    QStringList entries;
    for (const PropertyRow &row : rows())
        entries.append(row.entry());
    return entries;
}

void PropertyClassTest::addRows() const
{
    QTest::addColumn<int>("index");
    const QList<PropertyRow> table = rows();
    for (int i = 0; i < table.size(); ++i)
        QTest::newRow(qUtf8Printable(table.at(i).name())) << i;
}

void PropertyClassTest::startsWith()
{
    QFETCH(int, index);
    const PropertyRow row = rows().at(index);
    const std::unique_ptr<QObject> object = make();
    const QVariant value = propertyAt(*object, index).read(object.get());
    QVERIFY(value.isValid());
    QVERIFY2(row.hasStart() || !row.isWritable(), "the table does not say what to go back to");
    if (row.hasStart())
        QVERIFY2(isSame(value, row.start()), qUtf8Printable(value.toString()));
}

void PropertyClassTest::writesDoWhatTheRowSays()
{
    QFETCH(int, index);
    const PropertyRow row = rows().at(index);
    const std::unique_ptr<QObject> object = make();
    const QMetaProperty written = propertyAt(*object, index);
    QVariantList seen; // what a listener finds when it hears of the change
    SignalRecorder signalsOf(object.get(), [&] { seen.append(written.read(object.get())); });
    m_log->clear();

    if (!row.isWritable()) {
        QVERIFY(!written.write(object.get(), sampleValue(row.start())));
        QCOMPARE(signalsOf.take(), QStringList());
        return;
    }

    QVariant before = row.start();
    for (const QVariant &value : stepsOf(row)) {
        const bool isThere = value == before;
        QVERIFY(written.write(object.get(), value));
        QVERIFY2(isSame(written.read(object.get()), value), qUtf8Printable(value.toString()));
        const QStringList signalled
            = isThere && !row.tellsEveryWrite() ? QStringList() : row.signalsOf(value);
        QCOMPARE(signalsOf.take(), signalled);
        QCOMPARE(seen, signalled.isEmpty() ? QVariantList() : QVariantList({ value }));
        QCOMPARE(m_log->take(), row.linesOf(value, isThere));
        // Each property has a place of its own.
        QCOMPARE(moved(*object),
            value == row.start() ? QStringList() : QStringList(row.name()) + row.moved());
        m_log->clear();
        seen.clear();
        before = value;
    }
}

/** The properties that differ from what they hold at the start, in the order of the table. */
QStringList PropertyClassTest::moved(const QObject &object) const
{
    QStringList names;
    const QList<PropertyRow> table = rows();
    for (int i = 0; i < table.size(); ++i) {
        const PropertyRow &row = table.at(i);
        if (row.hasStart() && !isSame(propertyAt(object, i).read(&object), row.start()))
            names.append(row.name());
    }
    return names;
}
