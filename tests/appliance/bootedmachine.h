// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/machine/virtualmachine.h"

#include <QElapsedTimer>
#include <QImage>

/** The machine with the player page on view, and what a person in front of it would watch. */
class BootedMachine : public VirtualMachine {
public:
    /** Where tst_firstpicture keeps the machine that it has booted. */
    static QString kept();
    /** Puts the machine there. */
    bool resume() { return startFrom(kept()); }

    /** Within which time the display is to be back; longer where the processor is emulated. */
    int limit() { return isEmulated() ? 10000 : 3000; }

    /**
     * Waits until the panel shows one of these pages, named as their baselines are: "player".
     * Returns after how many milliseconds it did; -1, with a message, when it does not within the
     * time.
     */
    qint64 waitForPage(const QStringList &pages, int milliseconds = PageMs);
    qint64 waitForPage(const QString &page, int milliseconds = PageMs)
    {
        return waitForPage(QStringList(page), milliseconds);
    }
    /**
     * Waits until the display is back after it has been on the player page and gone from there: the
     * welcome page within the limit, then the player page.
     * Where drawing is emulated, the first picture may come so late that it is the player page's.
     */
    bool comesBack();
    /** Whether the panel shows that page and nothing moves. */
    bool standsStillOn(const QString &page);

    /**
     * Leads from the player page to the settings page and draws the brightness there lower; whether
     * the panel follows.
     */
    bool dim();
    /** What the kernel's file of that name says of the panel. */
    QByteArray panel(const char *attribute)
    {
        return said(QStringLiteral("cat /sys/class/backlight/panel/") + QLatin1String(attribute));
    }

    /** Runs what takes the machine down; the agent may go with it before it has answered. */
    void bringDown(const QString &command);

    /** Waits until the broker welcomes a client. */
    bool waitForBroker(int milliseconds = PageMs);

    /** How often the front end has been started since the machine was. */
    int starts();
    /** Its process. */
    QByteArray process()
    {
        return said(QStringLiteral("systemctl show --property=MainPID --value velunor-touchui"));
    }

    static constexpr int BootMs = 400000;
    static constexpr int PageMs = 60000;
};
