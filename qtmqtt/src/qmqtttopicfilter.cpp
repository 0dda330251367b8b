// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtMqtt/qmqtttopicfilter.h>

#include <mosquitto.h>

namespace {
const QLatin1String SharePrefix("$share/");

/** The part that topics are compared with: without "$share/group/" in a shared subscription. */
QString topicPart(const QString &filter)
{
    return filter.startsWith(SharePrefix) ? filter.section(QLatin1Char('/'), 2) : filter;
}
} // namespace

QString QMqttTopicFilter::sharedSubscriptionName() const
{
    return m_filter.startsWith(SharePrefix) ? m_filter.section(QLatin1Char('/'), 1, 1) : QString();
}

bool QMqttTopicFilter::isValid() const
{
    if (m_filter.contains(QChar(QChar::Null)) || topicPart(m_filter).isEmpty())
        return false;
    if (m_filter.startsWith(SharePrefix) && sharedSubscriptionName().isEmpty())
        return false;
    // One byte for each character, as the length is counted; which one it is makes no difference.
    return mosquitto_sub_topic_check(m_filter.toLatin1().constData()) == MOSQ_ERR_SUCCESS;
}

bool QMqttTopicFilter::match(const QMqttTopicName &name, MatchOptions options) const
{
    if (!isValid() || !name.isValid())
        return false;

    // The library spares topics that begin with "$"; behind a further level they do not begin.
    const QString before
        = options & WildcardsDontMatchDollarTopicMatchOption ? QString() : QStringLiteral("/");
    const QByteArray filter = (before + topicPart(m_filter)).toUtf8();
    const QByteArray topic = (before + name.name()).toUtf8();
    bool matches = false;
    mosquitto_topic_matches_sub(filter.constData(), topic.constData(), &matches);
    return matches;
}

QDataStream &operator<<(QDataStream &out, const QMqttTopicFilter &filter)
{
    return out << filter.filter();
}

QDataStream &operator>>(QDataStream &in, QMqttTopicFilter &filter)
{
    QString text;
    in >> text;
    filter.setFilter(text);
    return in;
}

QDebug operator<<(QDebug debug, const QMqttTopicFilter &filter)
{
    const QDebugStateSaver saver(debug);
    debug.nospace() << "QMqttTopicFilter(" << filter.filter() << ')';
    return debug;
}
