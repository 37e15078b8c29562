// SPDX-License-Identifier: MIT
#include "camera/Camera.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QList>
#include <QScopedValueRollback>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace {

constexpr const char* SettingsFile = "./VornHotpixelEditor.ini";
constexpr int NoticeMsec = 2000;
constexpr unsigned long StopMsec = 500;
constexpr int LetGoMsec = 5000; // then a thread that the SDK does not let go is left to itself
constexpr std::size_t BufferCount = 2;
constexpr std::int32_t DefaultUploadMsec = 25000;
constexpr double MaxFramesPerSecond = 2.0;
constexpr double DarkFramesPerSecond = 1.0;
constexpr int DarkMastergain = 50;

// The guards against recursion on the GUI thread, shared by all cameras: a widget that is connected
// to a camera feeds back what it is told, and a receiver of newImage() may run an event loop of its
// own.
bool s_newImageAllowed = true;
bool s_settingPixelclock = false;
bool s_settingFramerate = false;
bool s_settingExposure = false;
bool s_settingMastergain = false;

const QList<QRgb>& greyTable()
{
    static const QList<QRgb> table = [] {
        QList<QRgb> greys;
        for (int grey = 0; grey < 256; ++grey) {
            greys.append(qRgb(grey, grey, grey));
        }
        return greys;
    }();
    return table;
}

// Not std::clamp: min may lie above max (behaviour.md: min-wins).
template <typename T>
T clamped(T value, const CameraParameter<T>& parameter)
{
    return value < parameter.min ? parameter.min : std::min(value, parameter.max);
}

// behaviour.md: relative-minus-min
double relativeValue(int position, const CameraParameter<double>& parameter)
{
    const double value = std::trunc((position - parameter.min) / parameter.increment);
    return std::isnan(value) ? parameter.min : value; // 0 / 0, of a range that is a single value
}

void waitOrTerminate(const std::unique_ptr<EventThread>& waitedFor,
                     const std::unique_ptr<EventThread>& terminated)
{
    if (!waitedFor->wait(StopMsec)) {
        terminated->terminate();
        terminated->wait(StopMsec); // it can't be started again before it has ended
    }
}

} // namespace

Camera::Camera(CameraSdk& sdk, QObject* parent)
    : QObject(parent)
    , m_sdk(sdk)
    , m_frameThread(std::make_unique<EventThread>(sdk))
    , m_reconnectThread(std::make_unique<EventThread>(sdk))
    , m_removedThread(std::make_unique<EventThread>(sdk))
    , m_deviceNewThread(std::make_unique<EventThread>(sdk))
    , m_deviceRemovedThread(std::make_unique<EventThread>(sdk))
    , m_frameFailedThread(std::make_unique<EventThread>(sdk))
    , m_sequence(sdk)
{
    for (const auto& thread : {&m_deviceNewThread, &m_deviceRemovedThread, &m_frameFailedThread}) {
        connect(thread->get(), &EventThread::eventhappen, this, &Camera::eventReceived);
    }
    for (const auto& thread : {&m_frameThread, &m_reconnectThread, &m_removedThread}) {
        connect(thread->get(), &EventThread::eventhappen, &m_openingsEvents,
                [this](int event) { eventReceived(event); });
    }
    m_deviceNewThread->start(0, camera::EventDeviceNew);
    m_deviceRemovedThread->start(0, camera::EventDeviceRemoved);
}

Camera::~Camera()
{
    if (isOpen()) {
        m_sdk.stopLiveVideo(m_handle, camera::ForceStop);
        m_sdk.exitCamera(m_handle);
    }
    m_sequence.clear();

    for (const auto& thread : {&m_frameThread, &m_reconnectThread, &m_deviceNewThread,
                               &m_deviceRemovedThread, &m_removedThread}) {
        (*thread)->stop();
    }
    waitOrTerminate(m_frameThread, m_frameThread);
    waitOrTerminate(m_reconnectThread, m_frameThread); // behaviour.md: other-thread
    waitOrTerminate(m_deviceNewThread, m_deviceNewThread);
    waitOrTerminate(m_deviceRemovedThread, m_deviceRemovedThread);
    waitOrTerminate(m_removedThread, m_removedThread);
    // Never told to stop (behaviour.md: event-8-stays).
    waitOrTerminate(m_frameFailedThread, m_frameFailedThread);

    const QDeadlineTimer deadline(LetGoMsec);
    for (auto* const thread : {&m_frameThread, &m_reconnectThread, &m_removedThread,
                               &m_deviceNewThread, &m_deviceRemovedThread, &m_frameFailedThread}) {
        EventThread::release(std::move(*thread), deadline);
    }

    disconnect(this, nullptr, this, SLOT(eventReceived(int)));
    m_handle = 0;
}

