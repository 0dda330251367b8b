// SPDX-License-Identifier: GPL-3.0-or-later
#include "metatable.h"

#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaProperty>

namespace {

QString accessWord(QMetaMethod::Access access)
{
    switch (access) {
    case QMetaMethod::Private:
        return QStringLiteral("private");
    case QMetaMethod::Protected:
        return QStringLiteral("protected");
    case QMetaMethod::Public:
        return QStringLiteral("public");
    }
    return QString();
}

QString kindWord(QMetaMethod::MethodType type)
{
    switch (type) {
    case QMetaMethod::Signal:
        return QStringLiteral("signal");
    case QMetaMethod::Slot:
        return QStringLiteral("slot");
    case QMetaMethod::Method:
        return QStringLiteral("method");
    case QMetaMethod::Constructor:
        return QStringLiteral("constructor");
    }
    return QString();
}

} // namespace

QStringList propertyTable(const QMetaObject &metaObject)
{
    QStringList table;
    for (int i = metaObject.propertyOffset(); i < metaObject.propertyCount(); ++i) {
        const QMetaProperty property = metaObject.property(i);
        QStringList words { QString::fromLatin1(property.typeName()),
            QString::fromLatin1(property.name()) };
        if (property.isReadable())
            words.append(QStringLiteral("read"));
        if (property.isWritable())
            words.append(QStringLiteral("write"));
        if (property.hasNotifySignal())
            words.append(QString::fromLatin1(property.notifySignal().methodSignature()));
        if (property.isConstant())
            words.append(QStringLiteral("constant"));
        if (!property.isDesignable())
            words.append(QStringLiteral("undesignable"));
        if (!property.isScriptable())
            words.append(QStringLiteral("unscriptable"));
        if (!property.isStored())
            words.append(QStringLiteral("unstored"));
        table.append(words.join(QLatin1Char(' ')));
    }
    return table;
}

QStringList methodTable(const QMetaObject &metaObject)
{
    QStringList table;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        QStringList words { accessWord(method.access()), kindWord(method.methodType()) };
        if (method.returnType() != QMetaType::Void)
            words.append(QString::fromLatin1(method.typeName()));
        words.append(QString::fromLatin1(method.methodSignature()));
        if (method.attributes() & QMetaMethod::Cloned)
            words.append(QStringLiteral("cloned"));
        table.append(words.join(QLatin1Char(' ')));
    }
    return table;
}

QStringList enumeratorTable(const QMetaObject &metaObject)
{
    QStringList table;
    for (int i = metaObject.enumeratorOffset(); i < metaObject.enumeratorCount(); ++i) {
        const QMetaEnum enumeration = metaObject.enumerator(i);
        for (int k = 0; k < enumeration.keyCount(); ++k) {
            table.append(QStringLiteral("%1::%2 %3")
                             .arg(QString::fromLatin1(enumeration.name()),
                                 QString::fromLatin1(enumeration.key(k)))
                             .arg(enumeration.value(k)));
        }
    }
    return table;
}
