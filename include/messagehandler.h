// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QtGlobal>

/**
 * Lets debug messages through to standard error, or hides them (the start value).
 *
 * Set once by the entry point, before the first message.
 */
void setDebugLogging(bool enabled);

/** Whether debug messages are printed. */
bool debugLogging();

/**
 * Writes each message of the Qt message functions as one line to standard error: a level word,
 * "[file(line)]" and the text, in Latin-1 ("?" for what Latin-1 does not have). No time stamps: the
 * journal adds its own.
 *
 * A line that comes again and again is printed five times, then once as "last message repeated 5
 * times", then not at all until another line arrives. Hidden debug lines count as lines in this.
 * Installed with qInstallMessageHandler(); may be called from any thread, calls are serialised.
 */
void messageHandler(QtMsgType type, const QMessageLogContext &context, const QString &message);
