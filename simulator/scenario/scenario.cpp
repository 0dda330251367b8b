// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/scenario.h"

#include "simulator/scenario/jsontext.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMqttTopicName>

#include <algorithm>

namespace {

const QString AfterMs = QStringLiteral("after_ms");
const QString TopicMember = QStringLiteral("topic");
const QString PayloadMember = QStringLiteral("payload");
const QString Base64Member = QStringLiteral("payload_base64");
const QString RetainMember = QStringLiteral("retain");
const QString ActionMember = QStringLiteral("action");
const QString NoteMember = QStringLiteral("note");

int lineAt(const QByteArray &text, int offset)
{
    return 1 + text.left(offset).count('\n');
}

/** An element of the outermost array, as it is written. */
struct Element {
    int line = 0;
    int members = 0; ///< of the element itself, one that is there twice counts twice
};

/** The elements in their order; the text is known to be JSON. */
QVector<Element> findElements(const QByteArray &text)
{
    QVector<Element> elements;
    int line = 1;
    int depth = 0;
    bool inString = false;
    bool expectsElement = false;
    for (int i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        if (c == '\n')
            ++line;
        if (inString) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                inString = false;
            continue;
        }
        if (QByteArray(" \t\r\n").contains(c))
            continue;
        if (expectsElement && c != ']') {
            elements.append({ line, 0 });
            expectsElement = false;
        }
        if (c == '"')
            inString = true;
        else if (c == '[' || c == '{')
            expectsElement = depth++ == 0;
        else if (c == ']' || c == '}')
            --depth;
        else if (c == ',' && depth == 1)
            expectsElement = true;
        else if (c == ':' && depth == 2)
            ++elements.last().members;
    }
    return elements;
}

bool readMessage(const QJsonObject &object, Scenario::Step *step, QString *problem)
{
    step->kind = Scenario::Step::Message;
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        const QString &member = it.key();
        if (member == TopicMember || member == PayloadMember || member == Base64Member) {
            if (!it.value().isString()) {
                *problem = QStringLiteral("expected \"%1\" to be a text, found %2")
                               .arg(member, jsonText(it.value()));
                return false;
            }
        } else if (member == RetainMember) {
            if (!it.value().isBool()) {
                *problem = QStringLiteral("expected \"retain\" to be true or false, found %1")
                               .arg(jsonText(it.value()));
                return false;
            }
        } else {
            *problem = QStringLiteral("expected \"after_ms\", \"topic\", \"payload\" or "
                                      "\"payload_base64\", \"retain\" and \"note\" in a message, "
                                      "found \"%1\"")
                           .arg(member);
            return false;
        }
    }
    step->topic = object.value(TopicMember).toString();
    if (!QMqttTopicName(step->topic).isValid()) {
        *problem = QStringLiteral("expected \"topic\" to be a topic without wildcards, found %1")
                       .arg(jsonText(object.value(TopicMember)));
        return false;
    }
    if (object.contains(PayloadMember) == object.contains(Base64Member)) {
        *problem = QStringLiteral(
            "expected either \"payload\" or \"payload_base64\", found both or none");
        return false;
    }
    step->payload = object.value(PayloadMember).toString().toUtf8();
    if (object.contains(Base64Member)) {
        const auto decoded
            = QByteArray::fromBase64Encoding(object.value(Base64Member).toString().toLatin1(),
                QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded) {
            *problem = QStringLiteral("expected \"payload_base64\" to be Base64, found %1")
                           .arg(jsonText(object.value(Base64Member)));
            return false;
        }
        step->payload = *decoded;
    }
    step->retain = object.value(RetainMember).toBool();
    return true;
}

