// SPDX-License-Identifier: GPL-3.0-or-later
#include "step.h"

namespace {

constexpr int ShownBytes = 120;

/** The payload as a C string, not longer than a line. */
QString quoted(const QByteArray &payload)
{
    QString text;
    for (const char byte : payload.left(ShownBytes)) {
        const auto code = static_cast<uchar>(byte);
        text += code >= ' ' && code < 127
            ? QString(QLatin1Char(byte))
            : QStringLiteral("\\x%1").arg(code, 2, 16, QLatin1Char('0'));
    }
    if (payload.size() <= ShownBytes)
        return QLatin1Char('"') + text + QLatin1Char('"');
    return QStringLiteral("\"%1...\" (%2 bytes)").arg(text).arg(payload.size());
}

} // namespace

Step Step::message(const QString &topic, const QByteArray &payload)
{
    Step step;
    step.kind = Message;
    step.topic = topic;
    step.payload = payload;
    return step;
}

Step Step::tapItem(const QString &name)
{
    Step step;
    step.kind = TapItem;
    step.item = name;
    return step;
}

Step Step::touch(Kind kind, const QPointF &place)
{
    Step step;
    step.kind = kind;
    step.place = place;
    return step;
}

Step Step::goToPlayer()
{
    Step step;
    step.kind = GoToPlayer;
    return step;
}

Step Step::wait()
{
    return Step();
}

QString Step::description() const
{
    const QString where = QStringLiteral("at %1, %2 of the page")
                              .arg(place.x(), 0, 'f', 3)
                              .arg(place.y(), 0, 'f', 3);
    switch (kind) {
    case Message:
        return topic + QLatin1Char(' ') + quoted(payload);
    case TapItem:
        return QStringLiteral("tap on ") + item;
    case Press:
        return QStringLiteral("press ") + where;
    case Move:
        return QStringLiteral("move to ") + where;
    case Release:
        return QStringLiteral("release ") + where;
    case GoToPlayer:
        return QStringLiteral("go to the player page");
    case WaitUntilHandled:
        break;
    }
    return QStringLiteral("wait until all is handled");
}
