// SPDX-License-Identifier: GPL-3.0-or-later
#include "sigwatch.h"
#include "simulator/scenario/scenariolibrary.h"
#include "simulator/simulator.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cerrno>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

namespace {

/** Opens those that are closed: the next socket would take their numbers, and get the lines. */
void keepStandardDescriptors()
{
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = open("/dev/null", O_RDWR);
    if (descriptor > STDERR_FILENO)
        close(descriptor);
}

/** Whole lines at once, so that a pipe's reader sees them as they come. False when it has left. */
bool print(FILE *stream, const QString &text)
{
    errno = 0;
    std::fprintf(stream, "%s\n", qUtf8Printable(text));
    std::fflush(stream);
    return errno != EPIPE;
}

int complain(int status, const QString &problem)
{
    print(stderr, QStringLiteral("velunor-simulator: ") + problem);
    return status;
}

int list()
{
    const QStringList names = ScenarioLibrary::names();
    if (names.isEmpty())
        return complain(Simulator::MalformedScenario,
            QStringLiteral("no scenarios: expected some in %1")
                .arg(ScenarioLibrary::places().join(QStringLiteral(" or "))));
    for (const QString &name : names) {
        Scenario scenario;
        QString problem;
        if (!scenario.load(ScenarioLibrary::file(name), &problem))
            return complain(Simulator::MalformedScenario, problem);
        print(stdout, name.leftJustified(16) + scenario.description());
    }
    return Simulator::Ended;
}

int run(const Options &options)
{
    const QString file = ScenarioLibrary::file(options.scenario);
    if (file.isEmpty()) {
        const QStringList names = ScenarioLibrary::names();
        return complain(Simulator::WrongOptions,
            QStringLiteral("--scenario: expected a file or one of %1; found \"%2\"")
                .arg(names.isEmpty() ? ScenarioLibrary::places().join(QStringLiteral(" or "))
                                     : names.join(QStringLiteral(", ")),
                    options.scenario));
    }
    Scenario scenario(options.zone);
    QString problem;
    if (!scenario.load(file, &problem))
        return complain(Simulator::MalformedScenario, problem);

    Simulator simulator(options, scenario);
    QObject::connect(&simulator, &Simulator::told, &simulator, [&simulator](const QString &line) {
        if (!print(stdout, line)) // queued: the event loop may not run yet
            QMetaObject::invokeMethod(
                &simulator, [] { QCoreApplication::exit(Simulator::Ended); }, Qt::QueuedConnection);
    });
    QObject::connect(
        &simulator, &Simulator::ended, &simulator,
        [](int status) { QCoreApplication::exit(status); }, Qt::QueuedConnection);
    UnixSignalWatcher watcher;
    watcher.watchForSignal(SIGINT);
    watcher.watchForSignal(SIGTERM);
    QObject::connect(
        &watcher, &UnixSignalWatcher::unixSignal, [] { QCoreApplication::exit(Simulator::Ended); });
    if (!simulator.start(&problem))
        return complain(Simulator::CannotServe, problem);
    const int status = QCoreApplication::exec();
    if (status == Simulator::NoBroker)
        return complain(status,
            QStringLiteral("no broker answers at 127.0.0.1:%1 (is mosquitto running?)")
                .arg(options.brokerPort));
    simulator.stop();
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    keepStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN); // a reader that leaves must not end it without a farewell
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("velunor-simulator"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TOUCHUI_VERSION));
    // The simulator's lines are its output; what the shared classes log is for the other program.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));

    Options options;
    QString problem;
    if (!Options::parse(QCoreApplication::arguments(), &options, &problem))
        return complain(Simulator::WrongOptions, problem + QStringLiteral(" (see --help)"));
    switch (options.task) {
    case Options::Help:
        print(stdout, Options::helpText());
        return Simulator::Ended;
    case Options::Version:
        print(stdout, QStringLiteral("velunor-simulator " TOUCHUI_VERSION));
        return Simulator::Ended;
    case Options::List:
        return list();
    case Options::Run:
        break;
    }
    return run(options);
}
