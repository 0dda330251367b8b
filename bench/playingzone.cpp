// SPDX-License-Identifier: GPL-3.0-or-later
#include "playingzone.h"

namespace {

QString remoteControl(const QString &rest)
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/") + rest;
}

} // namespace

QString PlayingZone::name()
{
    return QStringLiteral("Kitchen");
}

QString PlayingZone::topic(const QString &key)
{
    return remoteControl(QStringLiteral("Zones/16015d7ea0d2/") + key);
}

bool PlayingZone::publish(BrokerClient &services)
{
    const QString cover = QStringLiteral("cover");
    m_images.setBehaviour(cover, {});
    const QList<QPair<QString, QByteArray>> messages {
        { QStringLiteral("Velunor/Settings/v2/touchscreen_show_blur_image"), "true" },
        { QStringLiteral("Velunor/Settings/v2/touchscreen_screensaver_time"), "60" },
        { remoteControl(QStringLiteral("Roon/serverUrl")), m_images.address() },
        { remoteControl(QStringLiteral("Roon/coreDetected")), "true" },
        { remoteControl(QStringLiteral("Zones/available")),
            "[{\"id\":\"16015d7ea0d2\",\"name\":\"Kitchen\"}]" },
        { topic(QStringLiteral("name")), name().toUtf8() },
        { topic(QStringLiteral("outputs")), "[{\"display_name\":\"Kitchen\"}]" },
        { topic(QStringLiteral("nowPlaying/song")), "Open Window" },
        { topic(QStringLiteral("nowPlaying/artist")), "The Benches" },
        { topic(QStringLiteral("nowPlaying/album")), "Measures" },
        { topic(QStringLiteral("nowPlaying/length")), "240" },
        { topic(QStringLiteral("nowPlaying/seekPosition")), "0" },
        { topic(QStringLiteral("nowPlaying/imageKey")), cover.toLatin1() },
        { topic(QStringLiteral("settings/shuffle")), "false" },
        { topic(QStringLiteral("settings/loop")), "disabled" },
        { topic(QStringLiteral("settings/autoRadio")), "true" },
        { topic(QStringLiteral("volume/available")), "true" },
        { topic(QStringLiteral("volume/value")), "40" },
        { topic(QStringLiteral("volume/min")), "0" },
        { topic(QStringLiteral("volume/max")), "100" },
        { topic(QStringLiteral("volume/step")), "1" },
        { topic(QStringLiteral("queue_items_remaining")), "9" },
        { topic(QStringLiteral("is_previous_allowed")), "true" },
        { topic(QStringLiteral("is_next_allowed")), "true" },
        { topic(QStringLiteral("is_pause_allowed")), "true" },
        { topic(QStringLiteral("is_play_allowed")), "false" },
        { topic(QStringLiteral("is_seek_allowed")), "true" },
        { topic(QStringLiteral("state")), "playing" },
    };
    for (const auto &message : messages)
        services.publish(message.first, message.second, true);
    return services.flush();
}
