// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QPointF>
#include <QString>
#include <QVector>

/** One thing that happens to a program: a message, or something that a finger does. */
struct Step {
    enum Kind {
        Message,          ///< `payload` on `topic`
        TapItem,          ///< on the centre of the item of the name `item`, if it is shown
        Press,            ///< one finger, at `place`
        Move,             ///< the same finger, if it is down
        Release,          ///< likewise
        GoToPlayer,       ///< touches that leave other pages
        WaitUntilHandled, ///< the program has caught up with all messages so far
    };

    static Step message(const QString &topic, const QByteArray &payload);
    static Step tapItem(const QString &name);
    static Step touch(Kind kind, const QPointF &place);
    static Step goToPlayer();
    static Step wait();

    /** For a person who wants to see what happened. */
    QString description() const;

    Kind kind = WaitUntilHandled;
    QString topic;
    QByteArray payload;
    QString item;
    QPointF place; ///< of the upright page, as parts of its width and height
};

using History = QVector<Step>;
