// SPDX-License-Identifier: MIT
#include "cli/ListOutput.h"

#include "cli/CommandError.h"
#include "hotpixel/BadpixelListFile.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("ListOutput", text);
}

} // namespace

void cli::checkOutputFile(const QString& fileName)
{
    const QFileInfo file(fileName);
    if (fileName.isEmpty()) {
        throw UsageError(tr("The name of the file to be saved is empty."));
    }
    if (file.isDir()) {
        throw CommandError(tr("Can't save to %1: it is a folder.").arg(fileName));
    }
    if (!QFileInfo(file.absolutePath()).isDir()) {
        throw CommandError(tr("Can't save to %1: there is no such folder.").arg(fileName));
    }
}

void cli::saveOutputFile(const QString& fileName, std::span<const BadpixelEntry> entries)
{
    try {
        hotpixel::writeListFile(fileName, entries);
    } catch (const std::exception& error) {
        throw CommandError(
            tr("Can't save to %1: %2").arg(fileName, QString::fromUtf8(error.what())));
    }
}
