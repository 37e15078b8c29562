// SPDX-License-Identifier: MIT
// `merge`: the pixels that several lists have.

#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/ListSources.h"
#include "cli/SurveyOptions.h"
#include "pixellists/PixelListComparison.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonArray>

#include <algorithm>

namespace {

constexpr auto VoteOption = "vote";
constexpr auto OutOption = "out";
constexpr auto ToOption = "to";

class MergeCommand
{
    Q_DECLARE_TR_FUNCTIONS(MergeCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& switches);
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    static const PixelListFormat& outputFormat(const QCommandLineParser& parser);

    /// The sensor's size: as it is told, or as all lists that say one agree on.
    static QSize sizeOf(const std::vector<ReadList>& lists, const QCommandLineParser& parser);
};

QList<QCommandLineOption> MergeCommand::options(const std::vector<SdkSwitch>& /*switches*/)
{
    QList<QCommandLineOption> options{
        {QLatin1String(VoteOption),
         tr("Keep the pixels that at least K lists have, 1 unless told."), QStringLiteral("K")},
        {QLatin1String(OutOption), tr("Save the list to FILE."), QStringLiteral("FILE")},
        {QLatin1String(ToOption),
         tr("The format of FILE, where its name does not say it; that of --format unless told."),
         QStringLiteral("FORMAT")}};
    options += cli::listSourceOptions();
    return options;
}

void MergeCommand::run(const QStringList& values, const QCommandLineParser& parser,
                       CommandContext& context)
{
    const QString fileName = parser.value(QLatin1String(OutOption));
    if (!parser.isSet(QLatin1String(OutOption))) {
        throw cli::UsageError(tr("--out is missing."));
    }
    const std::uint32_t votes = parser.isSet(QLatin1String(VoteOption))
                                    ? cli::numberOf(parser, VoteOption, tr("The number of lists"),
                                                    1, static_cast<std::uint32_t>(values.size()))
                                    : 1;
    const PixelListFormat& format = outputFormat(parser);
    cli::checkListOutput(fileName, format);

    const std::vector<ReadList> lists = cli::readLists(values, parser, context);
    Report report(context);
    std::vector<PixelList> pixels;
    std::size_t read = 0;
    QJsonArray sources;
    for (const ReadList& list : lists) {
        cli::reportRead(list, report);
        sources.append(cli::readObject(list));
        pixels.push_back(list.pixels);
        read += list.pixels.size();
    }
    report.insert("lists", sources);
    const PixelList merged = pixellists::merged(pixels, votes);
    report.line(votes == 1 ? tr("Pixels of at least 1 list: %1").arg(merged.size())
                           : tr("Pixels of at least %1 lists: %2").arg(votes).arg(merged.size()));
    report.insert("vote", static_cast<qint64>(votes));
    report.insert("pixels", static_cast<qint64>(merged.size()));
    const ListToSave saved =
        cli::makeList(fileName, format, merged, {.size = sizeOf(lists, parser)});
    cli::saveList(saved, report);
    report.line(cli::accountText(read, saved.written));
    report.insert("out", cli::savedObject(saved));
}

const PixelListFormat& MergeCommand::outputFormat(const QCommandLineParser& parser)
{
    const QString fileName = parser.value(QLatin1String(OutOption));
    const QStringList read = parser.values(QStringLiteral("format"));
    const bool nameIsClear = pixellists::formatsOfFile(fileName).size() == 1;
    QString told = parser.value(QLatin1String(ToOption));
    if (told.isEmpty() && !nameIsClear && read.size() == 1) {
        told = read.front();
    }
    return cli::formatOf(fileName, told, QStringLiteral("--to"));
}

QSize MergeCommand::sizeOf(const std::vector<ReadList>& lists, const QCommandLineParser& parser)
{
    const QSize told = cli::toldSize(parser);
    QSize size;
    for (const ReadList& list : lists) {
        if (list.size.isEmpty() || list.size == size) {
            continue;
        }
        if (!size.isEmpty()) {
            return told;
        }
        size = list.size;
    }
    return told.isEmpty() ? size : told;
}

} // namespace

namespace cli::commands {

Command merge()
{
    return {.name = QStringLiteral("merge"),
            .arguments = {QStringLiteral("LIST"), QStringLiteral("LIST...")},
            .summary = MergeCommand::tr("Put lists together, or vote over them."),
            .description = MergeCommand::tr(
                "Saves the pixels that at least K of the lists have: for lists of one sensor\n"
                "that were taken at different temperatures or on different days. Each LIST is a\n"
                "file of any format that convert knows, or a camera (a Dev number or a serial\n"
                "number), whose factory and user list are taken together."),
            .options = MergeCommand::options,
            .run = MergeCommand::run};
}

} // namespace cli::commands
