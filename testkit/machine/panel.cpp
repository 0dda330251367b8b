// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/panel.h"

#include "testkit/process/filecontents.h"

#include <QDir>
#include <QFile>

namespace {

const QString Brightness = QStringLiteral("brightness");
const QString Power = QStringLiteral("bl_power");

} // namespace

Panel::Panel(const QString &name)
    : m_directory(QStringLiteral("/sys/class/backlight/") + name)
{
    create();
}

void Panel::create()
{
    QFile brightness(attribute(Brightness));
    QFile power(attribute(Power));
    if (!QDir().mkpath(m_directory) || !brightness.open(QIODevice::WriteOnly)
        || !power.open(QIODevice::WriteOnly))
        qFatal("cannot create the panel %s", qUtf8Printable(m_directory));
}

Panel::~Panel()
{
    remove();
}

void Panel::remove()
{
    QDir(m_directory).removeRecursively();
}

QByteArray Panel::brightness() const
{
    return fileContents(attribute(Brightness));
}

QByteArray Panel::power() const
{
    return fileContents(attribute(Power));
}

void Panel::makeUnwritable()
{
    for (const QString &name : { Brightness, Power }) {
        if (!QFile::remove(attribute(name)) || !QDir().mkdir(attribute(name)))
            qFatal("cannot replace the attribute %s", qUtf8Printable(attribute(name)));
    }
}

QString Panel::attribute(const QString &name) const
{
    return m_directory + QLatin1Char('/') + name;
}
