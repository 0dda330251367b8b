// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "qmqtttopicname.h"

#include <QtCore/QFlags>

/**
 * What to subscribe to: a topic in which "+" stands for one level and a final "#" for all that
 * follow. A value; a copy shares its text.
 *
 * Any text can be held, compared and streamed.  Subscribing asks isValid().
 */
class QMqttTopicFilter {
public:
    /** How match() compares. */
    enum MatchOption {
        /** All topics alike. */
        NoMatchOption = 0x0,
        /** A wildcard in the first level does not match topics that begin with "$". */
        WildcardsDontMatchDollarTopicMatchOption = 0x1
    };
    Q_DECLARE_FLAGS(MatchOptions, MatchOption)

    /** Any text, also an invalid one; empty by default. */
    QMqttTopicFilter(const QString &filter = QString()) // implicit, like the module's class
        : m_filter(filter)
    {
    }
    /** The same for a literal. */
    QMqttTopicFilter(QLatin1String filter)
        : m_filter(filter)
    {
    }

    /** Exchanges the two texts; cannot fail. */
    void swap(QMqttTopicFilter &other) noexcept { m_filter.swap(other.m_filter); }

    /** The text as it was given. */
    QString filter() const { return m_filter; }
    void setFilter(const QString &filter) { m_filter = filter; }

    /** The group of a shared subscription ("$share/group/filter"); empty for any other filter. */
    QString sharedSubscriptionName() const;

    /**
     * True for 1 to 65535 characters without U+0000 in which each wildcard fills its level and "#"
     * is the last one.  A shared subscription needs a group and a filter.  A broker may take less:
     * mosquitto ends the connection at more than 200 slashes.
     */
    bool isValid() const;

    /**
     * Whether a message published to @p name belongs to this filter.  "a/#" matches "a" too, "+"
     * matches an empty level, case counts.  False if either is invalid.
     */
    bool match(const QMqttTopicName &name, MatchOptions options = NoMatchOption) const;

    // By the text: letter for letter, and in the order of the characters' codes.
    friend bool operator==(const QMqttTopicFilter &a, const QMqttTopicFilter &b) noexcept
    {
        return a.m_filter == b.m_filter;
    }
    friend bool operator!=(const QMqttTopicFilter &a, const QMqttTopicFilter &b) noexcept
    {
        return a.m_filter != b.m_filter;
    }
    friend bool operator<(const QMqttTopicFilter &a, const QMqttTopicFilter &b) noexcept
    {
        return a.m_filter < b.m_filter;
    }
    /** The hash of the text. */
    friend uint qHash(const QMqttTopicFilter &filter, uint seed = 0) noexcept
    {
        return qHash(filter.m_filter, seed);
    }

private:
    QString m_filter;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(QMqttTopicFilter::MatchOptions)
Q_DECLARE_SHARED(QMqttTopicFilter)
Q_DECLARE_METATYPE(QMqttTopicFilter)

// As the text alone.
QDataStream &operator<<(QDataStream &out, const QMqttTopicFilter &filter);
QDataStream &operator>>(QDataStream &in, QMqttTopicFilter &filter);

/** Writes QMqttTopicFilter("a/#"); the stream's own quoting applies to the text inside. */
QDebug operator<<(QDebug debug, const QMqttTopicFilter &filter);
