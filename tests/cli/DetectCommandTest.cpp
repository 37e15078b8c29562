// SPDX-License-Identifier: MIT
#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Companion.h"
#include "cli/Interruption.h"
#include "cli/LiveDetection.h"
#include "hotpixel/BadpixelListModel.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/FaultyCameraSdk.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <set>

namespace {

using Position = std::pair<int, int>;
using Positions = std::set<Position>;

constexpr std::size_t SkippedFrames = 2;
constexpr std::size_t UsedFrames = 10;

/// Simulated cameras that keep a copy of each frame which they hand out.
class ObservedSdk final : public FaultyCameraSdk
{
public:
    using Frame = std::vector<std::uint8_t>;

    ObservedSdk(SimulatedCameraSdk& simulated, const CameraDescription& camera)
        : FaultyCameraSdk(simulated)
        , m_simulated(simulated)
        , m_camera(camera)
    {}

    std::vector<Frame> frames;
    std::vector<KnownHotPixel> knownHotPixels; ///< under the settings of the last frame
    std::function<void()> onFrame = [] {};
    bool keepFrames = true;

    std::int32_t getFrameMemory(Handle handle, std::int32_t first, std::int32_t second,
                                char** memory) override
    {
        const std::int32_t result = FaultyCameraSdk::getFrameMemory(handle, first, second, memory);
        if (result == 0 && keepFrames) {
            const auto* pixels = reinterpret_cast<const std::uint8_t*>(*memory);
            frames.emplace_back(pixels, pixels + m_camera.width * m_camera.height);
            knownHotPixels = m_simulated.control(m_camera.serial).knownHotPixels();
        }
        onFrame();
        return result;
    }

private:
    SimulatedCameraSdk& m_simulated;
    const CameraDescription& m_camera;
};

/// One simulated camera, covered, and the companion on it.
class DetectingCompanion
{
public:
    explicit DetectingCompanion(CameraDescription description, double speed)
        : camera(std::move(description))
        , simulated({{camera}, speed, home.path(), {}})
    {
        simulated.control(camera.serial).setCovered(true);
    }

    /// Runs the companion with --json; @p prepare gets the SDK before.
    QJsonObject run(
        const QStringList& arguments,
        const std::function<void(ObservedSdk&)>& prepare = [](ObservedSdk&) {})
    {
        const auto makeSdk = [&] {
            auto made = std::make_unique<ObservedSdk>(simulated, camera);
            prepare(*made);
            return made;
        };
        RecordedConsole recorded;
        Interruption interruption;
        Companion companion(makeSdk, {}, recorded.console(), interruption);
        status = companion.run(QStringList{QStringLiteral("vorn-hotpixel")} + arguments +
                               QStringList{QStringLiteral("--json")});
        errors = recorded.err();
        return QJsonDocument::fromJson(recorded.out()).object();
    }

    const CameraDescription camera;
    const QTemporaryDir home;
    SimulatedCameraSdk simulated;
    int status = -1;
    QByteArray errors;
};

Positions positionsOf(const QJsonValue& pairs)
{
    Positions positions;
    for (const QJsonValue& pair : pairs.toArray()) {
        positions.insert({pair.toArray().at(0).toInt(), pair.toArray().at(1).toInt()});
    }
    return positions;
}

CameraDescription smallCamera()
{
    CameraDescription camera;
    camera.serial = QStringLiteral("S1");
    camera.width = 64;
    camera.height = 48;
    camera.hotPixels = 10;
    return camera;
}

/// The truncated mean of each pixel over the frames of a run, and what follows from it.
class TenFrameMean
{
public:
    TenFrameMean(const std::vector<ObservedSdk::Frame>& frames, int width, int height,
                 unsigned threshold)
        : m_width(width)
        , m_means(frames.front().size())
    {
        for (std::size_t i = 0; i < m_means.size(); ++i) {
            unsigned sum = 0;
            for (const ObservedSdk::Frame& frame : frames) {
                sum += frame[i];
            }
            m_means[i] = sum / static_cast<unsigned>(frames.size());
        }
        for (const int plane : {0, 1, 2, 3}) {
            std::uint64_t sum = 0;
            std::uint64_t count = 0;
            for (int y = plane % 2; y < height; y += 2) {
                for (int x = plane / 2; x < width; x += 2) {
                    sum += at({x, y});
                    ++count;
                }
            }
            m_limits[static_cast<std::size_t>(plane)] =
                static_cast<unsigned>(sum / count) + threshold;
        }
    }

    [[nodiscard]] unsigned at(Position position) const
    {
        return m_means[static_cast<std::size_t>(position.second * m_width + position.first)];
    }

