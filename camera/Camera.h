// SPDX-License-Identifier: MIT
#pragma once

#include "camera/CameraParameter.h"
#include "camera/CameraSdk.h"
#include "camera/EventThread.h"
#include "camera/ImageInfo.h"
#include "camera/ImageSequence.h"

#include <QImage>
#include <QObject>
#include <QString>

#include <memory>

/// The one camera of the program: opens, runs and closes it, hands out its frames, and holds its
/// four adjustable parameters.
///
/// Everything runs on the GUI thread; the SDK's events come from threads of the camera's own
/// through queued signals. Only event threads call the SDK from elsewhere, with disableEvent and
/// exitEvent. Notices that stop nothing go out as displayError() for 2000 ms.
class Camera final : public QObject
{
    Q_OBJECT

public:
    /// Watches for cameras that are plugged in and out; opens none.
    /// @param sdk must outlive the camera.
    explicit Camera(CameraSdk& sdk, QObject* parent = nullptr);

    /// Closes an open camera and ends the event threads. Takes at least 500 ms once a camera was
    /// open, since the thread that counts failed frames is not told to stop but terminated. Threads
    /// that hang in the SDK are left to themselves 5 seconds after they were told to end, so that
    /// the program can end; the SDK must stay as long as such a thread is in it.
    ~Camera() override;

    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    /// Opens the camera with the "Dev" number @p cameraId and starts live capture, with the
    /// hotpixel correction off; a camera that was open is closed first. The settings file
    /// "./VornHotpixelEditor.ini" is loaded into the camera when it is there.
    /// After an exception the camera is closed.
    /// @throws std::runtime_error "Could not initialize camera."
    /// @throws std::runtime_error "Color Mode not supported."
    /// @throws std::runtime_error "Can't allocate image memory."
    /// @throws std::runtime_error "Can't add buffer to sequence."
    /// Events of an earlier opening that are still queued are dropped, but for those of failed
    /// frames and of devices that come and go.
    /// @throws std::runtime_error the SDK's error text, or "Unknown error."
    void open(int cameraId);

    /// Stops live capture and closes the camera; nothing happens when none is open. Images that
    /// newImage() handed out must not be read any more.
    void close();

    /// Starts live capture without waiting for the first frame. Called on an open camera.
    /// @throws std::runtime_error the SDK's error text, or "Unknown error."
    void startLive();

    [[nodiscard]] bool isOpen() const { return m_handle != 0; }

    /// What the SDK answered to the settings file at the last opening: 0, camera::FileNotOpened or
    /// another error. Known when displayError() tells of it; 0 before.
    [[nodiscard]] int settingsResult() const { return m_settingsResult; }

    /// What the SDK answered when the hotpixel correction was switched last, by
    /// setBadPixelCorrection or at the opening: 0, or the first error of the two commands.
    [[nodiscard]] int correctionResult() const { return m_correctionResult; }

    /// Frames received since the last opening.
    [[nodiscard]] int frameCount() const { return m_frameCount; }

    /// Frames that failed since the last opening.
    [[nodiscard]] int failedCount() const { return m_failedCount; }

    /// The rate at which frames come, in frames per second; 0.0 when no camera is open.
    [[nodiscard]] double getFramerate() const;

    /// The SDK's text for @p code, or "Unknown error."; valid until the next call of the SDK.
    [[nodiscard]] const char* errorText(int code) const;

    /// The same for people, whose language the words "Unknown error." are in.
    [[nodiscard]] QString errorMessage(int code) const;

    /// The "Dev" number of the open camera, 0 when none is open.
    [[nodiscard]] unsigned int cameraId() const { return m_cameraId; }

    /// The SDK's handle of the open camera, 0 when none is open.
    [[nodiscard]] unsigned int handle() const { return m_handle; }

    [[nodiscard]] CameraSdk& sdk() const { return m_sdk; }

    /// The colour mode as the SDK names it: camera::ColorModeRgb32, ColorModeMono8 or
    /// ColorModeBayer8.
    [[nodiscard]] int colorMode() const { return m_colorMode; }

    /// The sensor's size in pixels, 0 before the first opening.
    [[nodiscard]] int imageWidth() const { return static_cast<int>(m_sensorInfo.maxWidth); }
    [[nodiscard]] int imageHeight() const { return static_cast<int>(m_sensorInfo.maxHeight); }

    /// The latest frame, null when no camera is open. See newImage() on its memory.
    [[nodiscard]] const QImage& image() const { return m_image; }

