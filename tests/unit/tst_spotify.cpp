// SPDX-License-Identifier: GPL-3.0-or-later
#include "spotify.h"

#include "propertyclasstest.h"

#include <QTest>

class TestSpotify : public PropertyClassTest {
    Q_OBJECT

    std::unique_ptr<QObject> make() const override { return std::make_unique<Spotify>(); }
    QList<PropertyRow> rows() const override;

private slots:
    void instanceIsOneObject() { checkInstance<Spotify>(); }
};

QList<PropertyRow> TestSpotify::rows() const
{
    return {
        { "QString state read write", QString() },
        { "uint nowPlaying_seekPosition read write", 0u },
        { "uint nowPlaying_length read write", 0u },
        { "QString nowPlaying_album read write", QString() },
        { "QString nowPlaying_song read write", QString() },
        { "QString nowPlaying_artist read write", QString() },
        { "QString nowPlaying_imageUrl read write", QString() },
    };
}

QTEST_GUILESS_MAIN(TestSpotify)
#include "tst_spotify.moc"
