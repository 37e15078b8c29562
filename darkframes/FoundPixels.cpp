// SPDX-License-Identifier: MIT
#include "darkframes/FoundPixels.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace {

std::vector<PixelPosition> sorted(std::span<const PixelPosition> positions)
{
    std::vector<PixelPosition> result(positions.begin(), positions.end());
    std::ranges::sort(result);
    return result;
}

FoundPixel measured(const DarkStack& stack, const PixelPosition& position,
                    const std::vector<SensorPlane>& planes, const Mosaic& mosaic)
{
    const std::size_t index = std::size_t{position.y} * stack.info().width + position.x;
    FoundPixel pixel;
    pixel.position = position;
    pixel.plane = planes[mosaic.planeOf(position.x, position.y)];
    pixel.mean = static_cast<double>(stack.sums()[index]) / stack.frameCount();
    pixel.temporalNoise = std::sqrt(stack.variance(index));
    pixel.greatest = stack.greatest(index);
    return pixel;
}

} // namespace

std::vector<FoundPixel> darkframes::foundPixels(const DarkStack& stack, const Survey& survey,
                                                const Findings& findings,
                                                std::span<const PixelPosition> factory,
                                                std::span<const PixelPosition> user)
{
    const std::vector<PixelPosition> factoryPixels = sorted(factory);
    const std::vector<PixelPosition> userPixels = sorted(user);
    const std::vector<SensorPlane> planes = survey.mosaic.planes();
    const auto classOf = [&](const PixelPosition& position, FoundClass unknown) {
        if (std::ranges::binary_search(factoryPixels, position)) {
            return FoundClass::Factory;
        }
        return std::ranges::binary_search(userPixels, position) ? FoundClass::User : unknown;
    };

    std::vector<FoundPixel> pixels;
    const HotPixels& found = findings.pixels;
    pixels.reserve(found.hot.size() + found.flickering.size());
    for (std::size_t i = 0; i < found.hot.size(); ++i) {
        FoundPixel pixel = measured(stack, found.hot[i], planes, survey.mosaic);
        pixel.foundClass = classOf(found.hot[i], FoundClass::New);
        pixel.isClustered = findings.clusters.isClustered[i];
        pixels.push_back(std::move(pixel));
    }
    for (const PixelPosition& position : found.flickering) {
        FoundPixel pixel = measured(stack, position, planes, survey.mosaic);
        pixel.foundClass = classOf(position, FoundClass::Flickering);
        pixels.push_back(std::move(pixel));
    }
    return pixels;
}

std::vector<FoundPixel> darkframes::pixelsNotFound(const DarkStack& stack, const Survey& survey,
                                                   const Findings& findings,
                                                   std::span<const PixelPosition> listed)
{
    const HotPixels& found = findings.pixels;
    std::set<PixelPosition> passed(found.hot.begin(), found.hot.end());
    passed.insert(found.flickering.begin(), found.flickering.end());
    const std::vector<SensorPlane> planes = survey.mosaic.planes();
    std::vector<FoundPixel> pixels;
    for (const PixelPosition& position : listed) {
        const bool onSensor = position.x < survey.info.width && position.y < survey.info.height;
        if (onSensor && passed.insert(position).second) {
            FoundPixel pixel = measured(stack, position, planes, survey.mosaic);
            pixel.foundClass = FoundClass::NotHot;
            pixels.push_back(std::move(pixel));
        }
    }
    return pixels;
}

QString darkframes::className(FoundClass foundClass)
{
    switch (foundClass) {
    case FoundClass::New:
        return QStringLiteral("new");
    case FoundClass::Factory:
        return QStringLiteral("factory");
    case FoundClass::User:
        return QStringLiteral("user");
    case FoundClass::NotHot:
        return QStringLiteral("not hot");
    case FoundClass::Flickering:
        break;
    }
    return QStringLiteral("flickering");
}

QByteArray darkframes::foundPixelsCsv(std::span<const FoundPixel> pixels)
{
    QByteArray text = "x,y,plane,mean,temporalNoise,greatest,class\n";
    for (const FoundPixel& pixel : pixels) {
        text += QByteArray::number(pixel.position.x) + ',' + QByteArray::number(pixel.position.y) +
                ',' + pixel.plane.name.toUtf8() + ',' + QByteArray::number(pixel.mean, 'g', 10) +
                ',' + QByteArray::number(pixel.temporalNoise, 'g', 10) + ',' +
                QByteArray::number(pixel.greatest) + ',' + className(pixel.foundClass).toLatin1() +
                '\n';
    }
    return text;
}
