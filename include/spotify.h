// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * The latest Spotify state, kept at hand in the process: a store without signals that messaging
 * writes by name and that nothing shows. All is empty or 0 until published. Main thread only.
 */
class Spotify : public QObject {
    Q_OBJECT
    /** The player's state, for example "playing". */
    Q_PROPERTY(QString state MEMBER m_state)
    /** Seconds since the track began. */
    Q_PROPERTY(uint nowPlaying_seekPosition MEMBER m_nowPlayingSeekPosition)
    /** Seconds that the track takes. */
    Q_PROPERTY(uint nowPlaying_length MEMBER m_nowPlayingLength)
    // Titles of album and track, and who performs it.
    Q_PROPERTY(QString nowPlaying_album MEMBER m_nowPlayingAlbum)
    Q_PROPERTY(QString nowPlaying_song MEMBER m_nowPlayingSong)
    Q_PROPERTY(QString nowPlaying_artist MEMBER m_nowPlayingArtist)
    /** Address of the cover art. */
    Q_PROPERTY(QString nowPlaying_imageUrl MEMBER m_nowPlayingImageUrl)

public:
    /** The one object, made by the first call and never deleted. */
    static Spotify *instance();

    /** A store with nothing in it. */
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
