// SPDX-License-Identifier: GPL-3.0-or-later
#include "action.h"

#include "disturbance.h"
#include "imageservice.h"
#include "jsontext.h"
#include "library.h"
#include "zonesimulation.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QVector>

#include <algorithm>
#include <limits>

namespace {

constexpr int Unlimited = std::numeric_limits<int>::max();

enum class Type { Text, Number, Real, Flag, List };

struct Argument {
    const char *name;
    Type type;
    bool required;
    QStringList (*choices)() = nullptr; ///< of a Text; null: any
    int lowest = 0;                     ///< of a Number
    int highest = Unlimited;            ///< of a Number
};

struct Kind {
    const char *name;
    QVector<Argument> arguments;
    const char *meaning;
};

const Argument Zone { "zone", Type::Text, false };
const Argument On { "on", Type::Flag, true };

const QVector<Kind> &kinds()
{
    static const QVector<Kind> all {
        { "core_lost", {}, "the music server leaves the network" },
        { "core_back", {}, "it is there again, with all zones" },
        { "remote_lost", {}, "the remote-control service loses its connection" },
        { "remote_back", {}, "it has it again" },
        { "image",
            { { "mode", Type::Text, true, ImageService::modeNames },
                { "ms", Type::Number, false } },
            "cover art from now on: normal, slow (by ms), hang, fail, drop or garbage" },
        { "play",
            { Zone, { "album", Type::Text, false, Library::albumNames },
                { "track", Type::Number, false, nullptr, 1 } },
            "plays on, or an album (or station) from a track on, counted from 1" },
        { "pause", { Zone }, "as another remote control would" },
        { "stop", { Zone }, "" },
        { "next", { Zone }, "" },
        { "previous", { Zone }, "" },
        { "seek", { Zone, { "seconds", Type::Number, true } }, "moves within the track" },
        { "empty_queue", { Zone }, "nothing is left to play" },
        { "shuffle", { Zone, On }, "" },
        { "radio", { Zone, On }, "whether similar music follows the queue" },
        { "loop", { Zone, { "mode", Type::Text, true, ZoneSimulation::loopModes } },
            "disabled, loop or loop_one" },
        { "volume", { Zone, { "value", Type::Real, true } }, "in the zone's own units" },
        { "mute", { Zone, On }, "" },
        { "rename", { Zone, { "name", Type::Text, false } },
            "gives a zone another name; without one, its first name" },
        { "remove", { Zone }, "the zone is switched off" },
        { "restore", { Zone }, "and on again" },
        { "group", { { "zones", Type::List, true } }, "the first leads, the others follow" },
        { "ungroup", { Zone }, "dissolves the group to which the zone belongs" },
        { "offer_update", { { "info", Type::Text, false } }, "an update can be installed" },
        { "withdraw_update", {}, "" },
        { "inhibit_update", { { "reason", Type::Text, false } },
            "holds updates back; without a reason, no longer" },
        { "install_update", {}, "as the web service does when it is asked to" },
        { "flood",
            { { "per_second", Type::Number, false, nullptr, 1, Disturbance::MostPerSecond },
                { "seconds", Type::Number, false, nullptr, 1, Disturbance::LongestFloodS } },
            "changes of the first zone, 1000 a second for 10 s" },
        { "noise", { { "count", Type::Number, false, nullptr, 1, Disturbance::MostNoise } },
            "malformed messages of every kind, 200 of them" },
        { "quit", {}, "the simulator ends" },
    };
    return all;
}

/** What may stand there, to be read after "expected". */
QString expectation(const Argument &argument)
{
    switch (argument.type) {
    case Type::Text:
        return argument.choices
            ? QStringLiteral("one of ") + argument.choices().join(QStringLiteral(", "))
            : QStringLiteral("a text");
    case Type::Number:
        return QStringLiteral("a whole number from %1 %2")
            .arg(argument.lowest)
            .arg(argument.highest == Unlimited ? QStringLiteral("on")
                                               : QStringLiteral("to %1").arg(argument.highest));
    case Type::Real:
        return QStringLiteral("a number");
    case Type::Flag:
        return QStringLiteral("true or false");
    case Type::List:
        return QStringLiteral("a list of two or more texts");
    }
    return QString();
}

bool accepts(const Argument &argument, const QJsonValue &value)
{
    switch (argument.type) {
    case Type::Text:
        return value.isString()
            && (!argument.choices || argument.choices().contains(value.toString()));
    case Type::Number:
        return value.isDouble() && value.toDouble() == value.toInt()
            && value.toInt() >= argument.lowest && value.toInt() <= argument.highest;
    case Type::Real:
        return value.isDouble();
    case Type::Flag:
        return value.isBool();
    case Type::List: {
        const QJsonArray array = value.toArray();
        return array.size() >= 2
            && std::all_of(array.begin(), array.end(),
                [](const QJsonValue &element) { return element.isString(); });
    }
    }
    return false;
}

/** A word as the value it stands for; undefined when it is none of that type. */
QJsonValue fromWord(const QString &word, Type type)
{
    bool isNumber = false;
    switch (type) {
    case Type::Text:
        return word;
    case Type::Number: {
        const int number = word.toInt(&isNumber);
        return isNumber ? QJsonValue(number) : QJsonValue(QJsonValue::Undefined);
    }
    case Type::Real: {
        const double number = word.toDouble(&isNumber);
        return isNumber ? QJsonValue(number) : QJsonValue(QJsonValue::Undefined);
    }
    case Type::Flag:
        if (word == QLatin1String("true") || word == QLatin1String("false"))
            return word == QLatin1String("true");
        return QJsonValue::Undefined;
    case Type::List:
        return QJsonArray::fromStringList(word.split(QLatin1Char(',')));
    }
    return QJsonValue::Undefined;
}

const Kind *findKind(const QString &name, QString *problem)
{
    QStringList names;
    for (const Kind &kind : kinds()) {
        if (name == QLatin1String(kind.name))
            return &kind;
        names.append(QLatin1String(kind.name));
    }
    *problem = QStringLiteral("expected an action (%1), found \"%2\"")
                   .arg(names.join(QStringLiteral(", ")), name);
    return nullptr;
}

const Argument *findArgument(const Kind &kind, const QString &name, QString *problem)
{
    QStringList names;
    for (const Argument &argument : kind.arguments) {
        if (name == QLatin1String(argument.name))
            return &argument;
        names.append(QLatin1Char('"') + QLatin1String(argument.name) + QLatin1Char('"'));
    }
    *problem = names.isEmpty()
        ? QStringLiteral("expected no arguments of action \"%1\", found \"%2\"")
              .arg(QLatin1String(kind.name), name)
        : QStringLiteral("expected the arguments %1 of action \"%2\", found \"%3\"")
              .arg(names.join(QStringLiteral(", ")), QLatin1String(kind.name), name);
    return nullptr;
}

/** What only shows when the arguments are seen together. */
bool fitsAlbum(const Action &action, QString *problem)
{
    const QString track = QStringLiteral("track");
    if (!action.arguments.contains(track))
        return true;
    const Album *const album = Library::findAlbum(action.text("album"));
    if (!album) {
        *problem = QStringLiteral("expected \"album\" where there is \"track\", found none");
        return false;
    }
    if (action.number("track", 1) > album->tracks.size()) {
        *problem = QStringLiteral("expected \"track\" to be one of the %1 of \"%2\", found %3")
                       .arg(album->tracks.size())
                       .arg(album->name, jsonText(action.arguments.value(track)));
        return false;
    }
    return true;
}

} // namespace

