// SPDX-License-Identifier: MIT
#include "detection/HotpixelDetector.h"
#include "hotpixel/BadpixelListModel.h"
#include "tests/harness/SharedData.h"

#include <QCryptographicHash>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <string>

namespace {

const QString Folder = sharedData("darkframes/colour_cmos_1280x960/");

/// The recorded dark frames; fewer than ten when some can't be read.
QVector<QImage> recordedFrames()
{
    QVector<QImage> frames;
    for (int i = 0; i < 10; ++i) {
        const QImage frame(Folder + QStringLiteral("frame_%1.png").arg(i, 2, 10, QChar(u'0')));
        if (frame.isNull()) {
            break;
        }
        // Reading a PNG makes grey images; the camera's are indexed, with the same bytes.
        QImage indexed(frame.constBits(), frame.width(), frame.height(), frame.bytesPerLine(),
                       QImage::Format_Indexed8);
        frames.append(indexed.copy());
    }
    return frames;
}

class RecordedFrames : public testing::TestWithParam<int>
{};

} // namespace

TEST_P(RecordedFrames, GiveTheRecordedDetection)
{
    QFile file(Folder + "detection.json");
    if (!file.open(QIODevice::ReadOnly)) {
        GTEST_SKIP() << "no recorded dark frames in " << Folder.toStdString();
    }
    const QJsonObject recorded = QJsonDocument::fromJson(file.readAll()).object();
    const QVector<QImage> frames = recordedFrames();
    ASSERT_EQ(frames.size(), recorded["frames"].toInt());

    const QJsonObject thresholds =
        recorded["modes"][QString::number(GetParam())]["thresholds"].toObject();
    ASSERT_FALSE(thresholds.isEmpty());
    for (const QString& threshold : thresholds.keys()) {
        BadpixelListModel list;
        list.setMaxUserEntries(frames.first().width() * frames.first().height());
        HotpixelDetector detector(threshold.toInt());
        detector.setImages(GetParam(), &frames);
        detector.detect(&list);

        QCryptographicHash hash(QCryptographicHash::Sha256);
        for (int row = 0; row < list.rowCount(); ++row) {
            const BadpixelEntry entry = list.badpixelAt(row);
            hash.addData(QByteArray::number(entry.x) + ' ' + QByteArray::number(entry.y) + " 1\n");
        }
        const QJsonObject result = thresholds[threshold].toObject();
        EXPECT_EQ(list.rowCount(), result["unique"].toInt()) << threshold.toStdString();
        EXPECT_EQ(hash.result().toHex().toStdString(),
                  result["sha256OfListFile"].toString().toStdString())
            << threshold.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(InMode, RecordedFrames, testing::Values(6, 11),
                         [](const auto& test) { return std::to_string(test.param); });
