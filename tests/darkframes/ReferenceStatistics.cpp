// SPDX-License-Identifier: MIT
#include "tests/darkframes/ReferenceStatistics.h"

#include <algorithm>
#include <cmath>

namespace reference {

namespace {

using Real = long double;
using Image = std::vector<std::vector<Real>>; ///< row by row

std::optional<double> root(Real value)
{
    if (std::isnan(value) || std::isinf(value) || value < 0) {
        return std::nullopt;
    }
    return static_cast<double>(std::sqrt(value));
}

Real medianOf(std::vector<Real> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t n = values.size();
    return n % 2 == 1 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

} // namespace

Statistics statistics(const TestFrames& frames, const Plane& plane)
{
    const auto L = static_cast<Real>(frames.frames.size());
    Image y;
    Real sumOfVariances = 0;
    for (int row = plane.y; row < frames.height; row += plane.step) {
        y.emplace_back();
        for (int column = plane.x; column < frames.width; column += plane.step) {
            Real mean = 0;
            for (std::size_t frame = 0; frame < frames.frames.size(); ++frame) {
                mean += frames.at(frame, column, row);
            }
            mean /= L;
            Real squares = 0;
            for (std::size_t frame = 0; frame < frames.frames.size(); ++frame) {
                squares +=
                    (frames.at(frame, column, row) - mean) * (frames.at(frame, column, row) - mean);
            }
            sumOfVariances += squares / (L - 1);
            y.back().push_back(mean);
        }
    }
    Statistics result;
    if (y.empty() || y.front().empty()) {
        return result;
    }
    const std::size_t rows = y.size();
    const std::size_t columns = y.front().size();
    const auto M = static_cast<Real>(rows);
    const auto N = static_cast<Real>(columns);

    std::vector<Real> all;
    for (const std::vector<Real>& row : y) {
        all.insert(all.end(), row.begin(), row.end());
    }
    Real mu = 0;
    for (const Real value : all) {
        mu += value;
    }
    mu /= M * N;
    const Real median = medianOf(all);
    std::vector<Real> distances;
    for (const Real value : all) {
        distances.push_back(std::abs(value - median));
    }
    result.pixels = all.size();
    result.mean = static_cast<double>(mu);
    result.median = static_cast<double>(median);
    result.robustDeviation = static_cast<double>(1.4826L * medianOf(distances));
    result.minimum = static_cast<double>(*std::min_element(all.begin(), all.end()));
    result.maximum = static_cast<double>(*std::max_element(all.begin(), all.end()));

    const Real sigma2 = sumOfVariances / (M * N);
    if (L > 1) {
        result.temporalNoise = root(sigma2);
    }
    if (all.size() < 2) {
        return result;
    }
    Real variance = 0;
    for (const Real value : all) {
        variance += (value - mu) * (value - mu);
    }
    variance /= M * N - 1;
    result.deviation = root(variance);
    if (L < 2) {
        return result;
    }

    const Real s2 = variance - sigma2 / L;
    Real s2cav = 0;
    for (std::size_t column = 0; column < columns; ++column) {
        Real mean = 0;
        for (std::size_t row = 0; row < rows; ++row) {
            mean += y[row][column];
        }
        mean /= M;
        s2cav += (mean - mu) * (mean - mu);
    }
    s2cav = s2cav / N - sigma2 / (L * M);
    Real s2rav = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        Real mean = 0;
        for (std::size_t column = 0; column < columns; ++column) {
            mean += y[row][column];
        }
        mean /= N;
        s2rav += (mean - mu) * (mean - mu);
    }
    s2rav = s2rav / M - sigma2 / (L * N);
    const Real q = M * N - M - N;
    result.dsnu = root(s2);
    result.dsnuColumn = root((M * N - M) / q * s2cav - N / q * (s2 - s2rav));
    result.dsnuRow = root((M * N - N) / q * s2rav - M / q * (s2 - s2cav));
    result.dsnuPixel = root(M * N / q * (s2 - s2cav - s2rav));
    return result;
}

std::vector<std::pair<int, int>> hotPixels(const TestFrames& frames, const Plane& plane,
                                           int threshold)
{
    std::vector<std::vector<long long>> means;
    long long sum = 0;
    long long count = 0;
    for (int y = plane.y; y < frames.height; y += plane.step) {
        means.emplace_back();
        for (int x = plane.x; x < frames.width; x += plane.step) {
            long long values = 0;
            for (std::size_t frame = 0; frame < frames.frames.size(); ++frame) {
                values += frames.at(frame, x, y);
            }
            means.back().push_back(values / static_cast<long long>(frames.frames.size()));
            sum += means.back().back();
            ++count;
        }
    }
    std::vector<std::pair<int, int>> found;
    for (std::size_t row = 0; row < means.size(); ++row) {
        for (std::size_t column = 0; column < means[row].size(); ++column) {
            if (means[row][column] > sum / count + threshold) {
                found.emplace_back(plane.x + static_cast<int>(column) * plane.step,
                                   plane.y + static_cast<int>(row) * plane.step);
            }
        }
    }
    return found;
}

} // namespace reference
