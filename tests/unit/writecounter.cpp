// SPDX-License-Identifier: GPL-3.0-or-later
#include "writecounter.h"

#include <QFile>

#include <sys/inotify.h>
#include <unistd.h>

WriteCounter::WriteCounter(const QString &fileName)
    : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    if (::inotify_add_watch(m_descriptor, QFile::encodeName(fileName).constData(), IN_CLOSE_WRITE)
        < 0)
        qFatal("cannot watch the file");
}

WriteCounter::~WriteCounter()
{
    ::close(m_descriptor);
}

int WriteCounter::take()
{
    int count = 0;
    inotify_event event;
    while (::read(m_descriptor, &event, sizeof event) == static_cast<ssize_t>(sizeof event))
        ++count;
    return count;
}
