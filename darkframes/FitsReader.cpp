// SPDX-License-Identifier: MIT
#include "darkframes/FitsReader.h"

#include "darkframes/FitsHeader.h"
#include "darkframes/FrameError.h"
#include "darkframes/FrameSize.h"
#include "darkframes/GzipFile.h"
#include "darkframes/RiceStream.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <array>
#include <cmath>
#include <fitsio.h>
#include <string>
#include <vector>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(FitsReader)
};

using darkframes::refuse;

constexpr double GreatestValue = 65535;

/// Of a compression; CFITSIO reads no further ones.
constexpr int MostParameters = 6;

QString badValues()
{
    return Text::tr("holds values that are not whole numbers from 0 to 65535");
}

/// An open FITS file, which it closes.
class FitsFile
{
public:
    explicit FitsFile(const QString& fileName)
        : m_fileName(fileName)
        , m_bytes(QFileInfo(fileName).size())
    {
        QFile content(fileName);
        if (content.open(QIODevice::ReadOnly)) {
            darkframes::checkFitsHeaders(fileName, content);
        }
        // The call for disk files, because the usual one takes much in a name for an instruction.
        const QByteArray path = QFile::encodeName(QFileInfo(fileName).absoluteFilePath());
        fits_open_diskfile(&m_file, path.constData(), READONLY, &m_status);
        check();
    }

    /// @param content of a FITS file, which has to outlive this
    FitsFile(const QString& fileName, QByteArray& content)
        : m_fileName(fileName)
        , m_bytes(content.size())
        , m_memory(content.data())
        , m_memoryBytes(static_cast<std::size_t>(content.size()))
    {
        QBuffer buffer(&content);
        buffer.open(QIODevice::ReadOnly);
        darkframes::checkFitsHeaders(fileName, buffer);
        fits_open_memfile(&m_file, "memory", READONLY, &m_memory, &m_memoryBytes, 0, nullptr,
                          &m_status);
        check();
    }

    ~FitsFile()
    {
        int status = 0;
        if (m_file != nullptr) {
            fits_close_file(m_file, &status);
        }
        fits_clear_errmsg();
    }

    Q_DISABLE_COPY_MOVE(FitsFile)

    Frame read()
    {
        findImage();
        checkSize();
        int type = 0;
        fits_get_img_equivtype(m_file, &type, &m_status);
        check();
        QImage image(static_cast<int>(m_axes[0]), static_cast<int>(m_axes[1]),
                     type == BYTE_IMG ? QImage::Format_Grayscale8 : QImage::Format_Grayscale16);
        if (image.isNull()) {
            refuse(m_fileName, Text::tr("not enough memory"));
        }
        switch (type) {
        case BYTE_IMG:
            readRows(image, TBYTE);
            break;
        case SHORT_IMG:
        case USHORT_IMG:
            readRows(image, TUSHORT);
            break;
        default:
            readNumbers(image);
            break;
        }
        return {std::move(image), mosaic()};
    }

private:
    void check()
    {
        if (m_status == 0) {
            return;
        }
        if (m_status == END_OF_FILE || m_status == READ_ERROR || m_status == SEEK_ERROR) {
            refuse(m_fileName, Text::tr("truncated"));
        }
        if (m_status == NUM_OVERFLOW) {
            refuse(m_fileName, badValues());
        }
        std::array<char, FLEN_STATUS> text{};
        fits_get_errstatus(m_status, text.data());
        refuse(m_fileName, Text::tr("damaged (%1)").arg(QString::fromLatin1(text.data())));
    }

