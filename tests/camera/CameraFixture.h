// SPDX-License-Identifier: MIT
#pragma once

#include "camera/Camera.h"
#include "tests/sdk/CannedCameraSdk.h"
#include "tests/sdk/RecordingCameraSdk.h"

#include <QMetaMethod>
#include <gtest/gtest.h>

#include <optional>

/// A camera over an SDK that writes its calls down, and between them the camera's signals as
/// "-> name".
class CameraFixture : public ::testing::Test
{
protected:
    void makeCamera()
    {
        camera.emplace(sdk);
        const auto note = [this](const QString& text) { sdk.note(QStringLiteral("-> ") + text); };
        Camera& c = *camera;
        QObject::connect(&c, &Camera::newImage, &c, [note](const QImage& image) {
            note(image.isNull() ? QStringLiteral("newImage null") : QStringLiteral("newImage"));
        });
        QObject::connect(&c, &Camera::bufferSizeChanged, &c,
                         [note] { note(QStringLiteral("bufferSizeChanged")); });
        QObject::connect(&c, &Camera::cameraOpened, &c,
                         [note] { note(QStringLiteral("cameraOpened")); });
        QObject::connect(&c, &Camera::cameraClosed, &c,
                         [note] { note(QStringLiteral("cameraClosed")); });
        QObject::connect(&c, &Camera::cameraRemoved, &c,
                         [note] { note(QStringLiteral("cameraRemoved")); });
        QObject::connect(&c, &Camera::cameraReconnect, &c,
                         [note] { note(QStringLiteral("cameraReconnect")); });
        QObject::connect(&c, &Camera::cameraNewDevice, &c,
                         [note] { note(QStringLiteral("cameraNewDevice")); });
        QObject::connect(&c, &Camera::cameraRemovedDevice, &c,
                         [note] { note(QStringLiteral("cameraRemovedDevice")); });
        QObject::connect(&c, &Camera::displayError, &c, [note](const QString& text, int msec) {
            note(QStringLiteral("displayError %1 (%2)").arg(text).arg(msec));
        });
        QObject::connect(&c, &Camera::pixelclockChanged, &c, [note](CameraParameter<int>& p) {
            note(QStringLiteral("pixelclockChanged %1").arg(p.value));
        });
        QObject::connect(&c, &Camera::framerateChanged, &c, [note](CameraParameter<double>& p) {
            note(QStringLiteral("framerateChanged %1").arg(p.value));
        });
        QObject::connect(&c, &Camera::exposureChanged, &c, [note](CameraParameter<double>& p) {
            note(QStringLiteral("exposureChanged %1").arg(p.value));
        });
        QObject::connect(&c, &Camera::mastergainChanged, &c, [note](CameraParameter<int>& p) {
            note(QStringLiteral("mastergainChanged %1").arg(p.value));
        });
    }

    /// A camera that is open, with the calls up to there forgotten.
    void makeOpenCamera()
    {
        makeCamera();
        camera->open(5);
        sdk.takeCalls();
    }

    /// As the event threads do, but at once.
    void event(int id)
    {
        QMetaObject::invokeMethod(&*camera, "eventReceived", Qt::DirectConnection, Q_ARG(int, id));
    }

    /// The text of what open() throws; empty when it does not.
    QString openingError()
    {
        try {
            camera->open(5);
        } catch (const std::runtime_error& error) {
            return QString::fromLatin1(error.what());
        }
        return {};
    }

    CannedCameraSdk answers;
    RecordingCameraSdk sdk{answers};
    std::optional<Camera> camera;
};

inline void PrintTo(const QStringList& lines, std::ostream* stream)
{
    *stream << '\n' << qPrintable(lines.join(QLatin1Char('\n')));
}

/// The lines of a text, for comparing with what was written down.
inline QStringList lines(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}
