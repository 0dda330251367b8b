// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/opening.h"

#include "simulator/scenario/scenario.h"
#include "simulator/services/topics.h"

bool Opening::publish(BrokerClient &services, const QString &name, const QByteArray &imageService)
{
    Scenario scenario;
    QString problem;
    if (!scenario.load(
            QStringLiteral(TOUCHUI_CHECKOUT "/scenarios/openings/%1.json").arg(name), &problem)) {
        qWarning("%s", qUtf8Printable(problem));
        return false;
    }
    services.publish(Topics::core("serverUrl"), imageService, true);
    for (const Scenario::Step &step : scenario.steps()) {
        if (step.kind != Scenario::Step::Message) {
            qWarning("%s: an opening has messages only", qUtf8Printable(name));
            return false;
        }
        services.publish(step.topic, step.payload, step.retain);
    }
    return services.flush();
}
