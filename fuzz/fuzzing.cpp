// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzzing.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr qint64 Patience = 10000; // ms; a hundred times what the slowest step takes

void dropMessage(QtMsgType, const QMessageLogContext &, const QString &) { }

} // namespace

void Fuzzing::start()
{
    static char name[] = "fuzz";
    static char *arguments[] = { name, nullptr };
    static int count = 1;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(dropMessage);
    new QGuiApplication(count, arguments); // until the process ends
}

void Fuzzing::require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

void Fuzzing::waitUntil(const std::function<bool()> &done, const char *what)
{
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        require(timer.elapsed() < Patience, what);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}
