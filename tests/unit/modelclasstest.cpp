// SPDX-License-Identifier: GPL-3.0-or-later
#include "modelclasstest.h"

#include "metatable.h"

QStringList ModelClassTest::constructorLines() const
{
    return { constructorLine(QString::fromLatin1(make()->metaObject()->className())) };
}

void ModelClassTest::metaObjectIsTheInterface()
{
    const std::unique_ptr<QObject> object = make();
    const QMetaObject &meta = *object->metaObject();
    QCOMPARE(meta.superClass(), &QObject::staticMetaObject);
    QCOMPARE(propertyTable(meta), propertyEntries());
    QCOMPARE(methodTable(meta), methodEntries());
    QCOMPARE(enumeratorTable(meta), enumeratorEntries());
}

void ModelClassTest::constructorLogsItsLines()
{
    const QStringList expected = constructorLines();
    m_log->clear();
    const std::unique_ptr<QObject> object = make();
    QCOMPARE(m_log->take(), expected);
    QVERIFY(!object->parent());
}
