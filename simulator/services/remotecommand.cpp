// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/remotecommand.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

RemoteCommand invalid(const QString &error)
{
    RemoteCommand command;
    command.error = error;
    return command;
}

} // namespace

RemoteCommand RemoteCommand::parse(const QByteArray &payload)
{
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(payload, &problem);
    if (problem.error != QJsonParseError::NoError)
        return invalid(QStringLiteral("no JSON: ") + problem.errorString());
    if (!document.isObject())
        return invalid(QStringLiteral("no JSON object"));
    const QJsonObject object = document.object();
    const QString name = object.value(QLatin1String("command")).toString();

    RemoteCommand command;
    if (name == QLatin1String("toggle_standby")) {
        command.kind = ToggleStandby;
        return command;
    }
    const auto flag = [&object, &command](const char *member, Kind wanted) {
        const QJsonValue setting = object.value(QLatin1String(member));
        if (!setting.isBool())
            return false;
        command.kind = wanted;
        command.on = setting.toBool();
        return true;
    };
    if (name == QLatin1String("playpause"))
        command.kind = PlayPause;
    else if (name == QLatin1String("previous"))
        command.kind = Previous;
    else if (name == QLatin1String("next"))
        command.kind = Next;
    else if (name == QLatin1String("set_radio")) {
        if (!flag("radio", SetRadio))
            return invalid(QStringLiteral("\"radio\" is neither true nor false"));
    } else if (name == QLatin1String("set_shuffle")) {
        if (!flag("shuffle", SetShuffle))
            return invalid(QStringLiteral("\"shuffle\" is neither true nor false"));
    } else if (name == QLatin1String("set_loopmode")) {
        command.kind = SetLoop;
        command.mode = object.value(QLatin1String("loop")).toString();
    } else if (name == QLatin1String("set_volume")) {
        const QString how = object.value(QLatin1String("how")).toString();
        const QJsonValue value = object.value(QLatin1String("value"));
        if (how != QLatin1String("absolute") && how != QLatin1String("relative"))
            return invalid(QStringLiteral("\"how\" is neither \"absolute\" nor \"relative\""));
        if (!value.isDouble())
            return invalid(QStringLiteral("\"value\" is no number"));
        command.kind = how == QLatin1String("absolute") ? SetVolume : ChangeVolume;
        command.value = value.toDouble();
    } else
        return invalid(QStringLiteral("unknown command \"%1\"").arg(name));

    command.zoneId = object.value(QLatin1String("zone_id")).toString();
    if (command.zoneId.isEmpty())
        return invalid(QStringLiteral("no \"zone_id\""));
    return command;
}

QString RemoteCommand::text() const
{
    const QString onOff = on ? QStringLiteral("on") : QStringLiteral("off");
    switch (kind) {
    case Invalid:
        return error;
    case PlayPause:
        return QStringLiteral("play/pause");
    case Previous:
        return QStringLiteral("previous");
    case Next:
        return QStringLiteral("next");
    case SetRadio:
        return QStringLiteral("radio ") + onOff;
    case SetShuffle:
        return QStringLiteral("shuffle ") + onOff;
    case SetLoop:
        return QStringLiteral("loop \"%1\"").arg(mode);
    case SetVolume:
        return QStringLiteral("volume to %1").arg(value);
    case ChangeVolume:
        return QStringLiteral("volume by %1%2")
            .arg(value > 0 ? QStringLiteral("+") : QString())
            .arg(value);
    case ToggleStandby:
        return QStringLiteral("toggle standby (for the display)");
    }
    return QString();
}
