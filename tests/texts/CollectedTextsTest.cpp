// SPDX-License-Identifier: MIT
#include "tests/texts/CollectedTexts.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

class TextsForATranslator : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!CollectedTexts::canBeCollected()) {
            GTEST_SKIP() << "lupdate is not installed";
        }
    }

    /// The names that @p pattern captures in the sources.
    static std::set<QString> namesInSources(const char* pattern)
    {
        const QRegularExpression expression(QString::fromLatin1(pattern));
        std::set<QString> names;
        for (const QString& source : programSources()) {
            for (auto matches = expression.globalMatch(source); matches.hasNext();) {
                names.insert(matches.next().captured(1));
            }
        }
        return names;
    }

    static std::set<QString> owners()
    {
        std::set<QString> owners;
        for (const OwnedText& text : CollectedTexts::get().texts) {
            owners.insert(text.owner);
        }
        return owners;
    }
};

TEST_F(TextsForATranslator, AreCollectedWithoutAComplaint)
{
    EXPECT_EQ(CollectedTexts::get().complaints.toStdString(), std::string());
}

TEST_F(TextsForATranslator, AreThereOfEachClassThatHasSome)
{
    std::set<QString> expected = namesInSources(R"(Q_DECLARE_TR_FUNCTIONS\((\w+)\))");
    expected.merge(namesInSources(R"(QT_TRANSLATE_NOOP\("(\w+)\")"));
    EXPECT_GT(expected.size(), 30U);
    const std::set<QString> found = owners();
    for (const QString& owner : expected) {
        EXPECT_TRUE(found.contains(owner)) << qPrintable(owner);
    }
}

TEST_F(TextsForATranslator, BelongToAClassOfTheProgram)
{
    std::set<QString> classes = namesInSources(R"(Q_DECLARE_TR_FUNCTIONS\((\w+)\))");
    classes.merge(namesInSources(R"(class (\w+)[^;{]*\{\s*Q_OBJECT)"));
    for (const QString& owner : owners()) {
        EXPECT_TRUE(classes.contains(owner)) << qPrintable(owner);
    }
}

} // namespace

TEST(TextsOfTheProgram, AreAskedForByTheirOwnClassOnly)
{
    const QRegularExpression byAnother(QStringLiteral(
        "QObject::tr\\(|QCoreApplication::tr|[^_:A-Za-z]translate\\(|::translate\\("));
    for (const QString& source : programSources()) {
        const QRegularExpressionMatch match = byAnother.match(source);
        EXPECT_FALSE(match.hasMatch())
            << qPrintable(source.mid(std::max<qsizetype>(0, match.capturedStart() - 80), 160));
    }
}
