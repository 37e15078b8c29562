#include "camera/CameraSdk.h"
#include "camera/SdkExtras.h"
#include "cli/Companion.h"
#include "cli/Console.h"
#include "cli/Interruption.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(VORN_VERSION));
    Interruption interruption;
    Console console(stdin, stdout, stderr);
    Companion companion(createCameraSdk, sdkSwitches(), console, interruption);
    return companion.run(QCoreApplication::arguments());
}
