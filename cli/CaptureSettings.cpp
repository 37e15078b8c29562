// SPDX-License-Identifier: MIT
#include "cli/CaptureSettings.h"

#include "camera/Camera.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/LiveDetection.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cmath>

namespace {

constexpr auto AutoOption = "auto";
constexpr auto ExposureOption = "exposure";
constexpr auto GainOption = "gain";
constexpr auto FramerateOption = "framerate";

/// Dark current grows with time: most hotpixels hide in exposures below this.
constexpr double ShortExposureMsec = 500;

constexpr int ShownDecimals = 2;
constexpr double ShownTolerance = 0.005; ///< so the limits are allowed as they are shown

QString shown(double value)
{
    return QString::number(value, 'f', ShownDecimals);
}

/// The upper end of a range; a camera whose slowest rate lies above the program's cap has only that
/// one.
template <typename T>
T greatest(const CameraParameter<T>& parameter)
{
    return std::max(parameter.min, parameter.max);
}

template <typename T>
bool isWithin(double value, const CameraParameter<T>& parameter)
{
    return value >= parameter.min - ShownTolerance && value <= greatest(parameter) + ShownTolerance;
}

} // namespace

QList<QCommandLineOption> CaptureSettings::options()
{
    return {
        {QLatin1String(AutoOption),
         tr("Set the camera to its longest exposure at one image per second and a gain of 50 "
            "before. The first %1 images are not used then, since they may have been taken with "
            "the settings before; so it is with the settings below.")
             .arg(LiveDetection::FramesBeforeSettings)},
        {QLatin1String(ExposureOption),
         tr("Expose each image for MS milliseconds, which the frame rate limits."),
         QStringLiteral("MS")},
        {QLatin1String(GainOption), tr("Set the master gain to N."), QStringLiteral("N")},
        {QLatin1String(FramerateOption), tr("Take F images per second."), QStringLiteral("F")}};
}

CaptureSettings::CaptureSettings(const QCommandLineParser& parser, bool fromFiles)
    : m_automatic(parser.isSet(QLatin1String(AutoOption)))
{
    const auto number = [&parser](const char* option,
                                  const QString& what) -> std::optional<double> {
        if (!parser.isSet(QLatin1String(option))) {
            return std::nullopt;
        }
        bool isNumber = false;
        const QString given = parser.value(QLatin1String(option));
        const double value = given.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(value)) {
            throw cli::UsageError(tr("%1 has to be a number, not \"%2\".").arg(what, given));
        }
        return value;
    };
    m_exposureMsec = number(ExposureOption, tr("The exposure"));
    m_framesPerSecond = number(FramerateOption, tr("The frame rate"));
    if (const auto gain = number(GainOption, tr("The gain"))) {
        if (*gain != std::trunc(*gain) || std::abs(*gain) > 1e6) {
            throw cli::UsageError(tr("The gain has to be a whole number, not \"%1\".")
                                      .arg(parser.value(QLatin1String(GainOption))));
        }
        m_gain = static_cast<int>(*gain);
    }

    const bool single = m_exposureMsec || m_framesPerSecond || m_gain;
    if (fromFiles && (m_automatic || single)) {
        throw cli::UsageError(tr("--auto, --exposure, --gain and --framerate are for a camera, and "
                                 "--frames takes none."));
    }
    if (m_automatic && single) {
        throw cli::UsageError(tr("--auto sets exposure, gain and frame rate itself: --exposure, "
                                 "--gain and --framerate go without."));
    }
}

void CaptureSettings::apply(Camera& camera) const
{
    if (m_automatic) {
        camera.setAutoConfig();
        return;
    }
    if (m_framesPerSecond) {
        const CameraParameter<double>& range = camera.framerate();
        if (!isWithin(*m_framesPerSecond, range)) {
            throw cli::CommandError(
                tr("The frame rate of this camera goes from %1 to %2 images per second, not %3.")
                    .arg(shown(range.min), shown(greatest(range)), shown(*m_framesPerSecond)));
        }
        camera.setFramerate(*m_framesPerSecond);
    }
    if (m_exposureMsec) {
        const CameraParameter<double>& range = camera.exposure();
        if (!isWithin(*m_exposureMsec, range)) {
            throw cli::CommandError(
                tr("The exposure of this camera goes from %1 to %2 ms at %3 images per second, not "
                   "%4 ms.")
                    .arg(shown(range.min), shown(range.max), shown(camera.framerate().value),
                         shown(*m_exposureMsec)));
        }
        camera.setExposure(*m_exposureMsec);
    }
    if (m_gain) {
        const CameraParameter<int>& range = camera.mastergain();
        if (!isWithin(*m_gain, range)) {
            throw cli::CommandError(tr("The gain of this camera goes from %1 to %2, not %3.")
                                        .arg(range.min)
                                        .arg(range.max)
                                        .arg(*m_gain));
        }
        camera.setMastergain(*m_gain);
    }
}

int CaptureSettings::skippedFrames() const
{
    const bool changed = m_automatic || m_framesPerSecond || m_exposureMsec || m_gain;
    return changed ? LiveDetection::FramesBeforeSettings : 0;
}

void cli::reportShortExposure(double exposureMsec, Report& report)
{
    if (exposureMsec >= ShortExposureMsec) {
        return;
    }
    report.line(CaptureSettings::tr("Nothing was found, and an exposure of %1 ms is short: most "
                                    "hotpixels show in longer ones.")
                    .arg(shown(exposureMsec)));
    report.insert("shortExposure", true);
}
