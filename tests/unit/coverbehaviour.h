// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

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

inline ImageServer::Behaviour kind(ImageServer::Behaviour::Kind what)
{
    ImageServer::Behaviour behaviour;
    behaviour.kind = what;
    return behaviour;
}
