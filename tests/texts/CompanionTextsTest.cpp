// SPDX-License-Identifier: MIT
#include "camera/SdkExtras.h"
#include "cli/Companion.h"
#include "cli/Interruption.h"
#include "pixellists/PixelListFormat.h"
#include "simulator/SimulatedCameraSdk.h"
#include "tests/cli/RecordedConsole.h"
#include "tests/sdk/ForwardingCameraSdk.h"
#include "tests/texts/CollectedTexts.h"
#include "tests/texts/LongerLanguage.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <optional>

namespace {

CameraDescription smallCamera()
{
    CameraDescription camera;
    camera.serial = QStringLiteral("S1");
    camera.model = QStringLiteral("VS-5");
    camera.width = 64;
    camera.height = 48;
    camera.bayer = true;
    camera.colorMode = 11;
    camera.lineBlanking = 10000; // which lets it expose for a second
    camera.slowestFrame = 100;
    camera.hotPixels = 15;
    camera.factoryEntries = 2;
    camera.userEntries = 3;
    camera.userCapacity = 20;
    return camera;
}

struct Printed
{
    int status;
    QString out;
    QString err;
};

/// The companion on one covered camera, which is the same in every language.
class CompanionOnACamera
{
public:
    CompanionOnACamera() { m_simulated.control(QStringLiteral("S1")).setCovered(true); }

    /// @param line the arguments, separated by blanks; each ~ stands for a folder of its own
    Printed run(QString line)
    {
        line.replace(u'~', m_home.path());
        RecordedConsole recorded;
        Interruption interruption;
        Companion companion([this] { return std::make_unique<ForwardingCameraSdk>(m_simulated); },
                            sdkSwitches(), recorded.console(), interruption);
        const int status = companion.run(QStringList(QStringLiteral("vorn-hotpixel")) +
                                         line.split(u' ', Qt::SkipEmptyParts));
        return {status, QString::fromUtf8(recorded.out()), QString::fromUtf8(recorded.err())};
    }

    QJsonObject runForMachines(const QString& line)
    {
        const Printed printed = run(line + QStringLiteral(" --json"));
        EXPECT_EQ(printed.status, Companion::Succeeded) << qPrintable(line + '\n' + printed.err);
        return QJsonDocument::fromJson(printed.out.toUtf8()).object();
    }

    [[nodiscard]] QString file(const QString& name) const { return m_home.filePath(name); }

private:
    QTemporaryDir m_home;
    SimulatedCameraSdk m_simulated{{{smallCamera()}, 200.0, m_home.path(), {}}};
};

/// Fails for each English word in @p text that is none of the language of command lines: commands,
/// options, what an argument is called, files; nor of the camera's and the list's own.
void expectTranslated(const QString& text)
{
    QStringList words{QStringLiteral("vorn-hotpixel"), QStringLiteral("VS-5"), QStringLiteral("S1"),
                      QStringLiteral("help-all"), QStringLiteral("PNG, TIFF, BMP, PGM")};
    for (const Command& command : Companion::allCommands()) {
        words.append(command.name);
    }
    words.append({QStringLiteral("user"), QStringLiteral("factory")});
    words.append(pixellists::formatNames().split(QStringLiteral(", ")));
    static const QRegularExpression Kept(
        QStringLiteral(
            "(?<![\\w-])(%1)(?![\\w-])|--[a-z-]+|<\\w+>|on\\|off\\|test|\\b-[a-z?]\\b|\\b[A-Z]+\\b|"
            "/\\S+|"
            "\\b(CFITSIO|LibRaw) [0-9.]+[0-9A-Za-z.-]*|\\b(Gr|Gb|x0y0|x0y1|x1y0|x1y1)\\b")
            .arg(words.join(u'|')));
    static const QRegularExpression EnglishWord(QStringLiteral("[A-Za-z]{2,}"));
    for (const QString& line : text.split(u'\n')) {
        const QString rest = QString(line).remove(Kept);
        EXPECT_FALSE(EnglishWord.match(rest).hasMatch())
            << "not translated: " << qPrintable(line) << "\nwhich leaves: " << qPrintable(rest);
    }
}

class CompanionInAnotherLanguage : public testing::Test
{
protected:
    void TearDown() override { expectCollected(m_language.asked()); }

    void expectTranslatedOutputOf(const QString& line, int status = Companion::Succeeded)
    {
        SCOPED_TRACE(qPrintable(line));
        const Printed printed = m_companion.run(line);
        EXPECT_EQ(printed.status, status) << qPrintable(printed.err);
        expectTranslated(printed.out);
        expectTranslated(printed.err);
        EXPECT_FALSE((printed.out + printed.err).isEmpty());
    }

