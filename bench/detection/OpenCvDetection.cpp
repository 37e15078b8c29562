// SPDX-License-Identifier: MIT
#include "bench/detection/OpenCvDetection.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace {

std::size_t countHotpixels(const cv::Mat& plane, int threshold)
{
    const double limit = cv::mean(plane)[0] + threshold;
    cv::Mat above;
    cv::compare(plane, limit, above, cv::CMP_GT);
    std::vector<cv::Point> positions;
    cv::findNonZero(above, positions);
    return positions.size();
}

} // namespace

std::size_t detectWithOpenCv(int colorMode, const QVector<QImage>& frames, int threshold)
{
    // One core is what the detection has.
    cv::setNumThreads(1);
    const int width = frames.first().width();
    const int height = frames.first().height();
    cv::Mat mean = cv::Mat::zeros(height, width, CV_32F);
    for (const QImage& frame : frames) {
        const cv::Mat pixels(height, width, CV_8U, const_cast<uchar*>(frame.constBits()),
                             static_cast<std::size_t>(frame.bytesPerLine()));
        cv::accumulate(pixels, mean);
    }
    cv::divide(mean, static_cast<double>(frames.size()), mean);
    if (colorMode == 6) {
        return countHotpixels(mean, threshold);
    }

    std::size_t count = 0;
    for (int row = 0; row < 2; ++row) {
        // Every second line as pairs of pixels: two planes beside each other.
        const cv::Mat pairs(height / 2, width / 2, CV_32FC2, mean.ptr(row), 2 * mean.step);
        std::vector<cv::Mat> planes;
        cv::split(pairs, planes);
        for (const cv::Mat& plane : planes) {
            count += countHotpixels(plane, threshold);
        }
    }
    return count;
}