    /// Goes to the first image with two axes.
    void findImage()
    {
        for (int number = 1;; ++number) {
            int kind = 0;
            if (number > 1 && fits_movabs_hdu(m_file, number, &kind, &m_status) != 0) {
                break;
            }
            fits_get_hdu_type(m_file, &kind, &m_status);
            check();
            if (kind != IMAGE_HDU) {
                continue;
            }
            int depth = 0;
            int axes = 0;
            fits_get_img_paramll(m_file, static_cast<int>(m_axes.size()), &depth, &axes,
                                 m_axes.data(), &m_status);
            check();
            if (axes == 2) {
                m_bytesPerPixel = static_cast<quint64>(std::abs(depth) / 8);
                return;
            }
        }
        if (m_status != END_OF_FILE) {
            check();
        }
        refuse(m_fileName, Text::tr("holds no image with two axes"));
    }

    void checkSize()
    {
        LONGLONG start = 0;
        LONGLONG end = 0;
        fits_get_hduaddrll(m_file, nullptr, &start, &end, &m_status);
        check();
        const auto rest = static_cast<quint64>(std::max<qint64>(0, m_bytes - start));
        const bool compressed = fits_is_compressed_image(m_file, &m_status) != 0;
        darkframes::checkClaimedSize(m_fileName, m_axes[0], m_axes[1],
                                     compressed ? 1 : m_bytesPerPixel, rest,
                                     compressed ? darkframes::CompressionRatio : 1);
        if (compressed) {
            checkTiles(rest);
        }
    }

    /// CFITSIO believes what a compressed image says about its table and about its tiles.
    void checkTiles(quint64 rest)
    {
        const LONGLONG rowBytes = number("NAXIS1", 0);
        const LONGLONG rows = number("NAXIS2", 0);
        const LONGLONG heapBytes = number("PCOUNT", 0);
        const auto most = static_cast<LONGLONG>(rest);
        if (rowBytes < 0 || rows < 0 || heapBytes < 0 || heapBytes > most ||
            (rowBytes > 0 && rows > (most - heapBytes) / rowBytes)) {
            refuse(m_fileName, Text::tr("truncated"));
        }
        const LONGLONG tileColumns = number("ZTILE1", m_axes[0]);
        const LONGLONG tileRows = number("ZTILE2", 1);
        const LONGLONG across = (m_axes[0] + tileColumns - 1) / tileColumns;
        const LONGLONG down = (m_axes[1] + tileRows - 1) / tileRows;
        if (rows != across * down) {
            refuse(m_fileName, Text::tr("damaged (tiles are missing)"));
        }
        for (const char* column :
             {"COMPRESSED_DATA", "GZIP_COMPRESSED_DATA", "UNCOMPRESSED_DATA"}) {
            checkTileData(column, rows, heapBytes, tileColumns * tileRows);
        }
    }

    /// @param column may be missing
    /// @param mostPixels of a tile; those at the edges have fewer
    void checkTileData(const char* column, LONGLONG rows, LONGLONG heapBytes, LONGLONG mostPixels)
    {
        int status = 0;
        int number = 0;
        std::string name(column);
        if (fits_get_colnum(m_file, CASEINSEN, name.data(), &number, &status) != 0) {
            return;
        }
        int type = 0;
        LONGLONG repeat = 0;
        LONGLONG valueBytes = 0;
        fits_get_coltypell(m_file, number, &type, &repeat, &valueBytes, &m_status);
        std::vector<LONGLONG> lengths(static_cast<std::size_t>(rows));
        std::vector<LONGLONG> starts(lengths.size());
        fits_read_descriptsll(m_file, number, 1, rows, lengths.data(), starts.data(), &m_status);
        check();
        for (std::size_t tile = 0; tile < lengths.size(); ++tile) {
            const LONGLONG length = lengths[tile];
            if (length < 0 || starts[tile] < 0 || starts[tile] > heapBytes || valueBytes < 1 ||
                length > (heapBytes - starts[tile]) / valueBytes) {
                refuseTile();
            }
            if (length > 0) {
                checkTile(name, number, static_cast<LONGLONG>(tile) + 1, length, mostPixels);
            }
        }
    }