    /// The limit of the plane that a position belongs to.
    [[nodiscard]] unsigned limitAt(Position position) const
    {
        return m_limits[static_cast<std::size_t>(position.first % 2 * 2 + position.second % 2)];
    }

private:
    int m_width;
    std::vector<unsigned> m_means;
    std::array<unsigned, 4> m_limits{};
};

} // namespace

namespace {

/// What a detection of the built-in five megapixel sensor found, and what its frames say.
struct FiveMegapixels
{
    static constexpr int Threshold = 40;

    int width = 0;
    int height = 0;
    Positions factory;
    std::vector<ObservedSdk::Frame> frames; ///< those that were used
    std::vector<KnownHotPixel> known;
    QJsonObject result;

    explicit FiveMegapixels(const QStringList& options)
    {
        const std::vector<CameraDescription> cameras = simulator::builtInBus().cameras;
        const auto camera = std::ranges::find_if(
            cameras, [](const auto& each) { return each.width == 2592 && each.height == 1944; });
        EXPECT_NE(camera, cameras.end());
        EXPECT_TRUE(camera->bayer);
        width = camera->width;
        height = camera->height;

        DetectingCompanion companion(*camera, 4);
        factory = positionsOf(companion.run({QStringLiteral("read"), QStringLiteral("2")})
                                  .value(QStringLiteral("factory")));
        EXPECT_FALSE(factory.empty());
        const QString saved = companion.home.filePath(QStringLiteral("used"));
        std::vector<ObservedSdk::Frame> sent;
        result = companion.run(QStringList{QStringLiteral("detect"), QStringLiteral("2"),
                                           QStringLiteral("--auto"), QStringLiteral("--clear"),
                                           QStringLiteral("--save-frames"), saved} +
                                   options,
                               [this, &sent](ObservedSdk& sdk) {
                                   sdk.onFrame = [this, &sent, &sdk] {
                                       sent.push_back(std::move(sdk.frames.back()));
                                       known = sdk.knownHotPixels;
                                   };
                               });
        EXPECT_EQ(companion.status, Companion::Succeeded) << companion.errors.constData();
        const QStringList names = QDir(saved).entryList(QDir::Files, QDir::Name);
        for (const QString& name : names) {
            const QImage image(saved + QLatin1Char('/') + name);
            EXPECT_EQ(image.bytesPerLine(), width);
            frames.emplace_back(image.constBits(), image.constBits() + image.sizeInBytes());
        }
        EXPECT_EQ(frames.size(), UsedFrames);
        const auto first = std::search(sent.begin(), sent.end(), frames.begin(), frames.end());
        EXPECT_GE(first - sent.begin(), std::ptrdiff_t{SkippedFrames});
        EXPECT_GT(sent.end() - first, std::ptrdiff_t{UsedFrames});
    }

    /// The pixels whose mean is above the limit of their plane. They are all hot pixels, and which
    /// of the hot pixels they are the simulated means say as well, but where noise and truncation
    /// can tip the scales.
    [[nodiscard]] Positions above(const TenFrameMean& mean) const
    {
        Positions hot;
        for (const KnownHotPixel& pixel : known) {
            hot.insert({pixel.x, pixel.y});
        }
        Positions above;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                if (mean.at({x, y}) > mean.limitAt({x, y})) {
                    above.insert({x, y});
                    EXPECT_TRUE(hot.contains({x, y})) << x << ", " << y;
                }
            }
        }
        constexpr double Doubt = 4.0;
        int doubtful = 0;
        for (const KnownHotPixel& pixel : known) {
            const Position position{pixel.x, pixel.y};
            const double over = pixel.meanDn - mean.limitAt(position);
            if (std::abs(over) <= Doubt) {
                ++doubtful;
            } else {
                EXPECT_EQ(above.contains(position), over > 0) << pixel.x << ", " << pixel.y;
            }
        }
        EXPECT_LT(doubtful, 10);
        return above;
    }
};

} // namespace

TEST(DetectCommand, FindsTheHotPixelsOfTheFiveMegapixelSensorAndNoOther)
{
    const FiveMegapixels sensor({});
    const TenFrameMean mean(sensor.frames, sensor.width, sensor.height, sensor.Threshold);
    Positions expected;
    for (const Position& position : sensor.above(mean)) {
        if (!sensor.factory.contains(position)) {
            expected.insert(position);
        }
    }
    EXPECT_EQ(positionsOf(sensor.result[QStringLiteral("pixels")]), expected);
    EXPECT_GT(expected.size(), 50U);
}

