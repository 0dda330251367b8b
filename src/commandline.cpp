// SPDX-License-Identifier: GPL-3.0-or-later
#include "commandline.h"

#include <cstring>

namespace {

QString helpText()
{
    return QStringLiteral(
        "Usage: velunor-touchui [--help | --version] [ARGUMENT OF QT]...\n"
        "\n"
        "The full-screen touch front end of a small audio appliance. It shows what the broker at\n"
        "127.0.0.1:1883 tells, until SIGINT or SIGTERM ends it.\n"
        "\n"
        "  --help     show this text and end\n"
        "  --version  show the version and end\n"
        "\n"
        "Qt takes arguments such as -platform eglfs. Everything else is set by the environment\n"
        "(VELUNOR_TOUCHUI_CONTROL_ZONE, VELUNOR_TOUCHUI_WIDTH, ...): see velunor-touchui(8).\n");
}

} // namespace

QString CommandLine::answer(int argc, const char *const *argv)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0)
            return helpText();
        if (std::strcmp(argv[i], "--version") == 0)
            return QStringLiteral("velunor-touchui " TOUCHUI_VERSION "\n");
    }
    return {};
}
