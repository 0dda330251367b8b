// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "piecemutator.h"

/** The packets of MQTT 3.1.1 as pieces of a broker's stream. */
namespace PacketPieces {

/** Takes a stream apart where its packets end; what is no whole packet is one piece. */
QVector<QByteArray> split(const QByteArray &stream);

/** A packet of a broker, now and then with a length, flags or a type that is wrong. */
QByteArray make(PieceMutator::Random &random);

} // namespace PacketPieces
