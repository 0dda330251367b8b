// SPDX-License-Identifier: GPL-3.0-or-later
#include "soak.h"
#include "testkit/machine/display.h"

#include <QCoreApplication>
#include <QFile>
#include <QTextStream>

#include <cstdio>
#include <cstdlib>

/** Arguments: hours, and the file for the samples. Fails when something grows, or goes wrong. */
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    bool isNumber = false;
    const double hours = arguments.value(1).toDouble(&isNumber);
    QFile file(arguments.value(2));
    if (!isNumber || hours <= 0 || !file.open(QIODevice::WriteOnly)) {
        std::fprintf(stderr, "usage: touchui_soak HOURS SAMPLES.csv\n");
        return EXIT_FAILURE;
    }
    QTextStream record(&file);
    Display display;
    Soak soak(hours);
    return display.start() && soak.run(display, record) && soak.report() ? EXIT_SUCCESS
                                                                         : EXIT_FAILURE;
}
