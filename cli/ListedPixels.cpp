// SPDX-License-Identifier: MIT
#include "cli/ListedPixels.h"

#include "hotpixel/CameraLists.h"

#include <QCoreApplication>

#include <set>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ListedPixels)
};

} // namespace

namespace cli {

CameraListsRead CameraListsRead::of(const Camera& camera)
{
    const CameraLists lists(camera);
    const int capacity = lists.maxUserEntries();
    return {lists.factoryEntries(), lists.userEntries(), capacity};
}

std::vector<ListedPixel> listedPixels(const CameraListsRead& lists, const DarkFrames& frames,
                                      const Findings& findings)
{
    const DarkStack& stack = frames.stack;
    const ImageInfo& info = stack.info();
    const std::set<PixelPosition> hot(findings.pixels.hot.begin(), findings.pixels.hot.end());
    const std::set<PixelPosition> flickering(findings.pixels.flickering.begin(),
                                             findings.pixels.flickering.end());
    std::vector<ListedPixel> pixels;
    for (const auto* list : {&lists.factory, &lists.user}) {
        for (const BadpixelEntry& entry : *list) {
            ListedPixel pixel{entry, ListedState::Outside, std::nullopt};
            if (entry.x < info.width && entry.y < info.height) {
                const PixelPosition position{entry.x, entry.y};
                pixel.mean =
                    static_cast<double>(stack.sumsOfRow(entry.y)[entry.x]) / stack.frameCount();
                pixel.state = hot.contains(position)          ? ListedState::Hot
                              : flickering.contains(position) ? ListedState::Flickering
                                                              : ListedState::NotHot;
            }
            pixels.push_back(pixel);
        }
    }
    return pixels;
}

QString listName(const BadpixelEntry& entry)
{
    return entry.pixelClass == FactoryPixel ? QStringLiteral("factory") : QStringLiteral("user");
}

const char* stateName(ListedState state)
{
    switch (state) {
    case ListedState::Hot:
        return QT_TRANSLATE_NOOP("ListedPixels", "hot");
    case ListedState::Flickering:
        return QT_TRANSLATE_NOOP("ListedPixels", "flickering");
    case ListedState::NotHot:
        return QT_TRANSLATE_NOOP("ListedPixels", "not hot");
    case ListedState::Outside:
        break;
    }
    return QT_TRANSLATE_NOOP("ListedPixels", "outside");
}

QString stateText(ListedState state)
{
    return Text::tr(stateName(state));
}

QString meanText(const std::optional<double>& mean)
{
    return mean ? QString::number(*mean, 'f', 1) : QStringLiteral("-");
}

} // namespace cli
