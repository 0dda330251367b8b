// SPDX-License-Identifier: GPL-3.0-or-later
#include "subject.h"

#include "playingzone.h"

void Subject::prepareProbedProgram(Program &program, Platform platform, const Display &display)
{
    program.unsetEnvironment(QStringLiteral("TOUCHUI_DEBUG"));
    program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_CONTROL_ZONE"), PlayingZone::name());
    if (platform == OpenGl)
        program.drawOn(display.name());
}

void Subject::prepareProgram(Program &program, Platform platform, const Display &display)
{
    prepareProbedProgram(program, platform, display);
    program.unsetEnvironment(QStringLiteral("QT_QPA_GENERIC_PLUGINS"));
}

void Subject::prepareBareWindow(Program &program, Platform platform, const Display &display)
{
    prepareProgram(program, platform, display);
    program.setExecutable(QStringLiteral(TOUCHUI_BARE_WINDOW));
}

bool Subject::showsPlayer(Program &program)
{
    return program.waitForLine(
        Line::info(QStringLiteral("ImageProvider::requestImage() return fetched mage")));
}
