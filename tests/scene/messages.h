// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QStringList>

/**
 * What the scene and Qt wrote to the log, for tests that check a text, or that nothing complained.
 * Each entry is the level's word, a colon, a blank and the text: "debug: zone clicked".
 */
class Messages : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringList all READ all)
    Q_PROPERTY(QStringList complaints READ complaints)
public:
    static Messages *instance();

    /** Everything since the last clear(). */
    QStringList all() const { return m_all; }
    /** The warnings and critical messages among them. */
    QStringList complaints() const;
    Q_INVOKABLE void clear() { m_all.clear(); }
    /**
     * Begins to listen; Qt Test replaces the handler at its own start, so each test program calls
     * this itself.
     */
    Q_INVOKABLE void listen();

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    QStringList m_all;
};
