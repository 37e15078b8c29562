// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaObject>
#include <QStringList>

/// The signals and slots that a class declares itself, in the order of its meta-object, such as
/// "signal valueChanged(int)", "public setText(QString)" or "protected redraw()".
QStringList methodsOf(const QMetaObject& metaObject);
