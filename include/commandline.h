// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/**
 * What the program answers without becoming a display: "--help" and "--version".
 *
 * To be asked before anything else is made, so that the answer needs neither a panel nor a broker.
 * Every other argument is Qt's.
 */
namespace CommandLine {

/**
 * The text to print for these arguments of main(), with its last newline; empty if there is none.
 */
QString answer(int argc, const char *const *argv);

} // namespace CommandLine
