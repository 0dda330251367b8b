// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * The latest Spotify state, kept at hand in the process: a store without signals that messaging
 * writes by name. Position and length are seconds; all is empty or 0 until published. Main thread
 * only.
 */
class Spotify : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString state MEMBER m_state)
    Q_PROPERTY(uint nowPlaying_seekPosition MEMBER m_nowPlayingSeekPosition)
    Q_PROPERTY(uint nowPlaying_length MEMBER m_nowPlayingLength)
    Q_PROPERTY(QString nowPlaying_album MEMBER m_nowPlayingAlbum)
    Q_PROPERTY(QString nowPlaying_song MEMBER m_nowPlayingSong)
    Q_PROPERTY(QString nowPlaying_artist MEMBER m_nowPlayingArtist)
    Q_PROPERTY(QString nowPlaying_imageUrl MEMBER m_nowPlayingImageUrl)

public:
    static Spotify *instance();

    explicit Spotify(QObject *parent = nullptr);

private:
    QString m_state;
    uint m_nowPlayingSeekPosition = 0;
    uint m_nowPlayingLength = 0;
    QString m_nowPlayingAlbum;
    QString m_nowPlayingSong;
    QString m_nowPlayingArtist;
    QString m_nowPlayingImageUrl;
};
