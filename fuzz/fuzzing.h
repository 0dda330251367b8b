// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <functional>

/** What all fuzz targets share. A target's process has one thread and one application object. */
namespace Fuzzing {

/** Makes the application object, without a display; the log goes nowhere. Once, at the start. */
void start();

/** Ends the process as a finding unless @p holds; @p what is the sentence that was to be true. */
void require(bool holds, const char *what);

/** Lets the event loop run until @p done; a finding named @p what if that takes ten seconds. */
void waitUntil(const std::function<bool()> &done, const char *what);

/** The input as bytes; it stays where it is. */
inline QByteArray bytes(const std::uint8_t *data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
}

} // namespace Fuzzing
