// SPDX-License-Identifier: MIT
#include "camera/CameraSdk.h"
#include "camera/SdkExtras.h"
#include "cli/Companion.h"
#include "cli/Console.h"
#include "cli/Interruption.h"
#include "support/Utf8Locale.h"

#include <QCoreApplication>

#include <cstdio>

#ifdef Q_OS_WIN
#include <windows.h>

namespace {

/// Makes the Windows console take what is written to it for UTF-8, until the program ends.
class Utf8Output
{
public:
    Utf8Output() { SetConsoleOutputCP(CP_UTF8); }
    ~Utf8Output() { SetConsoleOutputCP(m_before); }
    Utf8Output(const Utf8Output&) = delete;
    Utf8Output& operator=(const Utf8Output&) = delete;

private:
    const UINT m_before = GetConsoleOutputCP();
};

} // namespace
#endif

int main(int argc, char** argv)
{
#ifdef Q_OS_WIN
    const Utf8Output utf8;
#endif
    support::chooseUtf8Locale();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(VORN_VERSION));
    Interruption interruption;
    Console console(stdin, stdout, stderr);
    Companion companion(createCameraSdk, sdkSwitches(), console, interruption);
    return companion.run(QCoreApplication::arguments());
}
