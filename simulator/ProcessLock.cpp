// SPDX-License-Identifier: MIT
#include "simulator/ProcessLock.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <utility>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

ProcessLock::ProcessLock(QString fileName)
    : m_fileName(std::move(fileName))
{}

ProcessLock::~ProcessLock()
{
    unlock();
}

ProcessLock::Result ProcessLock::tryLock(int patienceMsec)
{
    constexpr int PauseMsec = 10;
    Result result = tryLockOnce();
    for (int waited = 0; result == Result::Held && waited < patienceMsec; waited += PauseMsec) {
        QThread::msleep(PauseMsec);
        result = tryLockOnce();
    }
    return result;
}

#ifdef Q_OS_WIN

ProcessLock::Result ProcessLock::tryLockOnce()
{
    if (m_file != NoFile) {
        return Result::Held;
    }
    const std::wstring name = QDir::toNativeSeparators(m_fileName).toStdWString();
    constexpr DWORD NotShared = 0;
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, NotShared, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return GetLastError() == ERROR_SHARING_VIOLATION ? Result::Held : Result::Impossible;
    }
    m_file = reinterpret_cast<std::intptr_t>(file);
    return Result::Taken;
}

void ProcessLock::unlock()
{
    if (m_file != NoFile) {
        CloseHandle(reinterpret_cast<HANDLE>(m_file));
        m_file = NoFile;
    }
}

#else

ProcessLock::Result ProcessLock::tryLockOnce()
{
    if (m_file != NoFile) {
        return Result::Held;
    }
    const int file =
        open(QFile::encodeName(m_fileName).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0) {
        return Result::Impossible;
    }
    if (flock(file, LOCK_EX | LOCK_NB) != 0) {
        const bool held = errno == EWOULDBLOCK;
        close(file);
        return held ? Result::Held : Result::Impossible;
    }
    m_file = file;
    return Result::Taken;
}

void ProcessLock::unlock()
{
    if (m_file != NoFile) {
        close(static_cast<int>(m_file));
        m_file = NoFile;
    }
}

#endif
