// SPDX-License-Identifier: GPL-3.0-or-later
#include "faketools.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

FakeTools::FakeTools()
{
    QDir(m_folder.path()).mkdir(QStringLiteral("bin"));
}

void FakeTools::add(const QString &name, const QByteArray &body)
{
    const QString file = QStringLiteral("bin/") + name;
    write(file, "#!/bin/sh\nhere='" + m_folder.path().toLocal8Bit() + "'\n" + body + '\n');
    QFile::setPermissions(path(file), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void FakeTools::write(const QString &file, const QByteArray &text)
{
    QDir().mkpath(QFileInfo(path(file)).path());
    QFile target(path(file));
    if (target.open(QIODevice::WriteOnly))
        target.write(text);
}

void FakeTools::append(const QString &file, const QByteArray &text)
{
    QFile target(path(file));
    if (target.open(QIODevice::Append))
        target.write(text);
}

QByteArray FakeTools::read(const QString &file) const
{
    QFile source(path(file));
    return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
}

QStringList FakeTools::lines(const QString &file) const
{
    return QString::fromLocal8Bit(read(file)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QProcessEnvironment FakeTools::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"),
        path(QStringLiteral("bin")) + QLatin1Char(':') + qEnvironmentVariable("PATH"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}
