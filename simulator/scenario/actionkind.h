// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <limits>

struct Action;
class Disturbance;
class ImageService;
class RemoteControlService;
class StateService;

/** What actions are carried out on. */
struct ActionTargets {
    RemoteControlService *remote;
    StateService *state;
    ImageService *images;
    Disturbance *disturbance;
    std::function<void()> quit; ///< ends the simulator
};

/** One argument of a kind of action. */
struct ActionArgument {
    enum Type { Text, Number, Real, Flag, List };
    static constexpr int Unlimited = std::numeric_limits<int>::max();

    const char *name;
    Type type;
    bool required;
    QStringList (*choices)() = nullptr; ///< of a Text; null: any
    int lowest = 0;                     ///< of a Number
    int highest = Unlimited;            ///< of a Number
};

/** All that there is to say about one kind of action; a new kind needs nothing beside it. */
struct ActionKind {
    /** False, with the reason, when the action cannot be carried out now. */
    using Handler
        = std::function<bool(const ActionTargets &targets, const Action &action, QString *reason)>;

    const char *name;
    QVector<ActionArgument> arguments;
    const char *meaning; ///< for --help, after the name and the arguments; may be empty
    Handler carryOut;

    /** Every kind, in the order of --help. */
    static const QVector<ActionKind> &all();
    /** The kind of this name; null if there is none. */
    static const ActionKind *find(const QString &name);
};