void Camera::open(int cameraId)
{
    try {
        tryOpen(cameraId);
    } catch (...) {
        close();
        throw;
    }
}

void Camera::tryOpen(int cameraId)
{
    close();
    m_settingsResult = 0;
    m_handle = initCamera(cameraId);
    m_frameCount = 0;
    m_failedCount = 0;
    loadSettings();

    check(m_sdk.setColorMode(m_handle, camera::ColorModeBayer8));
    m_sdk.getSensorInfo(m_handle, &m_sensorInfo);
    const unsigned int bitsPerPixel = takeColorMode();
    sendCorrectionCommands(camera::CorrectionOffFirst, camera::CorrectionOffSecond);
    m_sequence.setUp(m_handle, BufferCount,
                     {m_sensorInfo.maxWidth, m_sensorInfo.maxHeight, bitsPerPixel});

    // What these threads reported of a former opening, and nobody has taken up since.
    QCoreApplication::removePostedEvents(&m_openingsEvents);
    m_frameThread->start(m_handle, camera::EventFrame);
    m_reconnectThread->start(m_handle, camera::EventReconnected);
    m_removedThread->start(m_handle, camera::EventRemoved);
    m_frameFailedThread->start(m_handle, camera::EventFrameFailed);
    startLive();

    m_cameraId = static_cast<unsigned int>(cameraId);
    emit cameraOpened(this);

    m_pixelclock.value = m_sdk.setPixelClock(m_handle, camera::QueryDefault);
    check(m_sdk.getFramesPerSecond(m_handle, &m_framerate.value));
    check(m_sdk.setExposureTime(m_handle, camera::QueryDefaultDouble, &m_exposure.value));
    updatePixelclock();
    updateMastergain();
    m_frameCount = 0;
    m_failedCount = 0;
}

CameraSdk::Handle Camera::initCamera(int cameraId)
{
    const auto device = static_cast<CameraSdk::Handle>(cameraId);
    CameraSdk::Handle handle = device | camera::OpenByDevice;
    std::int32_t result = m_sdk.initCamera(&handle, nullptr);
    if (result == camera::FirmwareUploadNeeded) {
        std::int32_t uploadMsec = DefaultUploadMsec;
        m_sdk.getFirmwareUploadTime(handle, 1, &uploadMsec);
        emit displayError(
            tr("Upload of new firmware required. (approx. %1 seconds)").arg(uploadMsec / 1000),
            NoticeMsec);
        handle = device | camera::OpenWithFirmwareUpload;
        result = m_sdk.initCamera(&handle, nullptr);
    }
    if (result != 0) {
        throw std::runtime_error(tr("Could not initialize camera.").toStdString());
    }
    return handle;
}

void Camera::loadSettings()
{
    m_settingsResult = m_sdk.loadParameters(m_handle, SettingsFile);
    if (m_settingsResult == camera::FileNotOpened) {
        emit displayError(tr("Can't open ini file."), NoticeMsec);
    } else if (m_settingsResult != 0) {
        emit displayError(errorMessage(m_settingsResult), NoticeMsec);
    }
}

// Returns the bits per pixel of the mode that the camera took.
unsigned int Camera::takeColorMode()
{
    m_colorMode = m_sdk.setColorMode(m_handle, camera::QueryCurrent);
    switch (m_colorMode) {
    case camera::ColorModeRgb32:
        m_imageFormat = QImage::Format_RGB32;
        return 32;
    case camera::ColorModeMono8:
    case camera::ColorModeBayer8:
        m_imageFormat = QImage::Format_Indexed8;
        return 8;
    default:
        m_imageFormat = QImage::Format_Invalid;
        throw std::runtime_error(tr("Color Mode not supported.").toStdString());
    }
}

void Camera::close()
{
    if (!isOpen()) {
        return;
    }
    m_frameThread->stop();
    m_reconnectThread->stop();
    m_removedThread->stop();
    waitOrTerminate(m_frameThread, m_frameThread);
    // behaviour.md: other-thread. The reconnect thread is waited for when it is started again.
    waitOrTerminate(m_reconnectThread, m_frameThread);
    waitOrTerminate(m_removedThread, m_removedThread);

    m_sdk.stopLiveVideo(m_handle, camera::Wait);
    m_sdk.exitCamera(m_handle);
    m_cameraId = 0;
    m_handle = 0;
    m_sequence.clear();
    m_image = QImage();
    emit newImage(m_image);
    emit cameraClosed();
}

