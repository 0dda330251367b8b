// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/services/brokerclient.h"

/** What is published before a test or a measurement begins, from a file in scenarios/openings. */
namespace Opening {

/**
 * Publishes the address of the core's image service, then the messages of scenarios/openings/@p
 * name.json in their order, and waits until the broker has them. False, with a message, when the
 * file cannot be read, has a step that is not a message, or the broker does not confirm.
 */
bool publish(BrokerClient &services, const QString &name, const QByteArray &imageService);

} // namespace Opening