    /// What CFITSIO does not compare with the memory that it took for a tile, or waits for in vain.
    void checkTile(const std::string& name, int column, LONGLONG row, LONGLONG length,
                   LONGLONG mostPixels)
    {
        const QString compression = text("ZCMPTYPE");
        if (name == "UNCOMPRESSED_DATA") {
            if (length > mostPixels) {
                refuseTile();
            }
        } else if (name == "GZIP_COMPRESSED_DATA" ||
                   compression.startsWith(QLatin1String("GZIP"))) {
            QByteArray packed(static_cast<qsizetype>(length), Qt::Uninitialized);
            readTile(TBYTE, column, row, packed);
            constexpr LONGLONG MostBytesPerPixel = 8;
            if (!darkframes::isWholeGzipStream(packed, mostPixels * MostBytesPerPixel)) {
                refuseTile();
            }
        } else if (compression.startsWith(QLatin1String("RICE"))) {
            std::vector<std::uint8_t> packed(static_cast<std::size_t>(length));
            readTile(TBYTE, column, row, packed);
            constexpr LONGLONG UsualBlock = 32;
            constexpr LONGLONG UsualBytes = 4;
            const LONGLONG block = parameter("BLOCKSIZE", UsualBlock);
            const LONGLONG bytes = parameter("BYTEPIX", UsualBytes);
            if (block < 1 || block > mostPixels + UsualBlock ||
                (bytes != 1 && bytes != 2 && bytes != UsualBytes) ||
                !darkframes::isWholeRiceStream(packed, pixelsOf(row), static_cast<int>(bytes),
                                               block)) {
                refuseTile();
            }
        } else if (compression.startsWith(QLatin1String("HCOMPRESS"))) {
            // A magic number of two bytes, columns and rows of four.
            std::array<quint8, 10> bytes{};
            if (length < static_cast<LONGLONG>(bytes.size())) {
                refuseTile();
            }
            readTile(TBYTE, column, row, bytes);
            const LONGLONG columns = qFromBigEndian<qint32>(&bytes[2]);
            const LONGLONG rows = qFromBigEndian<qint32>(&bytes[6]);
            if (columns < 1 || rows < 1 || columns > mostPixels / rows) {
                refuseTile();
            }
        } else if (compression.startsWith(QLatin1String("PLIO"))) {
            // The length of the list in words: in the fourth, or where that is not positive in the
            // fifth and the sixth, with the length of the header in the second.
            std::array<qint16, 6> words{};
            if (length < static_cast<LONGLONG>(words.size())) {
                refuseTile();
            }
            readTile(TSHORT, column, row, words);
            constexpr int HighBits = 15;
            const LONGLONG listed =
                words[3] > 0 ? words[3] : (LONGLONG{words[5]} << HighBits) + words[4];
            if (words[1] < 0 || listed < 0 || listed > length) {
                refuseTile();
            }
        }
    }

    /// How many pixels tile number @p row has, from 1; those at the right and below may be cut.
    LONGLONG pixelsOf(LONGLONG row)
    {
        const LONGLONG columns = number("ZTILE1", m_axes[0]);
        const LONGLONG rows = number("ZTILE2", 1);
        const LONGLONG across = (m_axes[0] + columns - 1) / columns;
        return std::min(columns, m_axes[0] - (row - 1) % across * columns) *
               std::min(rows, m_axes[1] - (row - 1) / across * rows);
    }

    /// A parameter of the compression.
    LONGLONG parameter(const char* name, LONGLONG fallback)
    {
        for (int index = 1; index <= MostParameters; ++index) {
            const QByteArray suffix = QByteArray::number(index);
            if (text(("ZNAME" + suffix).constData()) == QLatin1String(name)) {
                return number(("ZVAL" + suffix).constData(), fallback);
            }
        }
        return fallback;
    }

    [[noreturn]] void refuseTile() const { refuse(m_fileName, Text::tr("damaged (a tile)")); }

