// SPDX-License-Identifier: GPL-3.0-or-later
#include "spotify.h"

#include <QDebug>
#include <QThread>

Spotify *Spotify::instance()
{
    static Spotify *const theInstance = new Spotify;
    return theInstance;
}

Spotify::Spotify(QObject *parent)
    : QObject(parent)
{
    qDebug().noquote().nospace() << "Spotify::constructor in thread " << QThread::currentThreadId();
}
