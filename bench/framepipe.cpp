// SPDX-License-Identifier: GPL-3.0-or-later
#include "framepipe.h"

#include "eventwait.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int RestMs = 1000;
constexpr int LongestUnrestMs = 20000;

} // namespace

FramePipe::FramePipe()
    : m_path(m_directory.filePath(QStringLiteral("frames")))
{
    const QByteArray path = QFile::encodeName(m_path);
    // Open for writing as well, so that the end of a program is not the end of the pipe.
    if (::mkfifo(path.constData(), 0600) == 0)
        m_descriptor = ::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (m_descriptor < 0)
        qFatal("cannot make the pipe for frames: %s", std::strerror(errno));
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &FramePipe::read);
}

FramePipe::~FramePipe()
{
    m_notifier.reset();
    ::close(m_descriptor);
}

void FramePipe::prepare(Program &program, Content content)
{
    program.setEnvironment(QStringLiteral("LD_PRELOAD"), QStringLiteral(TOUCHUI_FRAME_LIBRARY));
    program.setEnvironment(QStringLiteral("TOUCHUI_FRAME_PIPE"), m_path);
    if (content == Pictures)
        program.setEnvironment(QStringLiteral("TOUCHUI_FRAME_PICTURES"), QStringLiteral("1"));
}

bool FramePipe::waitUntilAtRest()
{
    const bool drawn = waitForEvent([this] { return !m_frames.isEmpty(); });
    for (int i = 0; drawn && i < LongestUnrestMs / RestMs; ++i) {
        const int before = m_frames.count();
        serveEvents(RestMs);
        if (m_frames.count() == before)
            return true;
    }
    qWarning(drawn ? "the picture does not come to rest" : "no frame is drawn");
    return false;
}

void FramePipe::read()
{
    char buffer[4096];
    for (;;) {
        const ssize_t length = ::read(m_descriptor, buffer, sizeof buffer);
        if (length <= 0)
            return;
        m_frames.append(QByteArray(buffer, static_cast<int>(length)));
    }
}
