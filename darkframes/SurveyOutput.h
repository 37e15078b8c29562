// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/Survey.h"

#include <QJsonObject>
#include <QString>

/// A survey for machines and for people.
namespace darkframes {

/// {"frames", "width", "height", "planes": [...], "threshold" or "sigma", "clusters",
/// "flickering"}, figures that are not defined as null. A list's room adds "capacity".
QJsonObject surveyObject(const DarkStack& stack, const Survey& survey, const Findings& findings,
                         const std::optional<ListRoom>& room);

/// The same as tables of at most 100 columns, without a line end at the end.
QString surveyText(const DarkStack& stack, const Survey& survey, const Findings& findings,
                   const std::optional<ListRoom>& room);

/// 5, 10, 15 … 255, or 256 times those.
std::vector<std::uint32_t> surveyThresholds(std::uint32_t bitsPerPixel);

} // namespace darkframes
