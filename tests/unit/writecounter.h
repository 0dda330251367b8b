// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/**
 * Counts how often a file, which must exist, has been closed after having been open for writing.
 * The kernel merges equal events that nobody has read: call take() after each write.
 */
class WriteCounter {
public:
    explicit WriteCounter(const QString &fileName);
    ~WriteCounter();

    /** Since the last call. */
    int take();

private:
    Q_DISABLE_COPY(WriteCounter)
    int m_descriptor;
};