// On a sensor of even width, the editor's detector visits width / 2 + 1 positions on each line of a
// plane of even columns, the last of them at x = width, where it sees the first pixel of the next
// line. As it takes as many steps as the plane has pixels, it ends before the plane does. Planes of
// odd columns are not affected.
TEST(DetectCommand, FindsLikeTheEditorWhatItsWalkSees)
{
    const FiveMegapixels sensor({QStringLiteral("--like-editor")});
    const int width = sensor.width;
    const int height = sensor.height;
    const TenFrameMean mean(sensor.frames, width, height, sensor.Threshold);
    Positions expected;
    const int steps = width / 2 * (height / 2);
    const int stepsPerLine = width / 2 + 1;
    for (const Position& position : sensor.above(mean)) {
        const auto [x, y] = position;
        const bool behindTheEnd = x % 2 == 0 && y / 2 * stepsPerLine + x / 2 >= steps;
        if (!behindTheEnd && !sensor.factory.contains(position)) {
            expected.insert(position);
        }
    }
    for (int y = 0; y + 1 < height; ++y) {
        const bool visited = y / 2 * stepsPerLine + width / 2 < steps;
        if (visited && mean.at({0, y + 1}) > mean.limitAt({0, y})) {
            expected.insert({width, y});
        }
    }
    EXPECT_EQ(positionsOf(sensor.result[QStringLiteral("pixels")]), expected);
    EXPECT_GT(expected.size(), 50U);
}

