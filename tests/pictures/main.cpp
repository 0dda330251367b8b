// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparison.h"
#include "gallery.h"
#include "testkit/machine/hostidentity.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int SmallestFile = 0; // as QImage::save() counts it for PNG: lossless, but slow

/** Takes all pictures of one panel into a directory. */
bool take(const PanelKind &kind, const QDir &directory)
{
    Studio studio(kind);
    if (!studio.start())
        return false;
    const QVector<Shot> shots = gallery();
    for (const Shot &shot : shots) {
        const QString file
            = directory.filePath(shot.name + QLatin1Char('-') + kind.name + QStringLiteral(".png"));
        if (!shot.arrange(studio)) {
            std::fprintf(stderr, "%s: did not come about\n", qUtf8Printable(file));
            studio.picture().save(file, "PNG", SmallestFile);
            studio.printLog();
            return false;
        }
        if (!studio.picture().save(file, "PNG", SmallestFile)) {
            std::fprintf(stderr, "%s: cannot be written\n", qUtf8Printable(file));
            return false;
        }
        std::printf("%s\n", qUtf8Printable(QFileInfo(file).fileName()));
        std::fflush(stdout);
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(
        QStringLiteral("Takes pictures of every page and pop-up of the real program."));
    options.addPositionalArgument(QStringLiteral("directory"), QStringLiteral("Where they go."));
    options.addOption({ QStringLiteral("panel"),
        QStringLiteral("A panel by its name, or \"all\"; may be given again. Default: 800x480 and "
                       "1280x800."),
        QStringLiteral("name") });
    options.addOption({ QStringLiteral("compare"),
        QStringLiteral(
            "Compares them with the pictures of the same names in that directory, if there are; "
            "differences are left in the first one."),
        QStringLiteral("baselines") });
    options.addHelpOption();
    options.process(application);
    const QStringList arguments = options.positionalArguments();
    if (arguments.size() != 1 || !QDir().mkpath(arguments.first()))
        options.showHelp(EXIT_FAILURE);

    if (!appearAs("velunor")) {
        std::fprintf(
            stderr, "cannot set up host name and network; is this run by testkit/sandbox?\n");
        return EXIT_FAILURE;
    }
    const QDir directory(arguments.first());
    QStringList wanted = options.values(QStringLiteral("panel"));
    if (wanted.isEmpty())
        wanted = QStringList { QStringLiteral("800x480"), QStringLiteral("1280x800") };
    const QVector<PanelKind> kinds = panelKinds();
    for (const PanelKind &kind : kinds) {
        if (wanted.removeAll(kind.name) == 0 && !wanted.contains(QStringLiteral("all")))
            continue;
        if (!take(kind, directory))
            return EXIT_FAILURE;
    }
    wanted.removeAll(QStringLiteral("all"));
    if (!wanted.isEmpty()) {
        std::fprintf(stderr, "there is no panel %s\n", qUtf8Printable(wanted.first()));
        return EXIT_FAILURE;
    }
    if (!options.isSet(QStringLiteral("compare")))
        return EXIT_SUCCESS;
    return compareWithBaselines(directory, QDir(options.value(QStringLiteral("compare"))))
        ? EXIT_SUCCESS
        : EXIT_FAILURE;
}