void Camera::startLive()
{
    check(m_sdk.startLiveVideo(m_handle, camera::DontWait));
}

double Camera::getFramerate() const
{
    double framesPerSecond = 0.0;
    if (isOpen()) {
        m_sdk.getFramesPerSecond(m_handle, &framesPerSecond);
    }
    return framesPerSecond;
}

const char* Camera::sdkText(int code) const
{
    std::int32_t sdkCode = code;
    char* text = nullptr;
    return m_sdk.getError(m_handle, &sdkCode, &text) == 0 ? text : nullptr;
}

const char* Camera::errorText(int code) const
{
    const char* const text = sdkText(code);
    return text != nullptr ? text : "Unknown error.";
}

QString Camera::errorMessage(int code) const
{
    const char* const text = sdkText(code);
    return text != nullptr ? QString::fromLatin1(text) : tr("Unknown error.");
}

void Camera::check(int result) const
{
    if (result != 0) {
        throw std::runtime_error(errorMessage(result).toStdString());
    }
}

void Camera::sendCorrectionCommands(int first, int second)
{
    const int firstResult = m_sdk.hotpixelCommand(m_handle, first, nullptr, 0);
    const int secondResult = m_sdk.hotpixelCommand(m_handle, second, nullptr, 0);
    m_correctionResult = firstResult != 0 ? firstResult : secondResult;
}

void Camera::eventReceived(int event)
{
    try {
        switch (event) {
        case camera::EventFrame:
            if (isOpen()) {
                takeFrame();
            }
            break;
        case camera::EventFrameFailed:
            ++m_failedCount;
            break;
        case camera::EventReconnected:
            if (isOpen()) {
                emit cameraReconnect();
            }
            break;
        case camera::EventRemoved:
            if (isOpen()) {
                emit cameraRemoved();
            }
            break;
        case camera::EventDeviceRemoved:
            emit cameraRemovedDevice();
            break;
        case camera::EventDeviceNew:
            emit cameraNewDevice();
            break;
        default:
            break;
        }
    } catch (const std::exception& error) {
        // An exception that a receiver lets out would end the program in the event loop.
        emit displayError(QString::fromUtf8(error.what()), NoticeMsec);
    }
}

void Camera::takeFrame()
{
    ++m_frameCount;
    char* memory = nullptr;
    if (const int result = m_sdk.getFrameMemory(m_handle, 0, 0, &memory); result != 0) {
        emit displayError(errorMessage(result), NoticeMsec);
        return;
    }
    m_image = QImage(reinterpret_cast<uchar*>(memory), imageWidth(), imageHeight(), m_imageFormat);
    if (m_imageFormat == QImage::Format_Indexed8) {
        m_image.setColorTable(greyTable());
    }
    if (s_newImageAllowed) {
        const QScopedValueRollback<bool> guard(s_newImageAllowed, false);
        emit newImage(m_image);
    }
}

void Camera::setPixelclock(int value)
{
    if (s_settingPixelclock) {
        return;
    }
    applyPixelclock(value);
}

void Camera::applyPixelclock(int value)
{
    const QScopedValueRollback<bool> guard(s_settingPixelclock, true);
    const int allowed = clamped(value, m_pixelclock);
    if (allowed != m_pixelclock.value) {
        m_pixelclock.value = allowed;
        emit pixelclockChanged(m_pixelclock);
    }
    m_sdk.setPixelClock(m_handle, m_pixelclock.value);
    updateFramerate();
}

void Camera::setPixelclockRelative(int value)
{
    setPixelclock((value - m_pixelclock.min) / m_pixelclock.increment);
}

void Camera::setFramerate(double value)
{
    if (s_settingFramerate) {
        return;
    }
    const QScopedValueRollback<bool> guard(s_settingFramerate, true);
    const double allowed = clamped(value, m_framerate);
    if (allowed != m_framerate.value) {
        m_framerate.value = allowed;
        m_sdk.setFrameRate(m_handle, allowed, &m_framerate.value);
        emit framerateChanged(m_framerate);
    }
    updateExposure();
}

void Camera::setFramerateRelative(int value)
{
    setFramerate(relativeValue(value, m_framerate));
}

