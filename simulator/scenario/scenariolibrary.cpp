// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/scenariolibrary.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

QStringList ScenarioLibrary::places()
{
    const QDir program(QCoreApplication::applicationDirPath());
    return { QDir::cleanPath(program.filePath(QStringLiteral(TOUCHUI_SCENARIOS_INSTALLED))),
        QDir::cleanPath(program.filePath(QStringLiteral(TOUCHUI_SCENARIOS_SOURCE))) };
}

QString ScenarioLibrary::folder()
{
    const QStringList candidates = places();
    for (const QString &place : candidates) {
        if (QFileInfo(place).isDir())
            return place;
    }
    return QString();
}

QStringList ScenarioLibrary::names()
{
    QStringList names;
    if (folder().isEmpty())
        return names;
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
