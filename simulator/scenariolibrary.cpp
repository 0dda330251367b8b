// SPDX-License-Identifier: GPL-3.0-or-later
#include "scenariolibrary.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QString ScenarioLibrary::folder()
{
    const QStringList places { QStringLiteral(TOUCHUI_SCENARIOS_SOURCE),
        QCoreApplication::applicationDirPath() + QStringLiteral("/" TOUCHUI_SCENARIOS_INSTALLED) };
    for (const QString &place : places) {
        if (QFileInfo(place).isDir())
            return QDir::cleanPath(place);
    }
    return QString();
}

QStringList ScenarioLibrary::names()
{
    QStringList names;
    const QFileInfoList files
        = QDir(folder()).entryInfoList({ QStringLiteral("*.json") }, QDir::Files, QDir::Name);
    for (const QFileInfo &file : files)
        names.append(file.completeBaseName());
    return names;
}

QString ScenarioLibrary::file(const QString &name)
{
    if (names().contains(name))
        return folder() + QLatin1Char('/') + name + QStringLiteral(".json");
    return QFileInfo(name).isFile() ? name : QString();
}