    [[nodiscard]] const CameraParameter<int>& pixelclock() const { return m_pixelclock; }  ///< MHz
    [[nodiscard]] const CameraParameter<double>& framerate() const { return m_framerate; } ///< fps
    [[nodiscard]] const CameraParameter<double>& exposure() const { return m_exposure; }   ///< ms
    [[nodiscard]] const CameraParameter<int>& mastergain() const { return m_mastergain; }

signals:
    /// A new frame, or a null image when the camera was closed.
    ///
    /// @p image lies over the SDK's buffer: nothing is copied, and a receiver's copy of the QImage
    /// shares the buffer too. It changes with a later frame and is gone when the camera is closed,
    /// so who keeps a picture takes a deep copy (QImage::copy). Eight-bit frames are indexed, with
    /// 256 greys as their colour table. A frame that comes while receivers still run only replaces
    /// the image.
    void newImage(QImage& image);
    void bufferSizeChanged(ImageInfo info); ///< never emitted
    void cameraOpened(Camera*);
    void cameraClosed();
    void cameraRemoved();       ///< the open camera was unplugged
    void cameraReconnect();     ///< the open camera is there again
    void cameraNewDevice();     ///< some camera was plugged in
    void cameraRemovedDevice(); ///< some camera was unplugged
    /// A notice for the user, to be shown for @p msec milliseconds.
    void displayError(QString msg, int msec = 2000);
    void pixelclockChanged(CameraParameter<int>& param);
    void framerateChanged(CameraParameter<double>& param);
    void exposureChanged(CameraParameter<double>& param);
    void mastergainChanged(CameraParameter<int>& param);

public slots:
    // Each of the four absolute setters limits the value to the parameter's range. A call that
    // arrives while the same setter runs does nothing, so that a widget may feed back what it is
    // told.
    void setPixelclock(int value);         ///< MHz
    void setPixelclockRelative(int value); ///< a slider position
    void setFramerate(double value);       ///< frames per second
    void setFramerateRelative(int value);  ///< a slider position
    void setExposure(double value);        ///< milliseconds
    void setExposureRelative(int value);   ///< a slider position
    void setMastergain(int value);         ///< 0 to 100

    /// Switches the camera's own hotpixel correction; live capture is stopped meanwhile.
    void setBadPixelCorrection(bool enable);

    // These read the camera back into its parameters and say so. What a receiver then sets reaches
    // the camera: a rate above the cap comes down to it by the answer of the control.
    void updatePixelclock(); ///< @throws std::runtime_error the SDK's error text
    void updateFramerate();
    void updateExposure();
    void updateMastergain();

    /// Prepares the camera for dark frames: one frame per second at most, the longest exposure
    /// that this allows, and a master gain of 50.
    void setAutoConfig();

protected slots:
    /// One event of the SDK. Lets no exception through to the event loop.
    void eventReceived(int event);

private:
    void tryOpen(int cameraId);
    [[nodiscard]] CameraSdk::Handle initCamera(int cameraId);
    void loadSettings();
    [[nodiscard]] unsigned int takeColorMode();
    void takeFrame();
    void applyPixelclock(int value);
    void sendCorrectionCommands(int first, int second);
    void check(int result) const;
    [[nodiscard]] const char* sdkText(int code) const;

    CameraSdk& m_sdk;
    std::unique_ptr<EventThread> m_frameThread;
    std::unique_ptr<EventThread> m_reconnectThread;
    std::unique_ptr<EventThread> m_removedThread;
    std::unique_ptr<EventThread> m_deviceNewThread;
    std::unique_ptr<EventThread> m_deviceRemovedThread;
    std::unique_ptr<EventThread> m_frameFailedThread;
    /// Receives the events that concern the opening that they came from (frame, reconnected,
    /// removed), so that those still queued can be dropped at the next one.
    QObject m_openingsEvents;
    unsigned int m_cameraId = 0;
    CameraSdk::Handle m_handle = 0;
    SensorInfo m_sensorInfo = {};
    int m_settingsResult = 0;
    int m_correctionResult = 0;
    int m_frameCount = 0;
    int m_failedCount = 0;
    ImageSequence m_sequence;
    int m_colorMode = camera::ColorModeBayer8;
    QImage::Format m_imageFormat = QImage::Format_Invalid;
    QImage m_image;
    CameraParameter<int> m_pixelclock;
    CameraParameter<double> m_framerate;
    CameraParameter<double> m_exposure;
    CameraParameter<int> m_mastergain;
};
