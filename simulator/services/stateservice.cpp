// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/stateservice.h"

#include "simulator/house/simulatedtime.h"
#include "simulator/services/topics.h"

namespace {

// Simulated time of the stages of an update.
constexpr int InstallingMs = 12000;
constexpr int RebootingMs = 4000;
constexpr int StartingMs = 3000;

struct Setting {
    const char *key;
    const char *value;
};

/** The settings as somebody has left them on the appliance's web page. */
constexpr Setting Settings[] = {
    { "touchscreen_blankscreen", "false" },
    { "touchscreen_scrolling", "true" },
    { "touchscreen_clock24", "true" },
    { "touchscreen_clockcolor", "grey" },
    { "touchscreen_custom_clockcolor", "#c58f2c" },
    { "touchscreen_screensaver_time", "10" },
    { "touchscreen_hide_power_button", "false" },
    { "touchscreen_hide_option_buttons", "false" },
    { "touchscreen_show_blur_image", "true" },
};

} // namespace

StateService::StateService(double speed, QObject *parent)
    : QObject(parent)
    , m_speed(speed)
    , m_state({ { "Stage", "true" }, { "Init", "true" }, { "Installation", "false" },
          { "RequireConfigure", "false" }, { "RequireReboot", "false" },
          { "ConfigureIsRunning", "false" }, { "UpdateAvailable", "false" },
          { "UpdateInstalling", "false" }, { "UpdateInhibited", "false" },
          { "WebIfaceIsUp", "true" }, { "TimeSynced", "true" }, { "UpdateInfo", "" },
          { "InhibitReason", "" } })
{
    m_stageTimer.setSingleShot(true);
    connect(&m_stageTimer, &QTimer::timeout, this, &StateService::nextStage);
}

void StateService::start()
{
    m_started = true;
    republish();
}

void StateService::republish()
{
    // Even the empty texts: the broker may still hold those of an earlier run.
    for (auto it = m_state.cbegin(); it != m_state.cend(); ++it)
        emit publish(Topics::state(it.key().constData()), it.value(), true);
    for (const Setting &setting : Settings)
        emit publish(Topics::settings(setting.key), setting.value, true);
}

void StateService::offerUpdate(const QString &info)
{
    set("UpdateInfo", info.toUtf8());
    set("UpdateAvailable", info.isEmpty() ? "false" : "true");
}

bool StateService::installUpdate(QString *reason)
{
    if (isInstalling())
        *reason = QStringLiteral("an update is being installed already");
    else if (m_state.value("UpdateInhibited") == "true")
        *reason = QStringLiteral("updates are held back: ")
            + QString::fromUtf8(m_state.value("InhibitReason"));
    else if (m_state.value("UpdateAvailable") != "true")
        *reason = QStringLiteral("there is no update");
    else {
        enter(Stage::Installing);
        return true;
    }
    return false;
}

void StateService::inhibitUpdates(const QString &reason)
{
    set("InhibitReason", reason.toUtf8());
    set("UpdateInhibited", reason.isEmpty() ? "false" : "true");
}

void StateService::set(const char *key, const QByteArray &value)
{
    if (m_state.value(key) == value)
        return;
    m_state[key] = value;
    if (m_started)
        emit publish(Topics::state(key), value, true);
}

void StateService::enter(Stage stage)
{
    m_stage = stage;
    int durationMs = 0;
    switch (stage) {
    case Stage::Installing:
        emit told(QStringLiteral("update: installing"));
        set("Installation", "true");
        set("UpdateInstalling", "true");
        durationMs = InstallingMs;
        break;
    case Stage::Rebooting:
        emit told(QStringLiteral("update: rebooting"));
        set("RequireReboot", "true");
        set("WebIfaceIsUp", "false");
        durationMs = RebootingMs;
        break;
    case Stage::Starting:
        emit told(QStringLiteral("update: starting"));
        set("Init", "false");
        set("RequireReboot", "false");
        offerUpdate(QString());
        durationMs = StartingMs;
        break;
    case Stage::None:
        emit told(QStringLiteral("update: done"));
        set("Init", "true");
        set("WebIfaceIsUp", "true");
        set("Installation", "false");
        set("UpdateInstalling", "false");
        return;
    }
    if (m_speed > 0)
        m_stageTimer.start(realMs(durationMs, m_speed));
}

void StateService::nextStage()
{
    switch (m_stage) {
    case Stage::Installing:
        enter(Stage::Rebooting);
        break;
    case Stage::Rebooting:
        enter(Stage::Starting);
        break;
    case Stage::Starting:
    case Stage::None:
        enter(Stage::None);
        break;
    }
}
