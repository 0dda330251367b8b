// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

/**
 * The latest Spotify state, kept at hand in the process: a store without signals that messaging
 * writes by name. Main thread only.
 */
class Spotify : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString state READ state WRITE setState)
    Q_PROPERTY(
        uint nowPlaying_seekPosition READ nowPlayingSeekPosition WRITE setNowPlayingSeekPosition)
    Q_PROPERTY(uint nowPlaying_length READ nowPlayingLength WRITE setNowPlayingLength)
    Q_PROPERTY(QString nowPlaying_album READ nowPlayingAlbum WRITE setNowPlayingAlbum)
    Q_PROPERTY(QString nowPlaying_song READ nowPlayingSong WRITE setNowPlayingSong)
    Q_PROPERTY(QString nowPlaying_artist READ nowPlayingArtist WRITE setNowPlayingArtist)
    Q_PROPERTY(QString nowPlaying_imageUrl READ nowPlayingImageUrl WRITE setNowPlayingImageUrl)

public:
    static Spotify *instance();

    explicit Spotify(QObject *parent = nullptr);

    QString state() const { return m_state; }
    void setState(const QString &value) { m_state = value; }

    /** Seconds since the track began. */
    uint nowPlayingSeekPosition() const { return m_nowPlayingSeekPosition; }
    void setNowPlayingSeekPosition(uint value) { m_nowPlayingSeekPosition = value; }

    /** Seconds. */
    uint nowPlayingLength() const { return m_nowPlayingLength; }
    void setNowPlayingLength(uint value) { m_nowPlayingLength = value; }

    QString nowPlayingAlbum() const { return m_nowPlayingAlbum; }
    void setNowPlayingAlbum(const QString &value) { m_nowPlayingAlbum = value; }

    QString nowPlayingSong() const { return m_nowPlayingSong; }
    void setNowPlayingSong(const QString &value) { m_nowPlayingSong = value; }

    QString nowPlayingArtist() const { return m_nowPlayingArtist; }
    void setNowPlayingArtist(const QString &value) { m_nowPlayingArtist = value; }

    QString nowPlayingImageUrl() const { return m_nowPlayingImageUrl; }
    void setNowPlayingImageUrl(const QString &value) { m_nowPlayingImageUrl = value; }

private:
    QString m_state;
    uint m_nowPlayingSeekPosition = 0;
    uint m_nowPlayingLength = 0;
    QString m_nowPlayingAlbum;
    QString m_nowPlayingSong;
    QString m_nowPlayingArtist;
    QString m_nowPlayingImageUrl;
};
