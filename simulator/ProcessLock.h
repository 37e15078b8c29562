// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

/// A lock between programs, and between objects of one program, on a file that stays where it is.
///
/// The system itself keeps the lock and gives it back when its holder ends, however that happens
/// and at whatever moment; what is in the file counts for nothing. (QLockFile goes by the
/// process number in it, which may be another's by the time that a killed holder's file is found.)
/// Without locking of its own: one thread at a time.
class ProcessLock
{
public:
    enum class Result {
        Taken,     ///< this object holds the lock now
        Held,      ///< somebody else holds it
        Impossible ///< there can be no such file
    };

    explicit ProcessLock(QString fileName);

    /// Gives the lock back.
    ~ProcessLock();

    ProcessLock(const ProcessLock&) = delete;
    ProcessLock& operator=(const ProcessLock&) = delete;

    [[nodiscard]] const QString& fileName() const { return m_fileName; }

    /// Takes the lock; waits up to @p patienceMsec for somebody else to give it back.
    [[nodiscard]] Result tryLock(int patienceMsec);

    /// Gives the lock back; nothing happens when this object does not hold it.
    void unlock();

private:
    [[nodiscard]] Result tryLockOnce();

    static constexpr std::intptr_t NoFile = -1;

    QString m_fileName;
    std::intptr_t m_file = NoFile; ///< a descriptor, or a HANDLE on Windows
};
