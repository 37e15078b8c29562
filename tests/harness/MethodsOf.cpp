// SPDX-License-Identifier: MIT
#include "tests/harness/MethodsOf.h"

#include <QMetaMethod>

namespace {

QLatin1String kindOf(const QMetaMethod& method)
{
    if (method.methodType() == QMetaMethod::Signal) {
        return QLatin1String("signal");
    }
    switch (method.access()) {
    case QMetaMethod::Public:
        return QLatin1String("public");
    case QMetaMethod::Protected:
        return QLatin1String("protected");
    default:
        return QLatin1String("private");
    }
}

} // namespace

QStringList methodsOf(const QMetaObject& metaObject)
{
    QStringList methods;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        methods.append(kindOf(method) + QLatin1Char(' ') +
                       QString::fromLatin1(method.methodSignature()));
    }
    return methods;
}
