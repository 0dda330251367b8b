// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/process/terminal.h"

#include "testkit/waiting.h"

#include <QFile>
#include <QVector>

#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/** The same as execve() takes them, for as long as the texts live. */
QVector<char *> pointers(QList<QByteArray> &texts)
{
    QVector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.append(text.data());
    pointers.append(nullptr);
    return pointers;
}

} // namespace

Terminal::~Terminal()
{
    if (QTest::currentTestFailed())
        std::fprintf(stderr, "The terminal shows:\n%s\n", printed().constData());
    close();
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
}

bool Terminal::run(
    const QStringList &command, const QString &directory, const QProcessEnvironment &environment)
{
    QList<QByteArray> words;
    for (const QString &word : command)
        words.append(QFile::encodeName(word));
    QList<QByteArray> variables;
    for (const QString &variable : environment.toStringList())
        variables.append(variable.toLocal8Bit());
    const QByteArray place = QFile::encodeName(directory);
    const QVector<char *> argv = pointers(words);
    const QVector<char *> envp = pointers(variables);

    m_process = ::forkpty(&m_terminal, nullptr, nullptr, nullptr);
    if (m_process == 0) {
        // What runs in a terminal heeds its signals, even when the test runs in the background of a
        // script.
        for (int number : { SIGHUP, SIGINT, SIGTERM })
            ::signal(number, SIG_DFL);
        if (::chdir(place.constData()) == 0)
            ::execve(argv.first(), argv.data(), envp.data());
        ::_exit(127);
    }
    if (m_process < 0) {
        qWarning("cannot open a terminal");
        return false;
    }
    // Nothing else that is started may keep the terminal open.
    ::fcntl(m_terminal, F_SETFD, FD_CLOEXEC);
    ::fcntl(m_terminal, F_SETFL, O_NONBLOCK);
    return true;
}

void Terminal::type(const QByteArray &text)
{
    if (::write(m_terminal, text.constData(), size_t(text.size())) != text.size())
        qWarning("the terminal takes no more");
}

void Terminal::close()
{
    if (m_terminal >= 0)
        ::close(m_terminal);
    m_terminal = -1;
}

QByteArray Terminal::printed()
{
    char buffer[4096];
    while (m_terminal >= 0) {
        const ssize_t size = ::read(m_terminal, buffer, sizeof buffer);
        if (size <= 0)
            break;
        m_printed += QByteArray(buffer, int(size)).replace('\r', "");
    }
    return m_printed;
}

bool Terminal::waitFor(const QByteArray &text)
{
    if (waitUntil([&] { return printed().contains(text) || hasEnded(); })
        && printed().contains(text))
        return true;
    qWarning("not printed: %s", text.constData());
    return false;
}

bool Terminal::waitForExit()
{
    // A terminal that nobody reads stops those who print.
    return waitUntil([this] {
        printed();
        return hasEnded();
    });
}

bool Terminal::hasEnded()
{
    int status = 0;
    if (m_process > 0 && ::waitpid(m_process, &status, WNOHANG) == m_process) {
        m_process = -1;
        m_status = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    }
    return m_process < 0;
}
