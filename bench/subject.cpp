// SPDX-License-Identifier: GPL-3.0-or-later
#include "subject.h"

#include "eventwait.h"
#include "playingzone.h"
#include "testkit/services/notifysocket.h"

#include <QTemporaryDir>

namespace {

const QString SceneVariable = QStringLiteral("TOUCHUI_BARE_SCENE");

/** Where the driver keeps compiled shaders from one start to the next, as for the service. */
QString cacheDirectory()
{
    static const QTemporaryDir directory;
    return directory.path();
}

} // namespace

void Subject::prepareProbedProgram(Program &program, Platform platform, const Display &display)
{
    program.unsetEnvironment(QStringLiteral("TOUCHUI_DEBUG"));
    program.setEnvironment(QStringLiteral("XDG_CACHE_HOME"), cacheDirectory());
    program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_CONTROL_ZONE"), PlayingZone::name());
    if (platform == OpenGl)
        program.drawOn(display.name());
}

void Subject::prepareProgram(Program &program, Platform platform, const Display &display)
{
    prepareProbedProgram(program, platform, display);
    program.unsetEnvironment(QStringLiteral("QT_QPA_GENERIC_PLUGINS"));
}

void Subject::prepareBareWindow(
    Program &program, Platform platform, const Display &display, Motion motion)
{
    prepareProgram(program, platform, display);
    program.setExecutable(QStringLiteral(TOUCHUI_BARE_WINDOW));
    if (motion == Ticking)
        program.setEnvironment(SceneVariable, QStringLiteral("qrc:/ticking_text.qml"));
    else if (motion == Running)
        program.setEnvironment(SceneVariable, QStringLiteral("qrc:/running_text.qml"));
}

bool Subject::startUntilReady(Program &program)
{
    NotifySocket serviceManager;
    program.setEnvironment(QStringLiteral("NOTIFY_SOCKET"), serviceManager.path());
    return program.start() && waitForEvent([&] { return serviceManager.count("READY=1") == 1; });
}

bool Subject::showsPlayer(Program &program)
{
    return program.waitForLine(
        Line::info(QStringLiteral("ImageProvider::requestImage() return fetched mage")));
}
