// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "modelclasstest.h"
#include "propertyrow.h"

#include <QList>

/**
 * What holds for a class of properties: each starts with its value, and a write does to it, to the
 * listeners, to the log and to the other properties what its row says.
 *
 * The rows are the class's whole table of properties, in the order of the meta-object.
 */
class PropertyClassTest : public ModelClassTest {
    Q_OBJECT

protected:
    virtual QList<PropertyRow> rows() const = 0;
    QStringList propertyEntries() const final;

private slots:
    void startsWith_data() { addRows(); }
    void startsWith();
    void writesDoWhatTheRowSays_data() { addRows(); }
    void writesDoWhatTheRowSays();

private:
    void addRows() const;
    QStringList moved(const QObject &object) const;
};
