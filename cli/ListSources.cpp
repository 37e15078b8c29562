// SPDX-License-Identifier: MIT
#include "cli/ListSources.h"

#include "cli/CameraSession.h"
#include "cli/Command.h"
#include "cli/Console.h"
#include "hotpixel/CameraLists.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <optional>

namespace cli {
namespace {

constexpr auto FormatOption = "format";
constexpr auto UserOption = "user";

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(ListSources)
};

/// What nobody would call a camera.
bool isFileName(const QString& name)
{
    return QFileInfo::exists(name) || name.contains(u'/') || name.contains(u'.') ||
           name.contains(u'\\');
}

/// The formats of the files among @p values, null for cameras. One that is told holds for all of
/// them, several in their order.
std::vector<const PixelListFormat*> formatsOf(const QStringList& values,
                                              const QCommandLineParser& parser)
{
    const QStringList told = parser.values(QLatin1String(FormatOption));
    std::vector<const PixelListFormat*> formats;
    qsizetype files = 0;
    for (const QString& value : values) {
        if (!isFileName(value)) {
            formats.push_back(nullptr);
            continue;
        }
        const QString name = told.size() == 1 ? told.front() : told.value(files);
        ++files;
        formats.push_back(&formatOf(value, name, QStringLiteral("--format")));
    }
    if (told.size() > 1 && told.size() != files) {
        throw UsageError(Text::tr("--format has to be given once, or once for each file."));
    }
    return formats;
}

ReadList readCamera(const QString& name, bool userOnly, CommandContext& context)
{
    const QList<CameraItem> cameras = camera::connectedCameras(context.sdk());
    const bool isCamera = std::ranges::any_of(cameras, [&name](const CameraItem& camera) {
        return camera.serNo == name || QString::number(camera.devId) == name;
    });
    if (!isCamera) {
        throw CommandError(
            Text::tr("There is no file \"%1\", and no camera with this Dev number or "
                     "serial number is connected.")
                .arg(name));
    }
    CameraSession session(context, chooseCamera(cameras, name));
    const CameraLists lists(session.camera());
    ReadList list{.name = name,
                  .source = cameraText(session.description()),
                  .size = {session.camera().imageWidth(), session.camera().imageHeight()},
                  .pixels = {},
                  .notes = {}};
    if (!userOnly) {
        list.pixels = pixelsOf(lists.factoryEntries());
    }
    const PixelList user = pixelsOf(lists.userEntries());
    list.pixels.insert(list.pixels.end(), user.begin(), user.end());
    return list;
}

} // namespace

QList<QCommandLineOption> listSourceOptions()
{
    return {formatOption(Text::tr("The format of the files, where their names do not say it; for "
                                  "several formats once for each file.")),
            sizeOption(),
            {QLatin1String(UserOption), Text::tr("Of cameras, take the user list only.")},
            lenientOption()};
}

std::vector<ReadList> readLists(const QStringList& values, const QCommandLineParser& parser,
                                CommandContext& context)
{
    const std::vector<const PixelListFormat*> formats = formatsOf(values, parser);
    const ListReading reading{.size = toldSize(parser), .lenient = isLenient(parser)};
    std::vector<ReadList> lists;
    for (std::size_t i = 0; i < formats.size(); ++i) {
        const QString& name = values[static_cast<qsizetype>(i)];
        lists.push_back(formats[i] != nullptr
                            ? readList(name, *formats[i], reading, context.console)
                            : readCamera(name, parser.isSet(QLatin1String(UserOption)), context));
    }
    return lists;
}

} // namespace cli
