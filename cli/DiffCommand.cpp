// SPDX-License-Identifier: MIT
// `diff`: what makes one list another one.

#include "cli/Command.h"
#include "cli/Console.h"
#include "cli/EntryText.h"
#include "cli/ListSources.h"
#include "cli/SurveyOptions.h"
#include "pixellists/PixelListComparison.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QJsonArray>

namespace {

constexpr auto ToleranceOption = "tolerance";

constexpr int Different = 1;
constexpr int Trouble = 2;

class DiffCommand
{
    Q_DECLARE_TR_FUNCTIONS(DiffCommand)

public:
    static QList<QCommandLineOption> options(const std::vector<SdkSwitch>& switches);
    static void run(const QStringList& values, const QCommandLineParser& parser,
                    CommandContext& context);

private:
    static void reportForPeople(const PixelListDifference& difference, Report& report);
    static void reportForMachines(const PixelListDifference& difference, Report& report);

    /// The words for what the two entries say of it differently, such as "user" and "factory".
    static std::pair<QString, QString> wordsOf(const ChangedPixel& changed);
};

QString classWord(PixelListClass listClass)
{
    switch (listClass) {
    case PixelListClass::Factory:
        return QStringLiteral("factory");
    case PixelListClass::User:
        return QStringLiteral("user");
    case PixelListClass::Ignored:
        return QStringLiteral("ignored");
    case PixelListClass::None:
        break;
    }
    return {};
}

QString defectWord(PixelDefect defect)
{
    switch (defect) {
    case PixelDefect::Hot:
        return QStringLiteral("hot");
    case PixelDefect::Cold:
        return QStringLiteral("cold");
    case PixelDefect::Unknown:
        break;
    }
    return {};
}

QList<QCommandLineOption> DiffCommand::options(const std::vector<SdkSwitch>& /*switches*/)
{
    QList<QCommandLineOption> options{
        {QLatin1String(ToleranceOption),
         tr("Take pixels for the same that lie up to N columns and rows away from each other."),
         QStringLiteral("N")}};
    options += cli::listSourceOptions();
    return options;
}

void DiffCommand::run(const QStringList& values, const QCommandLineParser& parser,
                      CommandContext& context)
{
    const std::uint32_t tolerance =
        parser.isSet(QLatin1String(ToleranceOption))
            ? cli::numberOf(parser, ToleranceOption, tr("The tolerance"), 0,
                            pixellists::GreatestTolerance)
            : 0;
    const std::vector<ReadList> lists = cli::readLists(values, parser, context);
    const PixelListDifference difference =
        pixellists::difference(lists[0].pixels, lists[1].pixels, tolerance);

    Report report(context);
    QJsonArray sources;
    for (const ReadList& list : lists) {
        cli::reportRead(list, report);
        sources.append(cli::readObject(list));
    }
    report.insert("lists", sources);
    reportForPeople(difference, report);
    reportForMachines(difference, report);
    context.status = difference.isEmpty() ? 0 : Different;
}

void DiffCommand::reportForPeople(const PixelListDifference& difference, Report& report)
{
    const auto part = [&report](const QString& title, const PixelList& pixels) {
        if (!pixels.empty()) {
            report.line(title.arg(pixels.size()));
            report.line(cli::entryColumns(cli::entriesOf(pixels)));
        }
    };
    part(tr("Added: %1"), difference.added);
    part(tr("Removed: %1"), difference.removed);
    if (!difference.changed.empty()) {
        report.line(tr("Class changed: %1").arg(difference.changed.size()));
    }
    for (const ChangedPixel& changed : difference.changed) {
        const auto [before, after] = wordsOf(changed);
        report.line(tr("  (%1, %2) from %3 to %4")
                        .arg(QString::number(changed.after.x), QString::number(changed.after.y),
                             before, after));
    }
    report.line(difference.nearby > 0 ? tr("In both: %1, %2 of them beside each other")
                                            .arg(difference.both)
                                            .arg(difference.nearby)
                                      : tr("In both: %1").arg(difference.both));
}

void DiffCommand::reportForMachines(const PixelListDifference& difference, Report& report)
{
    QJsonArray changes;
    for (const ChangedPixel& changed : difference.changed) {
        const auto [before, after] = wordsOf(changed);
        changes.append(QJsonObject{{QStringLiteral("x"), changed.after.x},
                                   {QStringLiteral("y"), changed.after.y},
                                   {QStringLiteral("before"), before},
                                   {QStringLiteral("after"), after}});
    }
    report.insert("same", difference.isEmpty());
    report.insert("added", cli::entryArray(cli::entriesOf(difference.added)));
    report.insert("removed", cli::entryArray(cli::entriesOf(difference.removed)));
    report.insert("changed", changes);
    report.insert("both", static_cast<qint64>(difference.both));
    report.insert("nearby", static_cast<qint64>(difference.nearby));
}

std::pair<QString, QString> DiffCommand::wordsOf(const ChangedPixel& changed)
{
    QStringList before;
    QStringList after;
    const auto add = [&](const QString& one, const QString& other) {
        if (one != other && !one.isEmpty() && !other.isEmpty()) {
            before.append(one);
            after.append(other);
        }
    };
    add(classWord(changed.before.listClass), classWord(changed.after.listClass));
    add(defectWord(changed.before.defect), defectWord(changed.after.defect));
    return {before.join(u' '), after.join(u' ')};
}

} // namespace

namespace cli::commands {

Command diff()
{
    return {.name = QStringLiteral("diff"),
            .arguments = {QStringLiteral("LIST"), QStringLiteral("LIST")},
            .summary = DiffCommand::tr("Compare two lists."),
            .description = DiffCommand::tr(
                "Shows which pixels the second LIST has and the first one has not, the other way\n"
                "round, and those whose class (user, factory) or kind (hot, cold) has changed.\n"
                "Each LIST is a file of any format that convert knows, or a camera (a Dev number\n"
                "or a serial number), whose factory and user list are taken together.\n\n"
                "The exit status is 0 when the lists are the same, 1 when they differ, and 2\n"
                "when they can't be compared."),
            .options = DiffCommand::options,
            .run = DiffCommand::run,
            .failedStatus = Trouble};
}

} // namespace cli::commands
