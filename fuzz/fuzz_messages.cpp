// SPDX-License-Identifier: GPL-3.0-or-later
#include "brokertopics.h"
#include "fuzzing.h"
#include "mqtt.h"
#include "navigationcontroller.h"
#include "piecemutator.h"
#include "player.h"
#include "roon.h"
#include "roonzone.h"
#include "roonzones.h"
#include "screencontroller.h"
#include "settings.h"
#include "spotify.h"
#include "velunor_state.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QtNumeric>

/*
 * Messages in sequence, one to a line: "TOPIC PAYLOAD"; a line "!SLOT ARGUMENT" is a touch, which
 * calls that slot of the player or the navigation.
 */

namespace {

/** What is common to the topics of a filter that ends with "#". */
QByteArray prefixOf(const QString &filter)
{
    return filter.chopped(1).toUtf8();
}

/** All topics on which a property can be written, as the dispatch finds it. */
QVector<QByteArray> topics()
{
    const QByteArray zones = prefixOf(BrokerTopics::zones());
    QVector<QByteArray> result { zones + "available", zones + "z1/outputs", zones,
        BrokerTopics::command().toUtf8(), BrokerTopics::remoteConnected().toUtf8(),
        "Velunor/Controller/x/connected", "Velunor", "" };
    const auto append = [&result](const QMetaObject &metaObject, const QByteArray &prefix) {
        for (int i = metaObject.propertyOffset(); i < metaObject.propertyCount(); ++i) {
            const QByteArray name = metaObject.property(i).name();
            result.append(prefix + name);
            const int group = name.indexOf('_');
            if (group > 0)
                result.append(prefix + QByteArray(name).replace(group, 1, "/"));
        }
    };
    for (const char *const zone : { "z1", "z2", "z3" })
        append(RoonZone::staticMetaObject, zones + zone + '/');
    append(Roon::staticMetaObject, prefixOf(BrokerTopics::core()));
    append(Spotify::staticMetaObject, prefixOf(BrokerTopics::spotify()));
    append(VelunorState::staticMetaObject, prefixOf(BrokerTopics::state()));
    for (const char *const key :
        { "blankscreen", "scrolling", "clock24", "clockcolor", "custom_clockcolor",
            "screensaver_time", "hide_power_button", "hide_option_buttons", "show_blur_image" })
        result.append(prefixOf(BrokerTopics::settings()) + "touchscreen_" + key);
    return result;
}

const QVector<QByteArray> &payloads()
{
    static const QVector<QByteArray> values { "", "true", "false", "0", "1", "-1", "0.5", "-0",
        "99.95", "100", "2147483648", "4294967295", "4294967296", "1e38", "1e39", "-1e999", "nan",
        "inf", "0x10", " 7", "\xff\xfe", QByteArray("a\0b", 3), "playing", "paused", "stopped",
        "loading", "disabled", "loop", "loop_one", "Hugo2X", "Hugo2X + Kitchen", "Kitchen + Hugo2X",
        "custom", "green", "#05edff", "<b>x</b>", "127.0.0.1:9330", QByteArray(60, 'x'), "[]", "{}",
        "null", R"([{"id":"z1","name":"Hugo2X"}])",
        R"([{"id":"z1","name":"Hugo2X"},{"id":"z2","name":"Kitchen"}])",
        R"([{"id":"z2","name":"Hugo2X + Kitchen"}])", R"([{"id":"z3","name":"Kitchen + Den"}])",
        R"([{"display_name":"Hugo2X"},{"display_name":"Kitchen"}])",
        R"({"command":"toggle_standby"})", R"({"command":5})", R"([{"id":5,"name":[]},7,"x",{}])" };
    return values;
}

const QVector<QByteArray> &touches()
{
    static const QVector<QByteArray> names = [] {
        QVector<QByteArray> result;
        for (const QMetaObject *const metaObject :
            { &Player::staticMetaObject, &NavigationController::staticMetaObject }) {
            for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
                if (metaObject->method(i).methodType() == QMetaMethod::Slot)
                    result.append(metaObject->method(i).name());
            }
        }
        return result;
    }();
    return names;
}

