// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/// Every text that a person sees in a window: titles, labels, buttons, menus, headers, tool tips.
[[nodiscard]] QStringList shownTexts(const QWidget& window);

/// Those of a window's visible texts that have less room than they need, each with what it has and
/// needs.
[[nodiscard]] QStringList cutOffTexts(const QWidget& window);
