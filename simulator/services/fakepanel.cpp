// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/fakepanel.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

/** What a value of the attribute means to somebody who looks at the panel. */
QString meaning(const QString &attribute, const QByteArray &value)
{
    if (attribute == QLatin1String("bl_power"))
        return value == "0" ? QStringLiteral("lit") : QStringLiteral("dark");
    return QStringLiteral("brightness ") + QString::fromLatin1(value);
}

} // namespace

FakePanel::FakePanel(QObject *parent)
    : QObject(parent)
{
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &FakePanel::read);
}

bool FakePanel::create(const QString &directory, QString *problem)
{
    const QDir panel(directory + QStringLiteral("/simulated-panel"));
    for (const char *const attribute : { "brightness", "bl_power" }) {
        QFile file(panel.filePath(QLatin1String(attribute)));
        if (!panel.mkpath(QStringLiteral(".")) || !file.open(QIODevice::WriteOnly)) {
            *problem = QStringLiteral("--panel: cannot make %1: %2")
                           .arg(file.fileName(), file.errorString());
            return false;
        }
        m_watcher.addPath(file.fileName());
    }
    return true;
}

void FakePanel::read(const QString &file)
{
    QFile attribute(file);
    if (!attribute.open(QIODevice::ReadOnly))
        return;
    const QByteArray value = attribute.readAll().trimmed();
    // Opening a file for writing empties it, which is a change as well.
    if (value.isEmpty() || m_values.value(file) == value)
        return;
    m_values.insert(file, value);
    emit told(QStringLiteral("panel: ") + meaning(QFileInfo(file).fileName(), value));
}
