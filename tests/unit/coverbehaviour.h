// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "roon.h"
#include "testkit/services/imageserver.h"

/** A picture in a colour that survives the way through its format without a change. */
inline ImageServer::Behaviour png(const QColor &colour, int delayMs = 0)
{
    ImageServer::Behaviour behaviour;
    behaviour.colour = colour;
    behaviour.format = "PNG";
    behaviour.delayMs = delayMs;
    return behaviour;
}

/** From now on covers are to be had from @p server. */
inline void moveCoreTo(const ImageServer &server)
{
    Roon::instance()->setServerUrl(QString::fromLatin1(server.address()));
}
