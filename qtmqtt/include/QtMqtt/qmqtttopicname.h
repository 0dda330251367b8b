// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QDataStream>
#include <QtCore/QDebug>
#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * The topic a message is published to: levels separated by "/".  A value; a copy shares its text.
 *
 * Any text can be held, split, compared and streamed.  Only publishing asks isValid().
 */
class QMqttTopicName {
public:
    /** Any text, also an invalid one; empty by default. */
    QMqttTopicName(const QString &name = QString()) // implicit, like the module's class
        : m_name(name)
    {
    }
    /** The same for a literal. */
    QMqttTopicName(QLatin1String name)
        : m_name(name)
    {
    }

    /** Exchanges the two texts; cannot fail. */
    void swap(QMqttTopicName &other) noexcept { m_name.swap(other.m_name); }

    /** The text as it was given. */
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    /**
     * True for 1 to 65535 characters without "#", "+" and U+0000.  A broker may take less:
     * mosquitto ends the connection at more than 200 slashes.
     */
    bool isValid() const;

    /** Number of levels, empty ones included; 0 for the empty name. */
    int levelCount() const;

    /** The levels, empty ones included.  The empty name gives one empty level. */
    QStringList levels() const;

    // By the text: letter for letter, and in the order of the characters' codes.
    friend bool operator==(const QMqttTopicName &a, const QMqttTopicName &b) noexcept
    {
        return a.m_name == b.m_name;
    }
    friend bool operator!=(const QMqttTopicName &a, const QMqttTopicName &b) noexcept
    {
        return a.m_name != b.m_name;
    }
    friend bool operator<(const QMqttTopicName &a, const QMqttTopicName &b) noexcept
    {
        return a.m_name < b.m_name;
    }
    /** The hash of the text. */
    friend uint qHash(const QMqttTopicName &name, uint seed = 0) noexcept
    {
        return qHash(name.m_name, seed);
    }

private:
    QString m_name;
};

Q_DECLARE_SHARED(QMqttTopicName)
Q_DECLARE_METATYPE(QMqttTopicName)

// As the text alone.
QDataStream &operator<<(QDataStream &out, const QMqttTopicName &name);
QDataStream &operator>>(QDataStream &in, QMqttTopicName &name);

/** Writes QMqttTopicName("a/b"); the stream's own quoting applies to the text inside. */
QDebug operator<<(QDebug debug, const QMqttTopicName &name);
