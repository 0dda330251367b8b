// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

/**
 * Gives the namespace that the test runs in a host name and the address 192.0.2.17, as the pages
 * tell them.  Works once in a process.  False when the kernel refuses, as it does outside of
 * sandbox.
 */
bool appearAs(const QByteArray &hostName);
