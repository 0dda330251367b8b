// SPDX-License-Identifier: GPL-3.0-or-later
#include "sysfile.h"

#include <QDebug>
#include <QTextStream>
#include <QThread>

SysFile::SysFile()
    : SysFile(QString())
{
}

SysFile::SysFile(const QString &fileName)
{
    qDebug().noquote().nospace() << "SysFile::constructor in thread " << QThread::currentThreadId();
    setFileName(fileName);
}

void SysFile::write(uint value)
{
    // An attribute that is not there must not be created. The name is tested first because opening
    // a file without one makes Qt log a warning of its own.
    if (fileName().isEmpty()
        || !open(QIODevice::WriteOnly | QIODevice::Text | QIODevice::ExistingOnly)) {
        qWarning().noquote().nospace() << "SysFile::write() failed to open file: " << fileName();
        return;
    }
    QTextStream(this) << value; // flushed when the stream goes, at the end of this statement
    close();
}
