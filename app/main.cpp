// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "camera/CameraSdk.h"
#include "camera/SdkExtras.h"
#include "support/Utf8Locale.h"

#include <QApplication>

#include <memory>

/// The editor. No arguments are interpreted but Qt's own.
int main(int argc, char** argv)
{
    support::chooseUtf8Locale();
    const QApplication application(argc, argv);
    const std::unique_ptr<CameraSdk> sdk = createCameraSdk();
    const std::unique_ptr<QObject> sdkWindow = createSdkWindow(*sdk);
    MainWindow window(*sdk);
    window.show();
    return QApplication::exec();
}
