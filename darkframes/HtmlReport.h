// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/FoundPixels.h"
#include "darkframes/Survey.h"

#include <QString>

#include <optional>
#include <span>
#include <utility>
#include <vector>

/// What a report says about where its frames come from. Any text; it is escaped.
struct ReportContext
{
    QString title;
    /// What was looked at: files or camera, serial number, exposure, gain, rate, date ...
    std::vector<std::pair<QString, QString>> facts;
    QString command; ///< that makes the report again
    QString program; ///< with its version
};

namespace darkframes {

/// One page of HTML that needs nothing else: no network, no scripts, pictures as part of it. It is
/// made for screens from the size of a phone on, light and dark, and for paper.
/// @param pixels what was found, hot ones first, as foundPixels() gives them; with those of lists
/// that were not found behind them, they are drawn on the map as well
QString htmlReport(const Survey& survey, const Findings& findings,
                   std::span<const FoundPixel> pixels, const std::optional<ListRoom>& room,
                   const ReportContext& context);

} // namespace darkframes
