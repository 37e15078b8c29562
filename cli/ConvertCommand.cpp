// SPDX-License-Identifier: MIT
// `convert`: a list of one format into one of another.

#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/PixelListFiles.h"
#include "cli/SurveyOptions.h"
#include "pixellists/PixelListWriting.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonArray>
#include <QPoint>
#include <QRegularExpression>

namespace {

constexpr auto FromOption = "from";
constexpr auto ToOption = "to";
constexpr auto OffsetOption = "offset";
constexpr auto ValueOption = "value";

class ConvertCommand
{
    Q_DECLARE_TR_FUNCTIONS(ConvertCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& switches);
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    static QPoint toldOffset(const QCommandLineParser& parser);
    static std::optional<unsigned> toldValue(const QCommandLineParser& parser,
                                             const PixelListFormat& from,
                                             const PixelListFormat& to);
};

QList<QCommandLineOption> ConvertCommand::options(const std::vector<SdkSwitch>& /*switches*/)
{
    return {{QLatin1String(FromOption), tr("The format of IN, where its name does not say it."),
             QStringLiteral("FORMAT")},
            {QLatin1String(ToOption), tr("The format of OUT, where its name does not say it."),
             QStringLiteral("FORMAT")},
            cli::sizeOption(),
            {QLatin1String(OffsetOption),
             tr("Add X and Y, which may be negative, to all coordinates."), QStringLiteral("X,Y")},
            {QLatin1String(ValueOption),
             tr("Of a mask that is read, only pixels with this value are bad; in one that is "
                "written, bad pixels have it."),
             QStringLiteral("N")},
            cli::lenientOption()};
}

void ConvertCommand::run(const QStringList& values, const QCommandLineParser& parser,
                         CommandContext& context)
{
    const PixelListFormat& from =
        cli::formatOf(values[0], parser.value(QLatin1String(FromOption)), QStringLiteral("--from"));
    const PixelListFormat& to =
        cli::formatOf(values[1], parser.value(QLatin1String(ToOption)), QStringLiteral("--to"));
    const QPoint offset = toldOffset(parser);
    const std::optional<unsigned> value = toldValue(parser, from, to);
    ListWriting writing{.size = cli::toldSize(parser)};
    if (value && to.isImage()) {
        writing.maskValue = static_cast<std::uint8_t>(*value);
    }
    const bool imageSaysSize = from.isImage() && offset.isNull();
    if (!imageSaysSize) {
        cli::checkSize(to, writing.size);
    }
    cli::checkListOutput(values[1], to);

    Report report(context);
    ReadList list =
        cli::readList(values[0], from,
                      {.size = writing.size, .lenient = cli::isLenient(parser), .maskValue = value},
                      context.console);
    cli::reportRead(list, report);
    report.insert("in", cli::readObject(list));
    const std::size_t read = list.pixels.size();
    if (writing.size.isEmpty() && imageSaysSize) {
        writing.size = list.size;
    }
    QStringList lost;
    pixellists::movePixels(list.pixels, offset, lost);
    ListToSave saved = cli::makeList(values[1], to, list.pixels, writing);
    saved.losses = lost + saved.losses;
    cli::saveList(saved, report);
    report.line(cli::accountText(read, saved.written));
    report.insert("out", cli::savedObject(saved));
}

QPoint ConvertCommand::toldOffset(const QCommandLineParser& parser)
{
    if (!parser.isSet(QLatin1String(OffsetOption))) {
        return {};
    }
    static const QRegularExpression Pattern(
        QStringLiteral("^([+-]?[0-9]{1,5}),([+-]?[0-9]{1,5})$"));
    const QString text = parser.value(QLatin1String(OffsetOption));
    const QRegularExpressionMatch match = Pattern.match(text);
    if (!match.hasMatch()) {
        throw cli::UsageError(
            tr("The offset has to be two whole numbers, such as 8,-4, not \"%1\".").arg(text));
    }
    return {match.captured(1).toInt(), match.captured(2).toInt()};
}

std::optional<unsigned> ConvertCommand::toldValue(const QCommandLineParser& parser,
                                                  const PixelListFormat& from,
                                                  const PixelListFormat& to)
{
    if (!parser.isSet(QLatin1String(ValueOption))) {
        return std::nullopt;
    }
    if (!from.isImage() && !to.isImage()) {
        throw cli::UsageError(tr("Only masks have a --value."));
    }
    constexpr std::uint32_t GreatestWritten = 255;
    constexpr std::uint32_t GreatestRead = 65535;
    return cli::numberOf(parser, ValueOption, tr("The value"), 1,
                         to.isImage() ? GreatestWritten : GreatestRead);
}

} // namespace

namespace cli::commands {

Command convert()
{
    return {.name = QStringLiteral("convert"),
            .arguments = {QStringLiteral("IN"), QStringLiteral("OUT")},
            .summary = ConvertCommand::tr("Make a list of another program of a list."),
            .description =
                ConvertCommand::tr(
                    "Reads the list of bad pixels IN and saves it to OUT in another format. The\n"
                    "formats follow from the names of the files where those are clear. What the\n"
                    "new format can't carry is said in numbers before it is saved.\n\n"
                    "Formats:") +
                u'\n' + formatLines(),
            .options = ConvertCommand::options,
            .run = ConvertCommand::run};
}

} // namespace cli::commands
