// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzzing.h"
#include "settings.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/* The ini file as it is found at the start. */

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::start();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    // A folder for each input: QSettings remembers files by their names.
    static const QTemporaryDir place(QStringLiteral("/dev/shm/fuzz-settings-XXXXXX"));
    static int number = 0;
    const QString folder = place.filePath(QString::number(++number));
    QDir().mkpath(folder);
    {
        QFile file(folder + QStringLiteral("/velunor-touch.ini"));
        Fuzzing::require(file.open(QIODevice::WriteOnly)
                && file.write(Fuzzing::bytes(data, size)) == qint64(size),
            "the file can be written");
    }
    Settings settings(folder);
    settings.setLcdBrightness(settings.brightness() ^ 1u);
    settings.save();
    const Settings again(folder);
    Fuzzing::require(again.brightness() == settings.brightness()
            && again.clockBrightness() == settings.clockBrightness(),
        "what was saved is read again");
    Fuzzing::require(again.defaultPlayerScreen() == settings.defaultPlayerScreen(),
        "what was not touched stays");
    QDir(folder).removeRecursively();
    return 0;
}
