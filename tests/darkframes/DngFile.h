// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

struct DngOptions
{
    QString colours = QStringLiteral("RGGB"); ///< none makes it monochrome
    int blackLevel = 0;
    int whiteLevel = 65535;
    int left = 0; ///< the visible area; all when right is 0
    int top = 0;
    int right = 0;
    int bottom = 0;
    int samples = 1; ///< 3 makes it a colour image
    int claimedWidth = 0;
    int claimedHeight = 0; ///< what the file says instead of the truth
};

/// Writes a small raw file as a camera would.
/// @param image Format_Grayscale16
void writeDng(const QString& fileName, const QImage& image, const DngOptions& options);
