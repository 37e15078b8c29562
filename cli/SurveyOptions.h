// SPDX-License-Identifier: MIT
#pragma once

#include "darkframes/FoundPixels.h"
#include "darkframes/Survey.h"
#include "hotpixel/BadpixelEntry.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>

#include <optional>
#include <span>
#include <vector>

class QCommandLineParser;
class Report;

/// What `detect` and `survey` ask for alike: how hot a pixel has to be.
namespace cli {

/// --threshold and --sigma
QList<QCommandLineOption> ruleOptions();

/// How hot a pixel has to be, as the options say it: nothing that depends on the frames is decided.
struct AskedRule
{
    std::optional<std::uint32_t> threshold;
    std::optional<double> sigma;
};

/// @param wide whether the frames may have 16 bits, as those of files
/// @throws UsageError for both at once and for what is no such number
AskedRule askedRule(const QCommandLineParser& parser, bool wide);

/// The rule for frames of this depth: without any, 40 grey levels of 8 bits or 256 times that
/// of 16.
/// @throws UsageError for a threshold that no frame of this depth can have
HotRule ruleFor(const AskedRule& asked, std::uint32_t bitsPerPixel);

/// "more than 40 grey levels above the mean of their plane" and the like.
[[nodiscard]] QString ruleText(const HotRule& rule, bool isBayer);

/// Tells machines the "threshold", or the "sigma" instead.
void reportRule(const HotRule& rule, Report& report);

/// The option @p name as a whole number.
/// @throws UsageError "NAME has to be a number from LEAST to GREATEST, not ..."
std::uint32_t numberOf(const QCommandLineParser& parser, const char* name, const QString& what,
                       std::uint32_t least, std::uint32_t greatest);

/// The positions of those entries that are of this class.
std::vector<PixelPosition> positionsOf(std::span<const BadpixelEntry> entries,
                                       Pixelclass pixelClass);

/// What of a list of @p capacity entries is left over beside known ones, and the threshold that
/// makes use of it.
/// @param known pixels that are not found again
/// @param taken how many entries the list has
ListRoom listRoom(const DarkStack& stack, const Survey& survey, std::uint64_t capacity,
                  std::uint64_t taken, std::vector<PixelPosition> known);

} // namespace cli
