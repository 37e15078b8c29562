// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayList>
#include <QMetaMethod>
#include <QMetaObject>

/// The signals and slots that a class declares itself, in the order of its meta-object.
inline QByteArrayList methodsOf(const QMetaObject& meta)
{
    QByteArrayList methods;
    for (int method = meta.methodOffset(); method < meta.methodCount(); ++method) {
        methods << meta.method(method).methodSignature();
    }
    return methods;
}
