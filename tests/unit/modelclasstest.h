// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "logcapture.h"

#include <QObject>
#include <QStringList>
#include <QTest>

#include <memory>

/**
 * What holds for every class of the model: its meta-object is an interface, and its constructor
 * logs a line.
 *
 * A test class derives from this one, says what is so with its class, and gets the tests.
 */
class ModelClassTest : public QObject {
    Q_OBJECT

protected:
    /** A fresh object of the class, without a parent. */
    virtual std::unique_ptr<QObject> make() const = 0;

    // What the class itself adds to the meta-object, as metatable.h writes it down.
    virtual QStringList propertyEntries() const { return {}; }
    virtual QStringList methodEntries() const { return {}; }
    virtual QStringList enumeratorEntries() const { return {}; }

    /** The labelled lines that make() logs. */
    virtual QStringList constructorLines() const;

    std::unique_ptr<LogCapture> m_log;

protected slots:
    void init() { m_log = std::make_unique<LogCapture>(); }
    void cleanup() { m_log.reset(); }

private slots:
    void metaObjectIsTheInterface();
    void constructorLogsItsLines();
};

/** For the classes that have an instance(): that there is one object behind it. */
template <typename T> void checkInstance()
{
    T *const first = T::instance();
    QVERIFY(first);
    QCOMPARE(T::instance(), first);
    QVERIFY(!first->parent());
}
