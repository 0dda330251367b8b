// SPDX-License-Identifier: GPL-3.0-or-later
#include "ordeal.h"

#include "testkit/process/processfigures.h"

#include <QElapsedTimer>

using namespace PageNames;

namespace {

constexpr qint64 KiBPerMiB = 1024;

// They keep a record of all memory, and what was freed: no bound says anything then.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool IsSanitized = true;
#else
constexpr bool IsSanitized = false;
#endif

/** Growth in whole MiB, rounded up. */
qint64 growthMiB(qint64 fromKiB, qint64 toKiB)
{
    return qMax<qint64>(0, toKiB - fromKiB + KiBPerMiB - 1) / KiBPerMiB;
}

} // namespace

void Ordeal::init()
{
    m_appliance = std::make_unique<Appliance>();
    m_longestTouchMs = 0;
}

void Ordeal::cleanup()
{
    m_appliance.reset();
}

bool Ordeal::startPlayer()
{
    if (!house().start())
        return false;
    begin();
    return true;
}

bool Ordeal::startProgram(const QString &page)
{
    if (!program().startAndWait())
        return false;
    house().endWelcome();
    if (!house().waitForPage(page))
        return false;
    begin();
    return true;
}

void Ordeal::begin()
{
    // The first frame of a page and the first picture bring in what is loaded when it is needed.
    probe().picture();
    const qint64 process = program().processId();
    ProcessFigures::forgetPeak(process);
    m_residentKiB = ProcessFigures::residentKiB(process);
    m_anonymousKiB = ProcessFigures::anonymousKiB(process);
}

bool Ordeal::answersTouches(const QString &page)
{
    return touchLeadsTo(page == Player ? QString("cover") : page, Clock)
        && touchLeadsTo(Clock, ScreenSaver) && touchLeadsTo(ScreenSaver, page);
}

bool Ordeal::comesThrough(const QString &page, Bound bound)
{
    return answersTouches(page) && memoryIsWithin(bound) && endsInTime();
}

bool Ordeal::endsInTime(int number)
{
    QElapsedTimer time;
    time.start();
    program().sendSignal(number);
    const bool ended = program().waitForExit();
    const qint64 tookMs = time.elapsed();
    qInfo("ended after %lld ms with status %d", static_cast<long long>(tookMs),
        ended ? program().exitStatus() : -1);
    if (!ended || program().exitStatus() != 0 || tookMs > EndLimitMs) {
        qWarning("it may take %d ms, and the status must be 0", EndLimitMs);
        return false;
    }
    return program().waitForLine(Line::info("Left main event loop with exit code 0"));
}

bool Ordeal::touchLeadsTo(const Probe::Target &item, const QString &page)
{
    QElapsedTimer time;
    time.start();
    if (!probe().tap(item) || !house().waitForPage(page))
        return false;
    const qint64 tookMs = time.elapsed();
    m_longestTouchMs = qMax(m_longestTouchMs, tookMs);
    if (tookMs <= TouchLimitMs)
        return true;
    qWarning("the touch that leads to %s was answered after %lld ms", qUtf8Printable(page),
        static_cast<long long>(tookMs));
    return false;
}

bool Ordeal::memoryIsWithin(Bound bound)
{
    const qint64 process = program().processId();
    const qint64 peakMiB = growthMiB(m_residentKiB, ProcessFigures::peakKiB(process));
    const qint64 keptMiB = growthMiB(m_anonymousKiB, ProcessFigures::anonymousKiB(process));
    qInfo("longest touch %lld ms; memory: peak +%lld MiB, kept +%lld MiB, of %lld MiB",
        static_cast<long long>(m_longestTouchMs), static_cast<long long>(peakMiB),
        static_cast<long long>(keptMiB), static_cast<long long>(m_anonymousKiB / KiBPerMiB));
    if (IsSanitized || (peakMiB <= bound.peakMiB && keptMiB <= bound.keptMiB))
        return true;
    qWarning("the bound is +%d MiB and +%d MiB", bound.peakMiB, bound.keptMiB);
    return false;
}
