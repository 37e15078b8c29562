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

/// Calls @p work, whose errors don't name the file.
template <typename Work>
void namingTheFile(const QString& fileName, const Work& work)
{
    try {
        work();
    } catch (const std::exception& error) {
        throw cli::CommandError(
            tr("Can't save to %1: %2").arg(fileName, QString::fromUtf8(error.what())));
    }
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
    namingTheFile(fileName, [&] { hotpixel::checkListFile(fileName); });
}

void cli::saveOutputFile(const QString& fileName, std::span<const BadpixelEntry> entries)
{
    namingTheFile(fileName, [&] { hotpixel::writeListFile(fileName, entries); });
}
