// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzzing.h"
#include "simulator/scenario/scenario.h"
#include "simulator/services/remotecommand.h"

#include <QMqttTopicName>

/*
 * Scenario files; and, with a first line that begins with '!', a listener's command or a line typed
 * to the simulator.
 */

namespace {

void readLine(const QByteArray &line)
{
    const RemoteCommand command = RemoteCommand::parse(line);
    Fuzzing::require((command.kind == RemoteCommand::Invalid) == !command.error.isEmpty(),
        "what is no command says why");
    command.text();

    Action action;
    QString problem;
    if (!Action::fromText(QString::fromUtf8(line), &action, &problem)) {
        Fuzzing::require(!problem.isEmpty(), "what is no action says why");
        return;
    }
    Action again;
    Fuzzing::require(
        Action::fromText(action.words(), &again, &problem), "an action's words are an action");
    Fuzzing::require(again.words() == action.words(), "an action's words are that action's");
}

void readFile(const QByteArray &text)
{
    Scenario scenario;
    QString problem;
    if (!scenario.parse(text, QStringLiteral("file"), &problem)) {
        Fuzzing::require(
            problem.startsWith(QLatin1String("file:")), "what is malformed is told where");
        return;
    }
    for (const Scenario::Step &step : scenario.steps()) {
        Fuzzing::require(step.afterMs >= 0, "time goes on");
        if (step.kind == Scenario::Step::Message)
            Fuzzing::require(QMqttTopicName(step.topic).isValid(), "topics can be published on");
    }
    scenario.description();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::start();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray input = Fuzzing::bytes(data, size);
    if (input.startsWith('!'))
        readLine(input.mid(1));
    else
        readFile(input);
    return 0;
}
