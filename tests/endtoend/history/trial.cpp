// SPDX-License-Identifier: GPL-3.0-or-later
#include "trial.h"

#include "ending.h"
#include "historygenerator.h"
#include "subject.h"

namespace {

struct View {
    QString name;
    Scene scene;
};

QVector<View> viewsOf(Subject *program)
{
    return { { QStringLiteral("player page"), program->playerPage() },
        { QStringLiteral("volume dialog"),
            program->popup(QStringLiteral("volumeBox"), QStringLiteral("volumeDown")) },
        { QStringLiteral("zone chooser"),
            program->popup(QStringLiteral("zoneName"), QStringLiteral("zoneListHeader")) } };
}

/** A program in trouble differs from one that is not. */
QVector<Difference> troubleOf(const Subject &withHistory, const Subject &fresh)
{
    return { { QStringLiteral("the program"), withHistory.trouble(), fresh.trouble() } };
}

} // namespace

Trial::Trial(BrokerClient *services, const PanelKind &panel, quint32 seed)
    : m_services(services)
    , m_panel(panel)
    , m_seed(seed)
{
}

QVector<Difference> Trial::differences(const History &history) const
{
    return differences(history, {});
}

QVector<Difference> Trial::differences(const History &history, const History &addition) const
{
    const QString firstZone = QStringLiteral("Kitchen");
    m_services->clear();
    Subject withHistory(m_services, m_panel);
    Subject fresh(m_services, m_panel);
    if (!withHistory.start(firstZone) || !withHistory.endWelcome() || !withHistory.perform(history)
        || !withHistory.catchUp())
        return troubleOf(withHistory, fresh);
    const QString zone = withHistory.wantedZone();
    const Ending ending(history, zone);
    if (!withHistory.perform(ending.messages()) || !withHistory.perform(ending.lastWord())
        || !withHistory.catchUp() || !withHistory.goToPlayerPage() || !withHistory.settle())
        return troubleOf(withHistory, fresh);
    const QVector<View> views = viewsOf(&withHistory);
    if (!withHistory.trouble().isEmpty() || !withHistory.stop())
        return troubleOf(withHistory, fresh);

    History last = LastValues(history + ending.messages()).messages();
    HistoryGenerator(m_seed, {}).shuffle(&last);
    if (!fresh.start(zone) || !fresh.perform(last + addition) || !fresh.perform(ending.lastWord())
        || !fresh.catchUp() || !fresh.endWelcome() || !fresh.goToPlayerPage() || !fresh.settle())
        return troubleOf(withHistory, fresh);
    const QVector<View> freshViews = viewsOf(&fresh);
    if (!fresh.trouble().isEmpty() || !fresh.stop())
        return troubleOf(withHistory, fresh);

    QVector<Difference> all;
    for (int i = 0; i < views.size(); ++i) {
        const QVector<Difference> found = views.at(i).scene.differencesFrom(freshViews.at(i).scene);
        for (const Difference &difference : found)
            all.append({ views.at(i).name + QStringLiteral(": ") + difference.where,
                difference.first, difference.second });
    }
    return all;
}
