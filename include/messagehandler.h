// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

/**
 * Whether debug messages are printed; they are hidden until this says otherwise. Set once by the
 * entry point, before the first message.
 */
void setDebugLogging(bool enabled);

/** What setDebugLogging() was given last. */
bool debugLogging();

/**
 * Writes each message of the Qt message functions as one line to standard error: a level word,
 * "[file(line)]" and the text, in Latin-1 ("?" for what Latin-1 does not have). No time stamps: the
 * journal adds its own. Without a source file the name in the line is empty.
 *
 * A line that comes again and again is printed five times, then replaced once by the words "last
 * message repeated 5 times", then dropped until a different line arrives. Hidden debug lines count
 * as lines here. Installed with qInstallMessageHandler(); safe to call from any thread.
 */
void messageHandler(QtMsgType type, const QMessageLogContext &context, const QString &message);
