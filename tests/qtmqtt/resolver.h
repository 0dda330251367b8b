// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>

#include <memory>

/**
 * Decides what a host name resolves to in this program, so that no test depends on what the machine
 * knows: with it linked in, lookups of the name end here, all others go to the C library.
 *
 * Qt keeps the outcome of a lookup for a while, so that each test needs a name of its own.  Lookups
 * run in threads of Qt's.
 */
class Resolver {
public:
    /**
     * Lookups of @p name wait for release(), then give @p address; when that is empty, they fail.
     */
    explicit Resolver(const QByteArray &name, const QByteArray &address = QByteArray());
    /** Releases, and forgets the name. */
    ~Resolver();

    /** Whether somebody has asked for the name. */
    bool isAsked() const;
    void release();

    struct Name; ///< what the threads share

private:
    Q_DISABLE_COPY(Resolver)

    const QByteArray m_name;
    const std::shared_ptr<Name> m_known;
};
