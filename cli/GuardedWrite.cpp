// SPDX-License-Identifier: MIT
#include "cli/GuardedWrite.h"

#include "cli/CommandError.h"
#include "cli/ListBackup.h"

#include <stdexcept>
#include <utility>

namespace {

constexpr int PutBackAttempts = 3;

} // namespace

GuardedWrite::GuardedWrite(CameraLists lists, QString serNo, QString backupFolder)
    : m_lists(lists)
    , m_serNo(std::move(serNo))
    , m_backupFolder(std::move(backupFolder))
{}

void GuardedWrite::check(std::span<const BadpixelEntry> entries)
{
    m_capacity = m_lists.maxUserEntries();
    if (entries.size() > static_cast<std::size_t>(m_capacity)) {
        throw cli::CommandError(
            tr("The list has %1 user entries, but the camera can store %2 at most.")
                .arg(entries.size())
                .arg(m_capacity));
    }
    m_oldEntries = m_lists.userEntries();
    m_newEntries.assign(entries.begin(), entries.end());
}

QString GuardedWrite::write()
{
    QString backup =
        cli::saveBackup(m_backupFolder, m_serNo, QDateTime::currentDateTime(), m_oldEntries);

    const QString failure = writeAndCompare();
    if (failure.isEmpty()) {
        return backup;
    }
    const QString putBackFailure = putBack();
    throw cli::CommandError(
        putBackFailure.isEmpty()
            ? tr("%1 The camera holds the old list, which is also in %2.").arg(failure, backup)
            : tr("%1 The old list could not be put back (%2); it is in %3.")
                  .arg(failure, putBackFailure, backup));
}

QString GuardedWrite::writeAndCompare() const
{
    try {
        m_lists.setUserEntries(m_newEntries);
        if (m_lists.userEntries() != m_newEntries) {
            return tr("The camera did not store the list as it was written.");
        }
    } catch (const std::runtime_error& error) {
        return QString::fromUtf8(error.what());
    }
    return {};
}

QString GuardedWrite::putBack() const
{
    QString failure;
    for (int attempt = 0; attempt < PutBackAttempts; ++attempt) {
        try {
            // A write that was refused as a whole needs no second one.
            if (m_lists.userEntries() == m_oldEntries) {
                return {};
            }
        } catch (const std::runtime_error& error) {
            failure = QString::fromUtf8(error.what());
        }
        try {
            m_lists.setUserEntries(m_oldEntries);
            if (m_lists.userEntries() == m_oldEntries) {
                return {};
            }
            failure = tr("the camera did not store it");
        } catch (const std::runtime_error& error) {
            failure = QString::fromUtf8(error.what());
        }
    }
    return failure;
}
