// SPDX-License-Identifier: MIT
#include "support/Utf8Locale.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

/// Runs the tests without a display and in a home of their own, so that no test sees or leaves
/// settings, EEPROM files or locks of the person who runs it.
int main(int argc, char** argv)
{
    support::chooseUtf8Locale();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QTemporaryDir home;
    if (!home.isValid()) {
        std::fprintf(stderr, "Can't make a temporary home: %s\n", qPrintable(home.errorString()));
        return 1;
    }
    for (const char* variable :
         {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"}) {
        qputenv(variable, home.path().toLocal8Bit());
    }

    ::testing::InitGoogleMock(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
