// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtMqtt/qmqtttopicname.h>

namespace {
constexpr int LongestName = 65535; // characters; the wire format has a length of two bytes
}

bool QMqttTopicName::isValid() const
{
    return !m_name.isEmpty() && m_name.size() <= LongestName && !m_name.contains(QLatin1Char('#'))
        && !m_name.contains(QLatin1Char('+')) && !m_name.contains(QChar(QChar::Null));
}

int QMqttTopicName::levelCount() const
{
    return m_name.isEmpty() ? 0 : m_name.count(QLatin1Char('/')) + 1;
}

QStringList QMqttTopicName::levels() const
{
    return m_name.split(QLatin1Char('/'));
}

QDataStream &operator<<(QDataStream &out, const QMqttTopicName &name)
{
    return out << name.name();
}

QDataStream &operator>>(QDataStream &in, QMqttTopicName &name)
{
    QString text;
    in >> text;
    name.setName(text);
    return in;
}

QDebug operator<<(QDebug debug, const QMqttTopicName &name)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "QMqttTopicName(" << name.name() << ')';
    return debug;
}
