// SPDX-License-Identifier: MIT
#include "darkframes/Survey.h"

#include <numeric>

Survey Survey::of(const DarkStack& stack, const Mosaic& mosaic)
{
    Survey survey{stack.info(), stack.frameCount(), mosaic, {}};
    survey.planes.push_back(PlaneStatistics::of(stack, Mosaic::wholeSensor()));
    if (mosaic.isBayer()) {
        for (const SensorPlane& plane : mosaic.planes()) {
            survey.planes.push_back(PlaneStatistics::of(stack, plane));
        }
    }
    return survey;
}

std::span<const PlaneStatistics> Survey::searchPlanes() const
{
    return std::span(planes).subspan(mosaic.isBayer() ? 1 : 0);
}

std::uint64_t Survey::countAbove(const PlaneStatistics& plane, std::uint32_t threshold) const
{
    if (plane.plane.step == mosaic.step()) {
        return plane.countAbove(threshold);
    }
    const auto searched = searchPlanes();
    return std::accumulate(searched.begin(), searched.end(), std::uint64_t{0},
                           [threshold](std::uint64_t sum, const PlaneStatistics& each) {
                               return sum + each.countAbove(threshold);
                           });
}

Findings Findings::of(const DarkStack& stack, const Survey& survey, const HotRule& rule)
{
    Findings findings;
    findings.rule = rule;
    findings.limits =
        rule.sigma
            ? darkframes::limitsByDeviation(survey.searchPlanes(), *rule.sigma, survey.frames)
            : darkframes::limitsByThreshold(survey.searchPlanes(), rule.threshold, survey.frames);
    findings.pixels = darkframes::findHotPixels(stack, findings.limits);
    findings.clusters = darkframes::findClusters(findings.pixels.hot, survey.mosaic);
    return findings;
}
