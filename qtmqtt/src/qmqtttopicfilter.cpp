// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtMqtt/qmqtttopicfilter.h>

#include <QtCore/QStringView>

namespace {
constexpr int LongestFilter = 65535; // characters; the wire format has a length of two bytes
constexpr QLatin1String SharePrefix("$share/");

/** Takes the levels of a topic off one by one, without copying the text. */
class LevelReader {
public:
    explicit LevelReader(QStringView text)
        : m_rest(text)
    {
    }

    bool atEnd() const { return m_atEnd; }

    QStringView next()
    {
        for (qsizetype i = 0; i < m_rest.size(); ++i) {
            if (m_rest.at(i) == QLatin1Char('/')) {
                const QStringView level = m_rest.left(i);
                m_rest = m_rest.mid(i + 1);
                return level;
            }
        }
        m_atEnd = true;
        return m_rest;
    }

private:
    QStringView m_rest;
    bool m_atEnd = false;
};

/** The part that topics are compared with: without "$share/group/" in a shared subscription. */
QStringView topicPart(const QString &filter)
{
    if (!filter.startsWith(SharePrefix))
        return filter;
    const int groupEnd = filter.indexOf(QLatin1Char('/'), SharePrefix.size());
    return groupEnd < 0 ? QStringView() : QStringView(filter).mid(groupEnd + 1);
}
} // namespace

QString QMqttTopicFilter::sharedSubscriptionName() const
{
    return m_filter.startsWith(SharePrefix) ? m_filter.section(QLatin1Char('/'), 1, 1) : QString();
}

bool QMqttTopicFilter::isValid() const
{
    if (m_filter.size() > LongestFilter || m_filter.contains(QChar(QChar::Null))
        || topicPart(m_filter).isEmpty())
        return false;
    if (m_filter.startsWith(SharePrefix) && sharedSubscriptionName().isEmpty())
        return false;

    LevelReader levels(m_filter);
    while (!levels.atEnd()) {
        const QStringView level = levels.next();
        for (const QChar c : level) {
            const bool hash = c == QLatin1Char('#');
            if ((hash || c == QLatin1Char('+')) && level.size() != 1)
                return false;
            if (hash && !levels.atEnd())
                return false;
        }
    }
    return true;
}

bool QMqttTopicFilter::match(const QMqttTopicName &name, MatchOptions options) const
{
    if (!isValid() || !name.isValid())
        return false;

    const QString topic = name.name();
    const QStringView filter = topicPart(m_filter);
    const QChar first = filter.at(0);
    if ((options & WildcardsDontMatchDollarTopicMatchOption) && topic.startsWith(QLatin1Char('$'))
        && (first == QLatin1Char('#') || first == QLatin1Char('+')))
        return false;

    LevelReader wanted(filter);
    LevelReader given(topic);
    while (!wanted.atEnd()) {
        const QStringView level = wanted.next();
        if (level == QLatin1String("#")) // also for the parent level, which leaves nothing given
            return true;
        if (given.atEnd())
            return false;
        if (const QStringView other = given.next(); level != QLatin1String("+") && level != other)
            return false;
    }
    return given.atEnd();
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
