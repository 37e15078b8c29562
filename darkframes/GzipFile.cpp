// SPDX-License-Identifier: MIT
#include "darkframes/GzipFile.h"

#include "darkframes/FrameError.h"
#include "darkframes/FrameSize.h"

#include <QCoreApplication>
#include <QFile>
#include <QtEndian>

#include <zlib.h>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(GzipFile)
};

constexpr qint64 LeastBytes = 18; ///< of header and trailer

/// A running inflation, which it ends.
class Inflation
{
public:
    explicit Inflation(QByteArray& content)
    {
        m_stream.next_out = reinterpret_cast<Bytef*>(content.data());
        m_stream.avail_out = static_cast<uInt>(content.size());
        constexpr int GzipWithLargestWindow = 16 + MAX_WBITS;
        m_result = inflateInit2(&m_stream, GzipWithLargestWindow);
    }
    ~Inflation() { inflateEnd(&m_stream); }
    Q_DISABLE_COPY_MOVE(Inflation)

    void feed(QByteArray packed)
    {
        m_stream.next_in = reinterpret_cast<Bytef*>(packed.data());
        m_stream.avail_in = static_cast<uInt>(packed.size());
        if (m_result == Z_OK) {
            m_result = inflate(&m_stream, Z_NO_FLUSH);
        }
    }
    [[nodiscard]] bool goesOn() const { return m_result == Z_OK; }
    [[nodiscard]] bool hasEnded() const { return m_result == Z_STREAM_END; }
    /// Whether it has also filled the memory that it was given.
    [[nodiscard]] bool isComplete() const { return hasEnded() && m_stream.avail_out == 0; }

private:
    z_stream m_stream{};
    int m_result;
};

} // namespace

bool darkframes::isGzipFile(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) && file.read(2) == QByteArrayLiteral("\x1f\x8b");
}

QByteArray darkframes::unpackGzipFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        refuse(fileName, file.errorString());
    }
    if (file.size() < LeastBytes || !file.seek(file.size() - 4)) {
        refuse(fileName, Text::tr("truncated"));
    }
    const QByteArray trailer = file.read(4);
    const auto bytes = trailer.size() == 4 ? qFromLittleEndian<quint32>(trailer.constData()) : 0U;
    if (bytes > static_cast<quint64>(file.size()) * DeflateRatio) {
        refuse(fileName, Text::tr("truncated or damaged"));
    }
    QByteArray content(static_cast<qsizetype>(bytes), Qt::Uninitialized);
    Inflation inflation(content);
    constexpr qint64 PieceBytes = 1 << 18;
    file.seek(0);
    while (inflation.goesOn() && !file.atEnd()) {
        inflation.feed(file.read(PieceBytes));
    }
    if (!inflation.isComplete()) {
        refuse(fileName, Text::tr("truncated or damaged"));
    }
    return content;
}

bool darkframes::isWholeGzipStream(const QByteArray& packed, qsizetype mostBytes)
{
    QByteArray content(mostBytes, Qt::Uninitialized);
    Inflation inflation(content);
    inflation.feed(packed);
    return inflation.hasEnded();
}
