// SPDX-License-Identifier: MIT
#include "cli/WriteCommand.h"

#include "cli/CameraChoice.h"
#include "cli/CameraSession.h"
#include "cli/Console.h"
#include "cli/UserListFile.h"
#include "cli/WriteStep.h"

#include <QJsonDocument>

QString WriteCommand::summary() const
{
    return tr("Write a list file into a camera.");
}

QString WriteCommand::description() const
{
    return tr("Replaces the user list in the EEPROM of CAMERA (a Dev number or a serial number) by "
              "the entries of the list file FILE, whose lines are x, y and the class 1.\n\n"
              "A list that does not fit is refused. The list that the camera holds is saved to a "
              "dated file before. The new one is read back and compared, and where they differ the "
              "old one is put back.");
}

QList<QCommandLineOption> WriteCommand::options(const std::vector<SdkSwitch>& /*switches*/) const
{
    return cli::writeOptions();
}

void WriteCommand::run(const QStringList& values, const QCommandLineParser& parser,
                       CommandContext& context) const
{
    cli::checkWriteOptions(parser, context);
    const std::vector<BadpixelEntry> entries = cli::readUserListFile(values[1]);

    CameraSession session(context, values[0]);
    if (!context.json) {
        context.console.result(cli::cameraText(session.description()));
    }
    const QJsonObject written = cli::writeUserEntries(session, entries, parser, context);
    if (context.json) {
        const QJsonObject result{
            {QStringLiteral("camera"), cli::cameraObject(session.description())},
            {QStringLiteral("file"), values[1]},
            {QStringLiteral("written"), written}};
        context.console.result(
            QString::fromUtf8(QJsonDocument(result).toJson(QJsonDocument::Compact)));
    }
}
