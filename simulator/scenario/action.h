// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

/**
 * Something that can be made to happen in the simulated house, by a scenario or by a fault message.
 *
 * An action that parsed is complete, and every argument has a value that it can have; whether it
 * can be carried out (is there such a zone now?) shows when it is.
 */
struct Action {
    QString name;
    QJsonObject arguments;

    QString text(const char *argument) const;
    int number(const char *argument, int otherwise) const;
    double real(const char *argument) const;
    bool flag(const char *argument) const;
    QStringList list(const char *argument) const;
    /** The names of the zones it is meant for; an empty one is the appliance's own. */
    QStringList zones() const;

    /** The whole as one line of words, which fromText() takes. */
    QString words() const;

    /**
     * From a JSON object with the member "action" and the arguments. False when it is none; then
     * @p problem says what was expected and what was found.
     */
    static bool fromJson(const QJsonObject &object, Action *action, QString *problem);

    /**
     * From one line of text, either such a JSON object or words: NAME ARGUMENT=VALUE ..., where
     * quotation marks hold a value with blanks together and commas separate a list.
     */
    static bool fromText(const QString &line, Action *action, QString *problem);

    /** All actions with their arguments and meaning, for --help; one line each. */
    static QString overview();
};
