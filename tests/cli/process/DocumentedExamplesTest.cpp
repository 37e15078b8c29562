// SPDX-License-Identifier: MIT
// The examples in docs/companion.md, run as they stand there.

#include "tests/cli/process/CompanionFixture.h"
#include "tests/harness/SharedData.h"

#include <QDir>
#include <QFile>
#include <QStringList>
#include <gtest/gtest.h>

#include <utility>

namespace {

/// A command of the page and what it prints according to it.
struct Example
{
    QString command;
    QStringList output; ///< "..." stands for any number of lines
    int status = 0;     ///< what "echo $?" prints behind it
};

/// All of the blocks "```console": a command on each line that begins with "$ ", its output below.
std::vector<Example> documentedExamples()
{
    QFile page(QStringLiteral(VORN_DOCS "/companion.md"));
    EXPECT_TRUE(page.open(QIODevice::ReadOnly));
    std::vector<Example> examples;
    bool inBlock = false;
    bool isStatus = false;
    for (const QString& line : QString::fromUtf8(page.readAll()).split(u'\n')) {
        if (line.startsWith(QLatin1String("```"))) {
            inBlock = line == QLatin1String("```console");
        } else if (inBlock && line == QLatin1String("$ echo $?")) {
            isStatus = true;
        } else if (inBlock && std::exchange(isStatus, false)) {
            examples.back().status = line.toInt();
        } else if (inBlock && line.startsWith(QLatin1String("$ "))) {
            examples.push_back({line.mid(2), {}, 0});
        } else if (inBlock && !examples.empty()) {
            examples.back().output.append(line);
        }
    }
    return examples;
}

/// Whether the lines are those that are expected, from both beginnings on.
bool matches(const QStringList& lines, const QStringList& expected)
{
    if (expected.isEmpty()) {
        return lines.isEmpty();
    }
    if (expected.first() == QLatin1String("...")) {
        for (qsizetype skipped = 0; skipped <= lines.size(); ++skipped) {
            if (matches(lines.mid(skipped), expected.mid(1))) {
                return true;
            }
        }
        return false;
    }
    return !lines.isEmpty() && lines.first() == expected.first() &&
           matches(lines.mid(1), expected.mid(1));
}

/// A camera like the second one of the demo, which everything takes less time with.
constexpr auto Cameras = "[bus]\nspeed=40\n"
                         "[camera1]\nserial=4102700501\nwidth=320\nheight=256\n"
                         "[camera2]\nserial=4102700502\nwidth=648\nheight=486\nsensor=bayer\n";

} // namespace

TEST(DocumentedExamples, RunAsTheyStandOnThePage)
{
    const QString recorded = sharedData("darkframes/colour_cmos_1280x960");
    const bool hasRecorded = QDir(recorded).exists();
    const CompanionFixture fixture(Cameras);
    if (hasRecorded) {
        ASSERT_TRUE(QFile::link(QDir(recorded).absolutePath(),
                                fixture.file(QStringLiteral("colour_cmos_1280x960"))));
    }
    const std::vector<Example> examples = documentedExamples();
    EXPECT_GE(examples.size(), 27U);
    for (const Example& example : examples) {
        if (!hasRecorded && example.command.contains(QLatin1String("colour_cmos_1280x960"))) {
            continue;
        }
        QStringList words = QProcess::splitCommand(example.command);
        ASSERT_EQ(words.takeFirst(), QStringLiteral("vorn-hotpixel-demo")) << "only the demo runs";
        const auto process = fixture.start(words);
        const Finished finished = CompanionFixture::finish(*process);
        EXPECT_EQ(finished.status, example.status) << qPrintable(example.command) << '\n'
                                                   << finished.err.constData();
        if (!example.output.isEmpty()) {
            QStringList lines = QString::fromUtf8(finished.out).split(u'\n');
            lines.removeLast();
            EXPECT_TRUE(matches(lines, example.output)) << qPrintable(example.command) << '\n'
                                                        << finished.out.constData();
        }
    }
}