void Camera::setExposure(double value)
{
    if (s_settingExposure) {
        return;
    }
    const QScopedValueRollback<bool> guard(s_settingExposure, true);
    const double allowed = clamped(value, m_exposure);
    if (allowed != m_exposure.value) {
        m_exposure.value = allowed;
        emit exposureChanged(m_exposure);
    }
    m_sdk.setExposureTime(m_handle, m_exposure.value, &m_exposure.value);
}

void Camera::setExposureRelative(int value)
{
    setExposure(relativeValue(value, m_exposure));
}

void Camera::setMastergain(int value)
{
    if (s_settingMastergain) {
        return;
    }
    const QScopedValueRollback<bool> guard(s_settingMastergain, true);
    const int allowed = clamped(value, m_mastergain);
    if (allowed != m_mastergain.value) {
        m_mastergain.value = allowed;
        emit mastergainChanged(m_mastergain);
    }
    m_sdk.setHardwareGain(m_handle, allowed, camera::KeepGain, camera::KeepGain, camera::KeepGain);
}

void Camera::updatePixelclock()
{
    CameraParameter<int> range;
    check(m_sdk.getPixelClockRange(m_handle, &range.min, &range.max));
    m_pixelclock.min = range.min;
    m_pixelclock.max = range.max;
    m_pixelclock.increment = 1;
    check(m_sdk.setPixelClock(m_handle, m_pixelclock.value));
    m_pixelclock.value = m_sdk.setPixelClock(m_handle, camera::QueryCurrent);
    emit pixelclockChanged(m_pixelclock);
    updateFramerate();
}

void Camera::updateFramerate()
{
    double minTime = 1.0;
    double maxTime = 1.0;
    double timeStep = 1.0;
    m_sdk.getFrameTimeRange(m_handle, &minTime, &maxTime, &timeStep);
    m_framerate.min = 1.0 / maxTime;
    // behaviour.md: rate-cap
    m_framerate.max = std::min(1.0 / minTime, MaxFramesPerSecond);
    m_framerate.increment = (m_framerate.max - m_framerate.min) / ((maxTime - minTime) / timeStep);
    m_sdk.setFrameRate(m_handle, m_framerate.value, &m_framerate.value);
    emit framerateChanged(m_framerate);
    updateExposure();
}

void Camera::updateExposure()
{
    m_sdk.getExposureRange(m_handle, &m_exposure.min, &m_exposure.max, &m_exposure.increment);
    double currentExposureMsec = 0.0; // behaviour.md: exposure-asked
    m_sdk.setExposureTime(m_handle, camera::QueryCurrentDouble, &currentExposureMsec);
    m_sdk.setExposureTime(m_handle, m_exposure.value, &m_exposure.value);
    emit exposureChanged(m_exposure);
}

void Camera::updateMastergain()
{
    m_mastergain.value = m_sdk.setHardwareGain(m_handle, camera::QueryCurrent, camera::KeepGain,
                                               camera::KeepGain, camera::KeepGain);
    m_mastergain.min = 0;
    m_mastergain.max = 100;
    emit mastergainChanged(m_mastergain);
}

void Camera::setAutoConfig()
{
    while (m_framerate.min > DarkFramesPerSecond) {
        const int halved = m_pixelclock.value / 2;
        if (halved <= m_pixelclock.min) {
            break;
        }
        // Not setPixelclock(), which does nothing when this is called while it runs: the loop would
        // never end.
        applyPixelclock(halved);
    }
    setFramerate(DarkFramesPerSecond);
    setExposure(m_exposure.max);
    setMastergain(DarkMastergain);
}

void Camera::setBadPixelCorrection(bool enable)
{
    m_sdk.stopLiveVideo(m_handle, camera::Wait);

    const double keptFramerate = m_framerate.value;
    double minTime = 1.0;
    double maxTime = 1.0;
    double timeStep = 1.0;
    m_sdk.getFrameTimeRange(m_handle, &minTime, &maxTime, &timeStep);
    double actual = 0.0; // what the camera makes of it is not kept
    m_sdk.setFrameRate(m_handle, 1.0 / minTime, &actual);
    if (enable) {
        sendCorrectionCommands(camera::CorrectionOnFirst, camera::CorrectionOnSecond);
    } else {
        sendCorrectionCommands(camera::CorrectionOffFirst, camera::CorrectionOffSecond);
    }
    m_sdk.setFrameRate(m_handle, keptFramerate, &actual);
    m_sdk.setExposureTime(m_handle, m_exposure.value, &actual);

    m_sdk.startLiveVideo(m_handle, camera::Wait);
}