TEST(DetectCommand, UsesNoFrameFromBeforeTheSettingsAndOneToSeeTheEnd)
{
    DetectingCompanion companion(smallCamera(), 20);
    std::size_t frames = 0;
    const auto count = [&frames](ObservedSdk& sdk) {
        sdk.keepFrames = false;
        sdk.onFrame = [&frames] { ++frames; };
    };
    companion.run({QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--auto")}, count);
    EXPECT_EQ(companion.status, Companion::Succeeded);
    EXPECT_GE(frames, SkippedFrames + UsedFrames + 1);

    frames = 0;
    companion.run({QStringLiteral("detect"), QStringLiteral("1")}, count);
    EXPECT_EQ(companion.status, Companion::Succeeded);
    EXPECT_GE(frames, UsedFrames + 1);
}

TEST(DetectCommand, StopsWhenTheCameraIsUnplugged)
{
    DetectingCompanion companion(smallCamera(), 20);
    int frames = 0;
    const QJsonObject result = companion.run(
        {QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--write"),
         QStringLiteral("--yes")},
        [&](ObservedSdk& sdk) {
            sdk.onFrame = [&] {
                if (++frames == 4) {
                    companion.simulated.control(companion.camera.serial).setPlugged(false);
                }
            };
        });
    EXPECT_EQ(companion.status, Companion::CommandFailed);
    EXPECT_EQ(result[QStringLiteral("outcome")].toString(), QStringLiteral("unplugged"));
    EXPECT_TRUE(companion.errors.endsWith("vorn-hotpixel: The camera was unplugged.\n"))
        << companion.errors.constData();
    EXPECT_EQ(companion.simulated.openCameras(), 0);
    EXPECT_EQ(companion.simulated.imageMemories(), 0);
}

TEST(DetectCommand, FailsWithTheCamerasTextWhenAListCantBeRead)
{
    DetectingCompanion companion(smallCamera(), 20);
    for (const int call : {3, 4, 7, 8, 10, 12}) {
        companion.run({QStringLiteral("detect"), QStringLiteral("1")}, [&](ObservedSdk& sdk) {
            sdk.keepFrames = false;
            sdk.arm(SdkFault{SdkOperation::HotpixelCommand, call, true});
        });
        // A limit that only the model could not read is read again.
        const bool harmless = call == 3;
        EXPECT_EQ(companion.status, harmless ? Companion::Succeeded : Companion::CommandFailed)
            << call;
        EXPECT_EQ(companion.simulated.openCameras(), 0);
    }
}

namespace {

/// A small covered camera that a command has opened, with all that a LiveDetection needs but its
/// list.
struct OpenCamera
{
    explicit OpenCamera(double speed)
        : companion(smallCamera(), speed)
    {}

    DetectingCompanion companion;
    ObservedSdk sdk{companion.simulated, companion.camera};
    RecordedConsole recorded;
    Interruption interruption;
    std::vector<SdkSwitch> switches;
    CommandContext context{[this]() -> CameraSdk& { return sdk; }, switches, recorded.console(),
                           interruption, false};
    CameraSession session{context, QStringLiteral("1")};
};

/// As an event thread does it.
void letWait(Camera& camera, int event)
{
    EXPECT_TRUE(QMetaObject::invokeMethod(&camera, "eventReceived", Qt::QueuedConnection,
                                          Q_ARG(int, event)));
}

} // namespace

TEST(LiveDetection, GivesUpWhenNoImagesCome)
{
    OpenCamera open(1);
    open.companion.simulated.control(open.companion.camera.serial).setDropFrames(true);
    BadpixelListModel list;
    LiveDetection detection(open.session, list, open.context);
    detection.setLeastPatience(std::chrono::milliseconds(100));
    const LiveDetection::Result result = detection.run(false, 40, 0);
    EXPECT_EQ(result.outcome, LiveDetection::Outcome::NoFrames);
    EXPECT_TRUE(result.message.contains(QStringLiteral("(images so far: 0, failed: ")))
        << qPrintable(result.message);
}

TEST(LiveDetection, UsesNoImageThatHasWaitedSinceBefore)
{
    OpenCamera open(20);
    ASSERT_TRUE(QSignalSpy(&open.session.camera(), &Camera::newImage).wait());
    constexpr int Waiting = 5;
    for (int i = 0; i < Waiting; ++i) {
        letWait(open.session.camera(), camera::EventFrame);
    }
    BadpixelListModel list;
    LiveDetection detection(open.session, list, open.context);
    int images = 0;
    QObject::connect(&open.session.camera(), &Camera::newImage, &open.session.camera(),
                     [&] { ++images; });
    QVector<QImage> frames;
    EXPECT_EQ(detection.takeFrames(frames, 0).outcome, LiveDetection::Outcome::Found);
    EXPECT_EQ(frames.size(), int{UsedFrames});
    EXPECT_GE(images, Waiting + int{UsedFrames} + 1);
}

TEST(LiveDetection, NoticesWhatHappensWhileImagesThatHaveWaitedAreDropped)
{
    OpenCamera open(20);
    // No other image comes that could end the wait.
    open.companion.simulated.control(open.companion.camera.serial).setDropFrames(true);
    letWait(open.session.camera(), camera::EventFrame);
    letWait(open.session.camera(), camera::EventRemoved);
    BadpixelListModel list;
    LiveDetection detection(open.session, list, open.context);
    detection.setLeastPatience(std::chrono::milliseconds(100));
    QVector<QImage> frames;
    EXPECT_EQ(detection.takeFrames(frames, 0).outcome, LiveDetection::Outcome::Unplugged);

    letWait(open.session.camera(), camera::EventFrame);
    open.sdk.onFrame = [&] { open.interruption.request(); };
    EXPECT_EQ(detection.takeFrames(frames, 0).outcome, LiveDetection::Outcome::Interrupted);
}

TEST(LiveDetection, DoesNotBeginWhenTheEndWasAskedForBefore)
{
    OpenCamera open(1);
    open.interruption.request();
    BadpixelListModel list;
    EXPECT_EQ(LiveDetection(open.session, list, open.context).run(false, 40, 0).outcome,
              LiveDetection::Outcome::Interrupted);
}

TEST(DetectCommand, CountsHotpixelsThatACameraCantStoreLikeTheEditorUpTo5000)
{
    // Every fourth pixel stands out, though none is bright enough to refuse the frame.
    const QTemporaryDir recordings;
    QImage image(200, 200, QImage::Format_Grayscale8);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            image.scanLine(y)[x] = x % 4 == 0 ? 90 : 0;
        }
    }
    ASSERT_TRUE(image.save(recordings.filePath(QStringLiteral("frame.png"))));
    CameraDescription camera = smallCamera();
    camera.width = image.width();
    camera.height = image.height();
    camera.recordedFrames = recordings.path();
    camera.hotPixels = camera.factoryEntries = camera.userEntries = 0;
    DetectingCompanion companion(camera, 20);

    const QJsonObject likeEditor = companion.run(
        {QStringLiteral("detect"), QStringLiteral("1"), QStringLiteral("--like-editor")});
    EXPECT_EQ(companion.status, Companion::CommandFailed);
    EXPECT_EQ(likeEditor[QStringLiteral("outcome")].toString(), QStringLiteral("too-many"));
    EXPECT_EQ(likeEditor[QStringLiteral("foundWithoutLimit")].toInt(), 5000);
    EXPECT_TRUE(companion.errors.endsWith(
        "vorn-hotpixel: Can't add more than 128 hotpixel entries. The frames hold more than 5000 "
        "hotpixels; none was taken over.\n"))
        << companion.errors.constData();

    const QJsonObject exact = companion.run({QStringLiteral("detect"), QStringLiteral("1")});
    EXPECT_EQ(companion.status, Companion::CommandFailed);
    EXPECT_EQ(exact[QStringLiteral("outcome")].toString(), QStringLiteral("too-many"));
    EXPECT_EQ(exact[QStringLiteral("foundWithoutLimit")].toInt(), 10000);
    EXPECT_TRUE(companion.errors.endsWith(
        "vorn-hotpixel: Can't add more than 128 hotpixel entries. The frames hold 10000 hotpixels; "
        "none was taken over.\n"))
        << companion.errors.constData();
}