    void writeFile(const QString& name, const QByteArray& content) const
    {
        QFile file(m_companion.file(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    LongerLanguage m_language;
    CompanionOnACamera m_companion;
};

} // namespace

TEST_F(CompanionInAnotherLanguage, DoesItsJobs)
{
    writeFile(QStringLiteral("list.txt"), "1 2 1\n3 4 1\n");
    expectTranslatedOutputOf(QStringLiteral("cameras"));
    expectTranslatedOutputOf(QStringLiteral("read S1 --out ~/saved.txt"));
    expectTranslatedOutputOf(QStringLiteral("write S1 ~/list.txt --yes"));
    expectTranslatedOutputOf(QStringLiteral("survey S1 --report ~/survey.html"));
    expectTranslatedOutputOf(QStringLiteral(
        "detect S1 --auto --clear --write --yes --report ~/found.html --csv ~/found.csv"));
    expectTranslatedOutputOf(QStringLiteral("detect S1 --like-editor --save-frames ~/frames"));
    expectTranslatedOutputOf(QStringLiteral("survey --frames ~/frames --bayer"));
    expectTranslatedOutputOf(QStringLiteral("detect --frames ~/frames --bayer --out ~/files.txt"));
    expectTranslatedOutputOf(QStringLiteral("convert ~/list.txt ~/list.csv"));
    expectTranslatedOutputOf(QStringLiteral("merge ~/list.txt ~/saved.txt --out ~/merged.txt"));
    expectTranslatedOutputOf(QStringLiteral("diff ~/list.txt ~/saved.txt"),
                             Companion::CommandFailed);
    expectTranslatedOutputOf(QStringLiteral("check S1 --auto --report ~/check.html"));
    expectTranslatedOutputOf(QStringLiteral("correction S1 test --auto"));
    expectTranslatedOutputOf(QStringLiteral("correction S1 on"));
}

TEST_F(CompanionInAnotherLanguage, ExplainsItself)
{
    expectTranslatedOutputOf(QStringLiteral("--help"));
    expectTranslatedOutputOf(QStringLiteral("--version"));
    for (const Command& command : Companion::allCommands()) {
        expectTranslatedOutputOf(command.name + QStringLiteral(" --help"));
    }
}

TEST_F(CompanionInAnotherLanguage, SaysWhatIsWrong)
{
    writeFile(QStringLiteral("bad.txt"), "1 2 3 x\n");
    for (const char* const line : {"", "cameras 7", "read", "detect S1 --threshold 7000",
                                   "detect S1 --threshold 30 --sigma 5", "detect S1 --mono"}) {
        expectTranslatedOutputOf(QLatin1String(line), Companion::WrongUse);
    }
    for (const char* const line : {"read S2", "write S1 ~/bad.txt --yes",
                                   "write S1 ~/missing.txt --yes", "read S1 --out ~/no/where.txt",
                                   "survey --frames ~/bad.txt", "survey --frames ~/missing"}) {
        expectTranslatedOutputOf(QLatin1String(line), Companion::CommandFailed);
    }
}

// What machines read is the same in every language: one covered camera each, with the same pixels,
// and the same commands.
TEST(CompanionInTwoLanguages, SaysTheSameToMachines)
{
    const QStringList lines{QStringLiteral("cameras"),
                            QStringLiteral("read S1"),
                            QStringLiteral("write S1 ~/list.txt --yes"),
                            QStringLiteral("detect S1 --auto --clear --write --yes"),
                            QStringLiteral("survey S1"),
                            QStringLiteral("read S1")};
    QList<QList<QJsonObject>> results;
    for (const bool translated : {false, true}) {
        std::optional<LongerLanguage> language;
        if (translated) {
            language.emplace();
        }
        CompanionOnACamera companion;
        QFile list(companion.file(QStringLiteral("list.txt")));
        ASSERT_TRUE(list.open(QIODevice::WriteOnly));
        list.write("1 2 1\n3 4 1\n");
        list.close();
        QList<QJsonObject> objects;
        for (const QString& line : lines) {
            QJsonObject object = companion.runForMachines(line);
            EXPECT_FALSE(object.isEmpty()) << qPrintable(line);
            objects.append(object);
        }
        results.append(objects);
    }
    for (qsizetype i = 0; i < lines.size(); ++i) {
        for (const char* const key : {"written", "file"}) { // the names of files
            results[0][i].remove(QLatin1String(key));
            results[1][i].remove(QLatin1String(key));
        }
        // The frames of the two runs are different ones, with noise of their own.
        if (lines[i].startsWith(QLatin1String("survey"))) {
            EXPECT_EQ(results[0][i].keys(), results[1][i].keys());
            continue;
        }
        EXPECT_EQ(QJsonDocument(results[0][i]).toJson().toStdString(),
                  QJsonDocument(results[1][i]).toJson().toStdString())
            << qPrintable(lines[i]);
    }
}
