// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/action.h"

#include "simulator/house/library.h"
#include "simulator/scenario/actionkind.h"
#include "simulator/scenario/jsontext.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

#include <algorithm>

namespace {

using Type = ActionArgument::Type;

/** What may stand there, to be read after "expected". */
QString expectation(const ActionArgument &argument)
{
    switch (argument.type) {
    case ActionArgument::Text:
        return argument.choices
            ? QStringLiteral("one of ") + argument.choices().join(QStringLiteral(", "))
            : QStringLiteral("a text");
    case ActionArgument::Number:
        return QStringLiteral("a whole number from %1 %2")
            .arg(argument.lowest)
            .arg(argument.highest == ActionArgument::Unlimited
                    ? QStringLiteral("on")
                    : QStringLiteral("to %1").arg(argument.highest));
    case ActionArgument::Real:
        return QStringLiteral("a number");
    case ActionArgument::Flag:
        return QStringLiteral("true or false");
    case ActionArgument::List:
        return QStringLiteral("a list of two or more texts");
    }
    return QString();
}

bool accepts(const ActionArgument &argument, const QJsonValue &value)
{
    switch (argument.type) {
    case ActionArgument::Text:
        return value.isString()
            && (!argument.choices || argument.choices().contains(value.toString()));
    case ActionArgument::Number:
        return value.isDouble() && value.toDouble() == value.toInt()
            && value.toInt() >= argument.lowest && value.toInt() <= argument.highest;
    case ActionArgument::Real:
        return value.isDouble();
    case ActionArgument::Flag:
        return value.isBool();
    case ActionArgument::List: {
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
    case ActionArgument::Text:
        return word;
    case ActionArgument::Number: {
        const int number = word.toInt(&isNumber);
        return isNumber ? QJsonValue(number) : QJsonValue(QJsonValue::Undefined);
    }
    case ActionArgument::Real: {
        const double number = word.toDouble(&isNumber);
        return isNumber ? QJsonValue(number) : QJsonValue(QJsonValue::Undefined);
    }
    case ActionArgument::Flag:
        if (word == QLatin1String("true") || word == QLatin1String("false"))
            return word == QLatin1String("true");
        return QJsonValue::Undefined;
    case ActionArgument::List:
        return QJsonArray::fromStringList(word.split(QLatin1Char(',')));
    }
    return QJsonValue::Undefined;
}

const ActionKind *findKind(const QString &name, QString *problem)
{
    if (const ActionKind *const kind = ActionKind::find(name))
        return kind;
    QStringList names;
    for (const ActionKind &kind : ActionKind::all())
        names.append(QLatin1String(kind.name));
    *problem = QStringLiteral("expected an action (%1), found \"%2\"")
                   .arg(names.join(QStringLiteral(", ")), name);
    return nullptr;
}

const ActionArgument *findArgument(const ActionKind &kind, const QString &name, QString *problem)
{
    QStringList names;
    for (const ActionArgument &argument : kind.arguments) {
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
        if (std::any_of(word.cbegin(), word.cend(), [](QChar letter) { return letter.isSpace(); }))
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
    const ActionKind *const kind = findKind(object.value(nameMember).toString(), problem);
    if (!kind)
        return false;
    Action made;
    made.name = QLatin1String(kind->name);
    made.arguments = object;
    made.arguments.remove(nameMember);
    for (auto it = made.arguments.constBegin(); it != made.arguments.constEnd(); ++it) {
        const ActionArgument *const argument = findArgument(*kind, it.key(), problem);
        if (!argument)
            return false;
        if (!accepts(*argument, it.value())) {
            *problem = QStringLiteral("expected \"%1\" of action \"%2\" to be %3, found %4")
                           .arg(it.key(), made.name, expectation(*argument), jsonText(it.value()));
            return false;
        }
    }
    for (const ActionArgument &argument : kind->arguments) {
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
    const ActionKind *const kind = findKind(name, problem);
    if (!kind)
        return false;
    QJsonObject object { { QStringLiteral("action"), name } };
    for (const QString &word : qAsConst(words)) {
        const int equals = word.indexOf(QLatin1Char('='));
        const ActionArgument *const argument = findArgument(*kind, word.left(equals), problem);
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
    for (const ActionKind &kind : ActionKind::all()) {
        QString line = QStringLiteral("  ") + QLatin1String(kind.name);
        for (const ActionArgument &argument : kind.arguments) {
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