    /// As many values of a tile as there is room for, as they stand in the file.
    template <typename Values>
    void readTile(int type, int column, LONGLONG row, Values& values)
    {
        fits_read_col(m_file, type, column, row, 1, static_cast<LONGLONG>(values.size()), nullptr,
                      values.data(), nullptr, &m_status);
        check();
    }

    LONGLONG number(const char* key, LONGLONG fallback)
    {
        int status = 0;
        LONGLONG value = fallback;
        return fits_read_key(m_file, TLONGLONG, key, &value, nullptr, &status) == 0 ? value
                                                                                    : fallback;
    }

    QString text(const char* key)
    {
        int status = 0;
        std::array<char, FLEN_VALUE> value{};
        return fits_read_key(m_file, TSTRING, key, value.data(), nullptr, &status) == 0
                   ? QString::fromLatin1(value.data()).trimmed()
                   : QString();
    }

    /// @param undefined a value that the reader may put where the file has none
    void readRow(int y, int type, void* undefined, void* values)
    {
        std::array<LONGLONG, 2> first{1, LONGLONG{y} + 1};
        int anyUndefined = 0;
        fits_read_pixll(m_file, type, first.data(), m_axes[0], undefined, values, &anyUndefined,
                        &m_status);
        check();
        if (anyUndefined != 0) {
            refuse(m_fileName, Text::tr("holds undefined pixels"));
        }
    }

    void readRows(QImage& image, int type)
    {
        quint16 undefined = 1;
        quint8 undefinedByte = 1;
        void* value = type == TBYTE ? static_cast<void*>(&undefinedByte) : &undefined;
        for (int y = 0; y < image.height(); ++y) {
            readRow(y, type, value, image.scanLine(y));
        }
    }

    void readNumbers(QImage& image)
    {
        std::vector<double> numbers(static_cast<std::size_t>(image.width()));
        double undefined = -1;
        for (int y = 0; y < image.height(); ++y) {
            readRow(y, TDOUBLE, &undefined, numbers.data());
            auto* line = reinterpret_cast<quint16*>(image.scanLine(y));
            for (const double value : numbers) {
                // This way round it is true for what is no number, too.
                if (!(value >= 0 && value <= GreatestValue && value == std::floor(value))) {
                    refuse(m_fileName, badValues());
                }
                *line++ = static_cast<quint16>(value);
            }
        }
    }

    std::optional<Mosaic> mosaic()
    {
        QString colours = text("BAYERPAT");
        if (colours.isEmpty()) {
            return std::nullopt;
        }
        // Where the rows were turned over, programs do not agree on what the pattern refers to.
        const bool upsideDown = text("ROWORDER").startsWith(QLatin1String("BOTTOM"));
        if (!Mosaic::fromColours(colours) || upsideDown) {
            return Mosaic::bayer();
        }
        if (number("XBAYROFF", 0) % 2 != 0) {
            colours = QString(colours[1]) + colours[0] + colours[3] + colours[2];
        }
        if (number("YBAYROFF", 0) % 2 != 0) {
            colours = colours.mid(2) + colours.left(2);
        }
        return Mosaic::fromColours(colours);
    }

    QString m_fileName;
    qint64 m_bytes;
    void* m_memory = nullptr;
    std::size_t m_memoryBytes = 0;
    fitsfile* m_file = nullptr;
    int m_status = 0;
    std::array<LONGLONG, 2> m_axes{};
    quint64 m_bytesPerPixel = 1;
};

} // namespace

Frame darkframes::readFits(const QString& fileName)
{
    if (!isGzipFile(fileName)) {
        return FitsFile(fileName).read();
    }
    QByteArray content = unpackGzipFile(fileName);
    return FitsFile(fileName, content).read();
}

QString darkframes::fitsReaderName()
{
    return QStringLiteral("CFITSIO %1.%2.%3")
        .arg(CFITSIO_MAJOR)
        .arg(CFITSIO_MINOR)
        .arg(CFITSIO_MICRO);
}
