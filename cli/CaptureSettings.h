// SPDX-License-Identifier: MIT
#pragma once

#include <QCommandLineOption>
#include <QCoreApplication>
#include <QList>

#include <optional>

class Camera;
class QCommandLineParser;
class Report;

/// How a camera is to take its frames, as the options of a command say it. What they don't say
/// stays as the camera has it.
class CaptureSettings
{
    Q_DECLARE_TR_FUNCTIONS(CaptureSettings)

public:
    /// --auto, --exposure, --gain and --framerate
    static QList<QCommandLineOption> options();

    /// @param fromFiles whether the frames come from files, which nobody can set
    /// @throws cli::UsageError for what is no number, for --auto beside any of the others, and for
    ///         all of them with files.
    CaptureSettings(const QCommandLineParser& parser, bool fromFiles);

    /// Sets the open camera: the rate first, since the longest exposure depends on it.
    /// @throws cli::CommandError that names the camera's range for a value outside of it; what came
    ///         before it is set then.
    void apply(Camera& camera) const;

    /// How many images may come after apply() that don't have the settings.
    [[nodiscard]] int skippedFrames() const;

private:
    bool m_automatic;
    std::optional<double> m_framesPerSecond;
    std::optional<double> m_exposureMsec;
    std::optional<int> m_gain;
};

namespace cli {

/// To be called when nothing was found: says so where the exposure is too short to show much, to
/// machines as "shortExposure".
void reportShortExposure(double exposureMsec, Report& report);

} // namespace cli
