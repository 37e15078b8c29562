// SPDX-License-Identifier: MIT
#include "tests/texts/CollectedTexts.h"

#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace {

constexpr int DeadlineMsec = 120'000;

/// The texts in a translation file.
std::set<OwnedText> readTexts(const QString& fileName)
{
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    std::set<OwnedText> texts;
    QString owner;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == QLatin1String("name")) {
            owner = xml.readElementText();
        } else if (xml.name() == QLatin1String("source")) {
            texts.insert({owner, xml.readElementText()});
        }
    }
    EXPECT_FALSE(xml.hasError()) << qPrintable(xml.errorString());
    return texts;
}

CollectedTexts collect()
{
    const QTemporaryDir folder;
    const QString fileName = folder.filePath(QStringLiteral("vorn.ts"));
    QProcess process;
    process.start(QStringLiteral(VORN_SOURCES "/tools/collect-texts"),
                  {QStringLiteral(VORN_LUPDATE), fileName});
    EXPECT_TRUE(process.waitForFinished(DeadlineMsec));
    return {readTexts(fileName), QString::fromLocal8Bit(process.readAllStandardError())};
}

} // namespace

bool CollectedTexts::canBeCollected()
{
    return *VORN_LUPDATE != '\0';
}

const CollectedTexts& CollectedTexts::get()
{
    static const CollectedTexts collected = canBeCollected() ? collect() : CollectedTexts();
    return collected;
}

QStringList programSources()
{
    QStringList names;
    QFile project(QStringLiteral(VORN_SOURCES "/CMakeLists.txt"));
    EXPECT_TRUE(project.open(QIODevice::ReadOnly));
    static const QRegularExpression Library(QStringLiteral("^add_subdirectory\\((\\w+)\\)$"),
                                            QRegularExpression::MultilineOption);
    const QString description = QString::fromUtf8(project.readAll());
    for (auto libraries = Library.globalMatch(description); libraries.hasNext();) {
        QDirIterator files(QStringLiteral(VORN_SOURCES "/") + libraries.next().captured(1),
                           {QStringLiteral("*.h"), QStringLiteral("*.cpp")}, QDir::Files);
        while (files.hasNext()) {
            names.append(files.next());
        }
    }
    names.sort();
    QStringList sources;
    for (const QString& name : names) {
        QFile file(name);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        sources.append(QString::fromUtf8(file.readAll()));
    }
    return sources;
}

void expectCollected(const std::set<OwnedText>& asked)
{
    if (!CollectedTexts::canBeCollected()) {
        return;
    }
    EXPECT_FALSE(asked.empty());
    for (const OwnedText& text : asked) {
        EXPECT_TRUE(CollectedTexts::get().texts.contains(text))
            << "no translator gets \"" << qPrintable(text.text) << "\" of "
            << qPrintable(text.owner);
    }
}
