// SPDX-License-Identifier: MIT
#include "support/Utf8Locale.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <clocale>
#include <langinfo.h>
#include <map>

namespace {

/// With an environment whose locale is what the test says; everything is back in its place
/// afterwards.
class Utf8Locale : public testing::Test
{
protected:
    Utf8Locale()
    {
        for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
            m_before[name] = qgetenv(name);
            qunsetenv(name);
        }
    }

    ~Utf8Locale() override
    {
        for (const auto& [name, value] : m_before) {
            value.isNull() ? qunsetenv(name) : qputenv(name, value);
        }
        std::setlocale(LC_ALL, "");
    }

private:
    std::map<const char*, QByteArray> m_before;
};

TEST_F(Utf8Locale, IsChosenWhereTheEnvironmentNamesNone)
{
    support::chooseUtf8Locale();
    EXPECT_STREQ(nl_langinfo(CODESET), "UTF-8");
    EXPECT_EQ(qgetenv("LC_CTYPE"), "C.UTF-8");
    EXPECT_FALSE(qEnvironmentVariableIsSet("LC_ALL"));
}

TEST_F(Utf8Locale, CountsForMoreThanTheVariableThatCountsMost)
{
    qputenv("LC_ALL", "C");
    support::chooseUtf8Locale();
    EXPECT_STREQ(nl_langinfo(CODESET), "UTF-8");
    EXPECT_EQ(qgetenv("LC_ALL"), "C.UTF-8");
    EXPECT_FALSE(qEnvironmentVariableIsSet("LC_CTYPE"));
}

TEST_F(Utf8Locale, StaysWhereTheEnvironmentNamesOne)
{
    qputenv("LANG", "C.UTF-8");
    support::chooseUtf8Locale();
    EXPECT_STREQ(nl_langinfo(CODESET), "UTF-8");
    EXPECT_EQ(qgetenv("LANG"), "C.UTF-8");
    EXPECT_FALSE(qEnvironmentVariableIsSet("LC_ALL"));
    EXPECT_FALSE(qEnvironmentVariableIsSet("LC_CTYPE"));
}

TEST_F(Utf8Locale, IsChosenWhereTheNamedOneIsNotInstalled)
{
    qputenv("LANG", "xx_YY.UTF-8");
    support::chooseUtf8Locale();
    EXPECT_STREQ(nl_langinfo(CODESET), "UTF-8");
    EXPECT_EQ(qgetenv("LC_CTYPE"), "C.UTF-8");
    EXPECT_EQ(qgetenv("LANG"), "xx_YY.UTF-8");
}

} // namespace
