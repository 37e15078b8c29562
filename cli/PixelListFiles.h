// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"
#include "pixellists/PixelListFormat.h"
#include "pixellists/PixelListReading.h"

#include <QByteArray>
#include <QCommandLineOption>
#include <QJsonObject>
#include <QList>
#include <QSize>
#include <QString>
#include <QStringList>

#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

class Console;
class QCommandLineParser;
class Report;

/// How a command reads lists of any format.
struct ListReading
{
    QSize size;                             ///< of the sensor; empty when nobody told it
    bool lenient = false;                   ///< bad lines are left out
    std::optional<unsigned> maskValue = {}; ///< what of a mask is bad; all but 0 unless told
};

/// A list that a command has read from a file, or from a camera.
struct ReadList
{
    QString name;   ///< as it was called
    QString source; ///< its format, or the camera
    QSize size;     ///< of the sensor, where the list says it; empty otherwise
    PixelList pixels;
    std::uint64_t badLines = 0; ///< how many were left out
    QStringList notes;          ///< in numbers, what its file says beside
};

/// The values of pixels at their places, x and y.
using PixelValues = std::map<std::pair<std::uint32_t, std::uint32_t>, float>;

/// How a command writes a list of any format.
struct ListWriting
{
    QSize size;                   ///< of the sensor; empty when nobody told it
    QString camera = {};          ///< its model, where it is known
    std::uint8_t maskValue = 255; ///< of bad pixels in a mask
    PixelValues values = {};      ///< what saveUserEntries() knows of pixels besides
};

/// What a command is going to save.
struct ListToSave
{
    QString fileName;
    const PixelListFormat* format = nullptr;
    QByteArray content;
    std::size_t written = 0; ///< entries in it
    QStringList losses;      ///< in numbers, what of the list is not in it
};

namespace cli {

/// Which of its formats a list has, whose file is called @p fileName.
/// @param told by the person; empty when nothing was
/// @param option which one tells, such as "--from"
/// @param otherwise for names that don't say it; null when it has to be told then
/// @throws UsageError for a format that nobody knows, and when the name does not say it.
const PixelListFormat& formatOf(const QString& fileName, const QString& told, const QString& option,
                                const PixelListFormat* otherwise = nullptr);

/// That of this program's own list files.
const PixelListFormat& editorFormat();

/// "FORMAT: SUMMARY" for each format, as a part of a command's description.
QString formatLines();

/// --format FORMAT, as @p description says.
QCommandLineOption formatOption(const QString& description);

/// The --format of what --out saves, and which one that is: this program's own unless the name of
/// the file says another one.
QCommandLineOption outputFormatOption();
/// @throws UsageError as formatOf(), and without --out.
const PixelListFormat& outputFormat(const QString& fileName, const QCommandLineParser& parser);

/// The suffix of files in that format which have no name yet.
/// @throws UsageError for a format that nobody knows.
QString outputSuffix(const QCommandLineParser& parser);

/// --size, and what it says.
QCommandLineOption sizeOption();
/// @return empty when it is not given.
/// @throws UsageError for what is no size.
QSize toldSize(const QCommandLineParser& parser);

/// --lenient, and whether it is given.
QCommandLineOption lenientOption();
[[nodiscard]] bool isLenient(const QCommandLineParser& parser);

/// Reads a list. Its first bad lines become notices.
/// @throws CommandError, PixelListError, FrameError naming the file.
ReadList readList(const QString& fileName, const PixelListFormat& format,
                  const ListReading& reading, Console& console);

/// Reads a list that is to go into a camera, strictly: this program's own with readUserListFile(),
/// and those of other formats become user entries.
std::vector<BadpixelEntry> readListForCamera(const QString& fileName,
                                             const QCommandLineParser& parser, Console& console);

/// Finds out early what would keep a list from being saved.
/// @throws UsageError, CommandError as checkOutputFile(), and for masks that are no PNG files.
void checkListOutput(const QString& fileName, const PixelListFormat& format);

/// Finds out early whether the sensor's size is missing.
/// @throws UsageError when the format needs one.
void checkSize(const PixelListFormat& format, const QSize& size);

/// Makes what is to be saved.
/// @throws UsageError as checkSize(), PixelListError for what the format can't hold.
ListToSave makeList(const QString& fileName, const PixelListFormat& format,
                    std::span<const ListedPixel> pixels, const ListWriting& writing);

/// Says what is lost, then saves.
/// @throws CommandError with the file's name and the reason.
void saveList(const ListToSave& list, Report& report);

/// Saves the user entries among @p entries, as `read` and `detect` do: this program's own format as
/// saveOutputFile() does, any other one as saveList().
/// @return accountText(); nothing for this program's own format, which loses nothing.
[[nodiscard]] QString saveUserEntries(const QString& fileName, const PixelListFormat& format,
                                      std::span<const BadpixelEntry> entries,
                                      const ListWriting& writing, Report& report);

/// "NAME: SOURCE, 12 entries", and what else there is to say about a list that was read.
void reportRead(const ReadList& list, Report& report);
/// {"name", "source", "entries", "badLines", "notes"}
QJsonObject readObject(const ReadList& list);
/// {"name", "format", "written", "losses"}
QJsonObject savedObject(const ListToSave& list);

/// "12 read, 10 written"
QString accountText(std::size_t read, std::size_t written);

/// @p entries with their classes.
PixelList pixelsOf(std::span<const BadpixelEntry> entries);
/// The places of @p pixels as user entries.
std::vector<BadpixelEntry> entriesOf(std::span<const ListedPixel> pixels);

} // namespace cli
