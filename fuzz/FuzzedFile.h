// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace fuzz {

/// Ends the program, which the fuzzer takes for a crash, when @p holds is false.
inline void expect(bool holds, const char* text)
{
    if (!holds) {
        std::fprintf(stderr, "What must hold does not: %s\n", text);
        std::abort();
    }
}

/// The bytes that the fuzzer made, without a copy.
inline QByteArray bytes(const std::uint8_t* data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char*>(data),
                                   static_cast<qsizetype>(size));
}

/// A file with the bytes that the fuzzer made, in a folder of this process. Each has a name of its
/// own, because some readers remember by the name what they have read; it is removed with the
/// object.
class FuzzedFile
{
public:
    explicit FuzzedFile(const QByteArray& content)
    {
        static const QTemporaryDir folder;
        static quint64 number = 0;
        m_name = folder.filePath(QString::number(++number));
        QFile file(m_name);
        expect(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
               "the temporary folder takes a file");
    }
    ~FuzzedFile() { QFile::remove(m_name); }
    Q_DISABLE_COPY_MOVE(FuzzedFile)

    [[nodiscard]] const QString& name() const { return m_name; }

private:
    QString m_name;
};

} // namespace fuzz
