// SPDX-License-Identifier: MIT
#include "cli/SurveyOptions.h"

#include "cli/Command.h"
#include "cli/Console.h"
#include "darkframes/SurveyOutput.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

constexpr auto ThresholdOption = "threshold";
constexpr auto SigmaOption = "sigma";

constexpr std::uint32_t LeastThreshold = 5;
constexpr std::uint32_t GreatestThreshold = 255;
constexpr std::uint32_t DefaultThreshold = 40;

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(SurveyOptions)
};

QString rangeText(const QString& what, std::uint32_t least, std::uint32_t greatest,
                  const QString& given)
{
    return Text::tr("%1 has to be a number from %2 to %3, not \"%4\".")
        .arg(what, QString::number(least), QString::number(greatest), given);
}

} // namespace

namespace cli {

QList<QCommandLineOption> ruleOptions()
{
    return {{QLatin1String(ThresholdOption),
             Text::tr("How many grey levels above the mean a hotpixel is, from %1 to %2 (%3 unless "
                      "told); for frames of 16 bits up to %4 (%5 unless told).")
                 .arg(LeastThreshold)
                 .arg(GreatestThreshold)
                 .arg(DefaultThreshold)
                 .arg(GreatestThreshold * darkframes::levelScale(16))
                 .arg(DefaultThreshold * darkframes::levelScale(16)),
             QStringLiteral("N")},
            {QLatin1String(SigmaOption),
             Text::tr("Instead of a threshold: a hotpixel is more than K robust deviations above "
                      "the median."),
             QStringLiteral("K")}};
}

std::uint32_t numberOf(const QCommandLineParser& parser, const char* name, const QString& what,
                       std::uint32_t least, std::uint32_t greatest)
{
    bool isNumber = false;
    const QString given = parser.value(QLatin1String(name));
    const std::uint32_t number = given.toUInt(&isNumber);
    if (!isNumber || number < least || number > greatest) {
        throw UsageError(rangeText(what, least, greatest, given));
    }
    return number;
}

AskedRule askedRule(const QCommandLineParser& parser, bool wide)
{
    AskedRule rule;
    const bool bySigma = parser.isSet(QLatin1String(SigmaOption));
    if (parser.isSet(QLatin1String(ThresholdOption))) {
        if (bySigma) {
            throw UsageError(Text::tr("--threshold and --sigma contradict each other."));
        }
        rule.threshold =
            numberOf(parser, ThresholdOption, Text::tr("The threshold"), LeastThreshold,
                     GreatestThreshold * darkframes::levelScale(wide ? 16 : 8));
    }
    if (bySigma) {
        bool isNumber = false;
        const QString given = parser.value(QLatin1String(SigmaOption));
        const double sigma = given.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(sigma) || sigma < 0) {
            throw UsageError(
                Text::tr("The number of deviations has to be 0 or more, not \"%1\".").arg(given));
        }
        rule.sigma = sigma;
    }
    return rule;
}

HotRule ruleFor(const AskedRule& asked, std::uint32_t bitsPerPixel)
{
    const std::uint32_t scale = darkframes::levelScale(bitsPerPixel);
    const std::uint32_t threshold = asked.threshold.value_or(DefaultThreshold * scale);
    if (threshold > GreatestThreshold * scale) {
        throw UsageError(rangeText(Text::tr("The threshold"), LeastThreshold,
                                   GreatestThreshold * scale, QString::number(threshold)));
    }
    return {threshold, asked.sigma};
}

QString ruleText(const HotRule& rule, bool isBayer)
{
    const QString plane = isBayer ? Text::tr(" of their plane") : QString();
    const QString limit = rule.sigma
                              ? Text::tr("%1 robust deviations above the median").arg(*rule.sigma)
                              : Text::tr("%1 grey levels above the mean").arg(rule.threshold);
    return Text::tr("more than %1%2").arg(limit, plane);
}

void reportRule(const HotRule& rule, Report& report)
{
    if (rule.sigma) {
        report.insert("sigma", *rule.sigma);
    } else {
        report.insert("threshold", static_cast<qint64>(rule.threshold));
    }
}

std::vector<PixelPosition> positionsOf(std::span<const BadpixelEntry> entries,
                                       Pixelclass pixelClass)
{
    std::vector<PixelPosition> positions;
    for (const BadpixelEntry& entry : entries) {
        if (entry.pixelClass == pixelClass) {
            positions.push_back({entry.x, entry.y});
        }
    }
    return positions;
}

ListRoom listRoom(const DarkStack& stack, const Survey& survey, std::uint64_t capacity,
                  std::uint64_t taken, std::vector<PixelPosition> known)
{
    std::ranges::sort(known);
    known.erase(std::unique(known.begin(), known.end()), known.end());
    const auto thresholds = darkframes::surveyThresholds(survey.info.bitsPerPixel);
    return {capacity, taken,
            darkframes::fillingThreshold(stack, survey.searchPlanes(), known,
                                         capacity - std::min(capacity, taken), thresholds.front(),
                                         thresholds.back())};
}

} // namespace cli