QString Action::text(const char *argument) const
{
    return arguments.value(QLatin1String(argument)).toString();
}

int Action::number(const char *argument, int otherwise) const
{
    return arguments.value(QLatin1String(argument)).toInt(otherwise);
}

double Action::real(const char *argument) const
{
    return arguments.value(QLatin1String(argument)).toDouble();
}

bool Action::flag(const char *argument) const
{
    return arguments.value(QLatin1String(argument)).toBool();
}

QStringList Action::list(const char *argument) const
{
    return arguments.value(QLatin1String(argument)).toVariant().toStringList();
}

QStringList Action::zones() const
{
    return arguments.contains(QLatin1String("zones")) ? list("zones") : QStringList(text("zone"));
}

QString Action::words() const
{
    QString line = name;
    for (auto it = arguments.constBegin(); it != arguments.constEnd(); ++it) {
        QString word = it.value().isArray() ? list(qUtf8Printable(it.key())).join(QLatin1Char(','))
            : it.value().isString()         ? it.value().toString()
                                            : jsonText(it.value());
        word.replace(QLatin1Char('"'), QStringLiteral("\"\"\""));
        if (word.contains(QLatin1Char(' ')))
            word = QLatin1Char('"') + word + QLatin1Char('"');
        line += QLatin1Char(' ') + it.key() + QLatin1Char('=') + word;
    }
    return line;
}

