// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/process/program.h"

#include "testkit/pagenames.h"
#include "testkit/waiting.h"

#include <QDir>
#include <QRegularExpression>

#include <csignal>
#include <cstdio>

namespace {

constexpr int LoaderReady = 1; // QML's Loader.Ready

const QStringList Pages { PageNames::Welcome, PageNames::Player, PageNames::Settings,
    PageNames::Failure, PageNames::ScreenSaver, PageNames::Clock, PageNames::NotFound,
    PageNames::Update };

/** True for a variable that would let the surroundings of the test reach into the program. */
bool isForeign(const QString &name)
{
    static const QStringList prefixes { QStringLiteral("VELUNOR_"), QStringLiteral("TOUCHUI_"),
        QStringLiteral("QT_"), QStringLiteral("QML"), QStringLiteral("QSG_"), QStringLiteral("LC_"),
        QStringLiteral("LANG"), QStringLiteral("NOTIFY_SOCKET"), QStringLiteral("DISPLAY"),
        QStringLiteral("WAYLAND_DISPLAY"), QStringLiteral("DBUS_"), QStringLiteral("http_proxy"),
        QStringLiteral("HTTP_PROXY"), QStringLiteral("all_proxy"), QStringLiteral("ALL_PROXY") };
    for (const QString &prefix : prefixes) {
        if (name.startsWith(prefix))
            return true;
    }
    return false;
}

/** True for a line of one of our C++ sources; those of QML files and of no file are not. */
bool isOwn(const LogLine &line)
{
    static const QStringList sources
        = QDir(QStringLiteral(TOUCHUI_CHECKOUT "/src")).entryList(QDir::Files);
    // This line of the log tells no place.
    static const QRegularExpression repetition(
        QStringLiteral("^[A-Z]+ +last message repeated \\d+ times$"));
    return sources.contains(line.file) || repetition.match(line.whole).hasMatch();
}

} // namespace

Program::Program(QObject *parent)
    : QObject(parent)
    , m_executable(QStringLiteral(TOUCHUI_PROGRAM))
    , m_environment(QProcessEnvironment::systemEnvironment())
    , m_probe(m_directory.filePath(QStringLiteral("probe")))
{
    connect(&m_process, &Process::lineWritten, this,
        [this](const QString &line) { m_log.append(LogLine::parsed(line)); });

    const QStringList names = m_environment.keys();
    for (const QString &name : names) {
        if (isForeign(name))
            m_environment.remove(name);
    }
    m_environment.insert(QStringLiteral("HOME"), m_directory.path());
    m_environment.insert(QStringLiteral("XDG_CACHE_HOME"), m_directory.path());
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_directory.path());
    m_environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    m_environment.insert(QStringLiteral("QT_QUICK_BACKEND"), QStringLiteral("software"));
    m_environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("touchuiprobe"));
    m_environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(TOUCHUI_PROBE_PLUGINS));
    m_environment.insert(QStringLiteral("TOUCHUI_PROBE_SOCKET"), m_probe.path());
    m_environment.insert(QStringLiteral("TOUCHUI_DEBUG"), QStringLiteral("debug"));
}

Program::~Program()
{
    printLogOnFailure(0);
    if (QTest::currentTestFailed() && !isRunning())
        std::fprintf(stderr, "It ended with status %d.\n", exitStatus());
}

bool Program::isQuiet() const
{
    for (const LogLine &line : m_log) {
        if (line.level != QLatin1String("DEBUG") && line.level != QLatin1String("INFO")
            && !isOwn(line)) {
            qWarning("complaint in the log: %s", qUtf8Printable(line.whole));
            return false;
        }
    }
    return true;
}

void Program::printLogOnFailure(int from) const
{
    if (!QTest::currentTestFailed())
        return;
    std::fprintf(stderr, "The program's log from line %d of %d:\n", from, logSize());
    for (const LogLine &line : m_log.mid(from))
        std::fprintf(stderr, "    %s\n", qUtf8Printable(line.whole));
}

void Program::setEnvironment(const QString &name, const QString &value)
{
    m_environment.insert(name, value);
}

void Program::unsetEnvironment(const QString &name)
{
    m_environment.remove(name);
}

void Program::drawOn(const QString &display)
{
    setEnvironment(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    setEnvironment(QStringLiteral("DISPLAY"), display);
    setEnvironment(QStringLiteral("LIBGL_ALWAYS_SOFTWARE"), QStringLiteral("1"));
    unsetEnvironment(QStringLiteral("QT_QUICK_BACKEND"));
    allowDriver(m_environment);
}

void Program::allowDriver(QProcessEnvironment &environment)
{
    // The driver compiles at run time.  Once the compiled code is known to libgcc, its unwinder
    // allocates memory under a lock, so that a sanitizer that unwinds allocations with it waits for
    // itself.  What the driver leaves behind cannot be told from leaks of ours: it is unloaded when
    // leaks are looked for.  They are where the scene is drawn without it.
    const QString name = QStringLiteral("ASAN_OPTIONS");
    environment.insert(
        name, environment.value(name) + QStringLiteral(":fast_unwind_on_malloc=1:detect_leaks=0"));
}

bool Program::start()
{
    m_log.clear();
    m_probe.disconnectFromProgram();
    if (m_process.start(m_executable, {}, m_environment))
        return true;
    qWarning(
        "cannot start %s: %s", qUtf8Printable(m_executable), qUtf8Printable(m_process.errorText()));
    return false;
}

bool Program::startAndWait()
{
    return start() && waitForLine(Line::info(QStringLiteral("Entering main event loop...")));
}

bool Program::stop()
{
    sendSignal(SIGTERM);
    return waitForExit() && exitStatus() == 0;
}

int Program::count(const LogPattern &pattern, int from) const
{
    int matches = 0;
    for (int i = from; i < m_log.size(); ++i)
        matches += pattern.matches(m_log.at(i)) ? 1 : 0;
    return matches;
}

int Program::position(const LogPattern &pattern, int from) const
{
    for (int i = from; i < m_log.size(); ++i) {
        if (pattern.matches(m_log.at(i)))
            return i;
    }
    return -1;
}

bool Program::waitForLine(const LogPattern &pattern, int from)
{
    const bool found = waitUntil([&] { return position(pattern, from) >= 0 || !isRunning(); })
        && position(pattern, from) >= 0;
    if (!found)
        qWarning("the program did not log %s", qUtf8Printable(pattern.description()));
    return found;
}

bool Program::waitForPage(const QString &name)
{
    QStringList alive;
    const bool shown = waitUntil([&] {
        alive.clear();
        for (const QString &page : Pages) {
            if (m_probe.alive(page) > 0)
                alive.append(page);
        }
        // A page that is still being made has its name already, but takes no touches.
        return alive == QStringList(name)
            && m_probe.property("loader" + name, "status") == QJsonValue(LoaderReady);
    });
    if (!shown)
        qWarning("instead of %s these pages are alive: %s", qUtf8Printable(name),
            qUtf8Printable(alive.join(", ")));
    return shown;
}
