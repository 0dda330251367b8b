// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/machine/jsonpeer.h"
#include "testkit/process/process.h"

#include <QImage>
#include <QPoint>
#include <QTemporaryDir>

/**
 * The whole appliance in QEMU, as scripts/appliance boots it: kernel, systemd, the packages, a
 * broker and the simulator, which holds still at the moment of the baselines' player page.
 *
 * The broker answers on 127.0.0.1:1883 of the test; for what is to be done in the machine there is
 * an agent.  Destroying the object pulls the plug and removes the disk.
 */
class VirtualMachine {
public:
    /** How a command in the machine ended, and what it printed. */
    struct Outcome {
        int status;
        QByteArray output;
    };

    VirtualMachine();
    /** Keeps the panel's last picture and prints the machine's journal when the test has failed. */
    ~VirtualMachine();
    VirtualMachine(const VirtualMachine &) = delete;
    VirtualMachine &operator=(const VirtualMachine &) = delete;

    /** Switches it on, with a fresh disk; false, with a message, when it cannot be. */
    bool start();
    /** Puts it into the state that was kept in a file: one second instead of a whole boot. */
    bool startFrom(const QString &file);
    /** Keeps its state, disk and memory, in a file; the machine is off then. */
    bool keepIn(const QString &file);
    /** Pulls the plug. What the machine has not written to its disk is lost. */
    void cutPower();
    /** Switches it on again with the disk as it is. */
    bool startAgain();

    bool isRunning() const { return m_qemu.isRunning(); }
    /** Waits until it has switched itself off. */
    bool waitForPowerOff(int milliseconds);
    /** True where the processor is emulated, and everything takes longer. */
    bool isEmulated();

    /** What the panel shows now. */
    QImage picture();
    /** What it shows once nothing moves any more. */
    QImage stillPicture();

    /** A finger on the glass, for a moment. */
    void touch(const QPoint &place);
    /** A finger that is laid down there, and drawn to the other place. */
    void draw(const QPoint &from, const QPoint &to);

    /** Runs a shell command in the machine; status -1 when it has not ended within the time. */
    Outcome run(const QString &command, int milliseconds = CommandMs);
    /** What run() prints, without blanks at its ends. */
    QByteArray said(const QString &command) { return run(command).output.trimmed(); }
    /** Waits until the agent answers, as it does when the machine has come up. */
    bool waitForAgent(int milliseconds);

    /** What is wrong with the disk of a machine that is off; empty if it is in order. */
    QByteArray faultsOfDisk();
    /** A file on the disk of a machine that is off, as the next start would find it. */
    QByteArray fileOnDisk(const QString &path);

private:
    static constexpr int CommandMs = 120000;

    bool launch();
    QString file(const char *name) const { return m_directory.filePath(QLatin1String(name)); }
    /** Runs a shell command that finds the whole disk in $1; status -1 when it does not end. */
    Outcome look(const QString &command);
    /** A line for QEMU's monitor; what it answers is empty if all is well. */
    QString monitor(const QString &line);
    void pointer(const QPoint &place);
    void button(bool down);

    QTemporaryDir m_directory; // sockets, whose names must be short
    QTemporaryDir m_store;     // the disk, which would be large in a memory file system
    QSize m_size { 800, 480 };
    Process m_qemu;
    JsonPeer m_monitor;
    JsonPeer m_agent;
};