bool Action::fromJson(const QJsonObject &object, Action *action, QString *problem)
{
    const QString nameMember = QStringLiteral("action");
    if (!object.value(nameMember).isString()) {
        *problem = QStringLiteral("expected \"action\" to be the name of an action");
        return false;
    }
    const Kind *const kind = findKind(object.value(nameMember).toString(), problem);
    if (!kind)
        return false;
    Action made;
    made.name = QLatin1String(kind->name);
    made.arguments = object;
    made.arguments.remove(nameMember);
    for (auto it = made.arguments.constBegin(); it != made.arguments.constEnd(); ++it) {
        const Argument *const argument = findArgument(*kind, it.key(), problem);
        if (!argument)
            return false;
        if (!accepts(*argument, it.value())) {
            *problem = QStringLiteral("expected \"%1\" of action \"%2\" to be %3, found %4")
                           .arg(it.key(), made.name, expectation(*argument), jsonText(it.value()));
            return false;
        }
    }
    for (const Argument &argument : kind->arguments) {
        if (argument.required && !made.arguments.contains(QLatin1String(argument.name))) {
            *problem = QStringLiteral("expected action \"%1\" to have \"%2\" (%3), found none")
                           .arg(made.name, QLatin1String(argument.name), expectation(argument));
            return false;
        }
    }
    if (!fitsAlbum(made, problem))
        return false;
    *action = made;
    return true;
}

bool Action::fromText(const QString &line, Action *action, QString *problem)
{
    if (line.trimmed().startsWith(QLatin1Char('{'))) {
        QJsonParseError error;
        const QJsonObject object = QJsonDocument::fromJson(line.toUtf8(), &error).object();
        if (error.error == QJsonParseError::NoError)
            return fromJson(object, action, problem);
        *problem = QStringLiteral("expected a JSON object: ") + error.errorString();
        return false;
    }
    QStringList words = QProcess::splitCommand(line);
    const QString name = words.isEmpty() ? QString() : words.takeFirst();
    const Kind *const kind = findKind(name, problem);
    if (!kind)
        return false;
    QJsonObject object { { QStringLiteral("action"), name } };
    for (const QString &word : qAsConst(words)) {
        const int equals = word.indexOf(QLatin1Char('='));
        const Argument *const argument = findArgument(*kind, word.left(equals), problem);
        if (!argument)
            return false;
        const QJsonValue value = fromWord(word.mid(equals + 1), argument->type);
        if (equals < 0 || value.isUndefined()) {
            *problem = QStringLiteral("expected %1=VALUE to be %2, found \"%3\"")
                           .arg(QLatin1String(argument->name), expectation(*argument), word);
            return false;
        }
        object.insert(QLatin1String(argument->name), value);
    }
    return fromJson(object, action, problem);
}

QString Action::overview()
{
    QString overview;
    for (const Kind &kind : kinds()) {
        QString line = QStringLiteral("  ") + QLatin1String(kind.name);
        for (const Argument &argument : kind.arguments) {
            const QString name = QLatin1String(argument.name);
            line += argument.required ? QStringLiteral(" %1=…").arg(name)
                                      : QStringLiteral(" [%1=…]").arg(name);
        }
        const QString meaning = QString::fromUtf8(kind.meaning);
        overview += meaning.isEmpty()
            ? line + QLatin1Char('\n')
            : line.leftJustified(40) + QLatin1Char(' ') + meaning + QLatin1Char('\n');
    }
    return overview;
}