QByteArray line(PieceMutator::Random &random)
{
    static const QVector<QByteArray> allTopics = topics();
    if (random() % 8 == 0)
        return '!' + PieceMutator::oneOf(touches(), random) + ' '
            + PieceMutator::oneOf(payloads(), random) + '\n';
    return PieceMutator::oneOf(allTopics, random) + ' ' + PieceMutator::oneOf(payloads(), random)
        + '\n';
}

/** Calls the slot @p name, if there is one with at most one argument. */
bool touch(QObject *target, const QByteArray &name, const QByteArray &argument)
{
    const QMetaObject *const metaObject = target->metaObject();
    for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
        const QMetaMethod method = metaObject->method(i);
        if (method.methodType() != QMetaMethod::Slot || method.name() != name)
            continue;
        if (method.parameterCount() == 0)
            return method.invoke(target);
        QVariant value(argument);
        if (method.parameterCount() > 1 || !value.convert(method.parameterType(0)))
            continue;
        return method.invoke(target, QGenericArgument(value.typeName(), value.constData()));
    }
    return false;
}

void apply(const QByteArray &text)
{
    const QByteArray head = text.left(text.indexOf(' '));
    const QByteArray tail = text.mid(head.size() + 1);
    if (!head.startsWith('!')) {
        Mqtt::instance()->processMessageApi(tail, QMqttTopicName(QString::fromUtf8(head)));
        return;
    }
    if (!touch(Player::instance(), head.mid(1), tail))
        touch(NavigationController::instance(), head.mid(1), tail);
}

void check()
{
    const Player &player = *Player::instance();
    for (const float number :
        { player.volume(), player.minVolume(), player.maxVolume(), player.volumeStep() })
        Fuzzing::require(qIsFinite(number), "volumes are numbers");
    for (const float limit :
        { player.limitMinVolume(), player.limitMaxVolume(), player.limitSoftVolume() })
        Fuzzing::require(!qIsInf(limit), "limits are numbers, or unknown");
    for (const QString &time : { player.lengthText(), player.seekPositionText() })
        Fuzzing::require(time.size() >= 4 && time.at(time.size() - 3) == QLatin1Char(':'),
            "times are minutes and seconds");
    if (!Settings::instance()->scrolling())
        Fuzzing::require(player.song().size() <= 41 && player.artist().size() <= 33
                && player.album().size() <= 27,
            "texts that do not scroll are cut");
    const QStringList names = RoonZones::instance()->availableNames();
    for (int i = 0; i < names.size(); ++i) {
        Fuzzing::require(!names.at(i).isEmpty(), "listed zones have names");
        Fuzzing::require(i == 0 || names.at(i - 1).compare(names.at(i), Qt::CaseInsensitive) <= 0,
            "listed zones are sorted");
    }
    const QStringList colors { QStringLiteral("grey"), QStringLiteral("green"),
        QStringLiteral("blue"), QStringLiteral("custom") };
    Fuzzing::require(
        colors.contains(Settings::instance()->clockColor()), "the clock's colour is a known one");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::start();
    // In the program's order.
    Mqtt::instance();
    Settings::instance();
    VelunorState::instance();
    Player::instance();
    Roon::instance();
    ScreenController::instance();
    NavigationController::instance();
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(
    std::uint8_t *data, std::size_t size, std::size_t maxSize, unsigned int seed)
{
    static const PieceMutator mutator(PieceMutator::lines, line);
    return mutator.mutate(data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // What the input before has left: no zone, and the wanted one as at the start.
    RoonZones::instance()->updateAvailableZones("[]");
    Player::instance()->setWantedZone(QStringLiteral("Hugo2X"));
    for (QByteArray text : PieceMutator::lines(Fuzzing::bytes(data, size))) {
        if (text.endsWith('\n'))
            text.chop(1);
        apply(text);
        check();
    }
    QCoreApplication::processEvents();
    return 0;
}
