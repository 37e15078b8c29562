// SPDX-License-Identifier: MIT
#include "simulator/SimulatedCameraControl.h"

#include "simulator/SimulatedCameraSdk.h"

QString SimulatedCameraControl::serial() const
{
    return m_camera == nullptr ? QString() : m_camera->description().serial;
}

QString SimulatedCameraControl::model() const
{
    return m_camera == nullptr ? QString() : m_camera->description().model;
}

void SimulatedCameraControl::setPlugged(bool plugged) const
{
    if (m_camera != nullptr && m_camera->setPlugged(plugged)) {
        m_sdk->signalDeviceEvent(plugged);
    }
}

void SimulatedCameraControl::setCovered(bool covered) const
{
    if (m_camera != nullptr) {
        m_camera->setCovered(covered);
    }
}

void SimulatedCameraControl::setDropFrames(bool drop) const
{
    if (m_camera != nullptr) {
        m_camera->setDropFrames(drop);
    }
}

void SimulatedCameraControl::setTemperature(double celsius) const
{
    if (m_camera != nullptr) {
        m_camera->setTemperature(celsius);
    }
}

void SimulatedCameraControl::setHeldElsewhere(bool held) const
{
    if (m_camera != nullptr) {
        m_camera->setHeldElsewhere(held);
    }
}

bool SimulatedCameraControl::isPlugged() const
{
    return m_camera != nullptr && m_camera->isPlugged();
}

bool SimulatedCameraControl::isCovered() const
{
    return m_camera != nullptr && m_camera->isCovered();
}

bool SimulatedCameraControl::dropsFrames() const
{
    return m_camera != nullptr && m_camera->dropsFrames();
}

double SimulatedCameraControl::temperature() const
{
    return m_camera == nullptr ? 0 : m_camera->temperature();
}

bool SimulatedCameraControl::isHeldElsewhere() const
{
    return m_camera != nullptr && m_camera->isHeldElsewhere();
}

std::vector<KnownHotPixel> SimulatedCameraControl::knownHotPixels() const
{
    return m_camera == nullptr ? std::vector<KnownHotPixel>() : m_camera->knownHotPixels();
}

double SimulatedCameraControl::darkMeanDn(int x, int y) const
{
    return m_camera == nullptr ? 0 : m_camera->darkMeanDn(x, y);
}

QString SimulatedCameraControl::eepromFileName() const
{
    return m_camera == nullptr ? QString() : m_camera->eepromFileName();
}