bool readStep(QJsonObject object, Scenario::Step *step, QString *problem)
{
    const QJsonValue after = object.take(AfterMs);
    if (!after.isDouble() || after.toDouble() != after.toInt() || after.toInt() < 0) {
        *problem = QStringLiteral("expected \"after_ms\" to be a whole number from 0 on, found %1")
                       .arg(after.isUndefined() ? QStringLiteral("none") : jsonText(after));
        return false;
    }
    step->afterMs = after.toInt();
    const QJsonValue note = object.take(NoteMember);
    if (!note.isUndefined() && !note.isString()) {
        *problem = QStringLiteral("expected \"note\" to be a text, found %1").arg(jsonText(note));
        return false;
    }
    step->note = note.toString();
    if (object.contains(TopicMember) == object.contains(ActionMember)) {
        *problem = QStringLiteral("expected either \"topic\" or \"action\", found both or none");
        return false;
    }
    if (object.contains(TopicMember))
        return readMessage(object, step, problem);
    if (object == QJsonObject { { ActionMember, QStringLiteral("repeat") } }) {
        step->kind = Scenario::Step::Repeat;
        return true;
    }
    step->kind = Scenario::Step::Act;
    return Action::fromJson(object, &step->action, problem);
}

/** All names that a zone can have while the scenario is played. */
QStringList findZoneNames(const QString &mainZone, const QVector<Scenario::Step> &steps)
{
    QStringList names { mainZone };
    const QVector<ZoneDescription> others = Library::zones().mid(1);
    for (const ZoneDescription &zone : others)
        names.append(zone.name);
    for (const Scenario::Step &step : steps) {
        if (step.action.name == QLatin1String("rename"))
            names.append(step.action.text("name"));
    }
    return names;
}

} // namespace

Scenario::Scenario(const QString &mainZone)
    : m_mainZone(mainZone)
{
}

bool Scenario::load(const QString &fileName, QString *problem)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        *problem = QStringLiteral("%1: cannot be read: %2").arg(fileName, file.errorString());
        return false;
    }
    return parse(file.readAll(), fileName, problem);
}

bool Scenario::parse(const QByteArray &text, const QString &fileName, QString *problem)
{
    const auto complain = [&fileName, problem](int line, const QString &what) {
        *problem = QStringLiteral("%1:%2: %3").arg(fileName).arg(line).arg(what);
        return false;
    };
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        return complain(
            lineAt(text, error.offset), QStringLiteral("expected JSON: ") + error.errorString());
    if (!document.isArray())
        return complain(1, QStringLiteral("expected an array of steps, found an object"));
    const QJsonArray array = document.array();
    const QVector<Element> elements = findElements(text);

    QVector<Step> steps;
    bool takesTime = false;
    for (int i = 0; i < array.size(); ++i) {
        Step step;
        QString what;
        if (!array.at(i).isObject())
            return complain(elements.at(i).line,
                QStringLiteral("expected a step in braces, found %1").arg(jsonText(array.at(i))));
        // A reader of JSON keeps one of them without a word.
        if (elements.at(i).members != array.at(i).toObject().size())
            return complain(
                elements.at(i).line, QStringLiteral("expected each member once, found one twice"));
        if (!readStep(array.at(i).toObject(), &step, &what))
            return complain(elements.at(i).line, what);
        takesTime = takesTime || step.afterMs > 0;
        if (step.kind == Step::Repeat && !takesTime)
            return complain(elements.at(i).line,
                QStringLiteral("expected an \"after_ms\" above 0 on or before \"repeat\", "
                               "found none"));
        steps.append(step);
    }
    const QStringList zones = findZoneNames(m_mainZone, steps);
    for (int i = 0; i < steps.size(); ++i) {
        const QStringList wanted = steps.at(i).action.zones();
        for (const QString &zone : wanted) {
            if (!zone.isEmpty() && !zones.contains(zone))
                return complain(elements.at(i).line,
                    QStringLiteral("expected a zone (%1), found \"%2\"")
                        .arg(zones.join(QStringLiteral(", ")), zone));
        }
    }
    m_steps = steps;
    return true;
}

QString Scenario::description() const
{
    return m_steps.isEmpty() ? QString() : m_steps.first().note;
}
