// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "camera/CameraSdk.h"
#include "camera/SdkExtras.h"
#include "res/Resources.h"
#include "support/Utf8Locale.h"

#include <QApplication>
#include <QIcon>

#include <memory>

/// The editor. No arguments are interpreted but Qt's own.
int main(int argc, char** argv)
{
    support::chooseUtf8Locale();
    const QApplication application(argc, argv);
    res::load();
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/res/Vorn.ico"))); // of boxes, too
    // Not quit(): it closes every window first, and with the docks that float there would be
    // nothing left of them in the layout that the window saves when it is destroyed.
    QApplication::setQuitOnLastWindowClosed(false);
    QObject::connect(&application, &QGuiApplication::lastWindowClosed, &application,
                     [] { QApplication::exit(0); });
    const std::unique_ptr<CameraSdk> sdk = createCameraSdk();
    MainWindow window(*sdk);
    window.show();
    const std::unique_ptr<QObject> sdkWindow = createSdkWindow(*sdk);
    return QApplication::exec();
}
