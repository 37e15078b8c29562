// SPDX-License-Identifier: MIT
#include "darkframes/TiffHeader.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <array>

namespace {

constexpr quint16 ClassicMagic = 42;
constexpr quint16 BigMagic = 43;
constexpr int MostDirectories = 64;

enum Tag : quint16 {
    NewSubfileType = 254,
    ImageWidth = 256,
    ImageLength = 257,
    BitsPerSample = 258,
    Compression = 259,
    Photometric = 262,
    StripOffsets = 273,
    SamplesPerPixel = 277,
    StripByteCounts = 279,
    TileOffsets = 324,
    TileByteCounts = 325,
    SampleFormat = 339,
    DngVersion = 50706
};

constexpr quint32 PhotometricMosaic = 32803;
constexpr quint32 PhotometricLinearRaw = 34892;

/// The values of one tag, where they stand in the file.
struct Values
{
    quint64 position = 0;
    quint64 count = 0;
    int size = 0; ///< bytes of each

    [[nodiscard]] bool isPresent() const { return count > 0; }
};

struct Directory
{
    quint64 next = 0;
    bool isThumbnail = false;
    Values offsets;
    Values byteCounts;
};

class TiffReader
{
public:
    explicit TiffReader(QIODevice& file)
        : m_file(file)
        , m_stream(&file)
        , m_fileSize(static_cast<quint64>(file.size()))
    {}

    /// @return where the first directory stands, 0 when this is no TIFF file.
    quint64 readStart()
    {
        m_file.seek(0);
        const QByteArray order = m_file.read(2);
        if (order != "II" && order != "MM") {
            return 0;
        }
        m_stream.setByteOrder(order == "II" ? QDataStream::LittleEndian : QDataStream::BigEndian);
        const auto magic = static_cast<quint16>(number(2));
        if (magic == ClassicMagic) {
            return number(4);
        }
        if (magic == BigMagic && number(2) == 8 && number(2) == 0) {
            m_big = true;
            return number(8);
        }
        return 0;
    }

    /// @param header gets what the directory says, unless it is null.
    std::optional<Directory> readDirectory(quint64 position, TiffHeader* header)
    {
        const quint64 entrySize = m_big ? 20 : 12;
        const quint64 countSize = m_big ? 8 : 2;
        if (!seek(position, countSize)) {
            return std::nullopt;
        }
        const quint64 count = number(static_cast<int>(countSize));
        if (count > 65535 || !seek(position + countSize, count * entrySize + offsetSize())) {
            return std::nullopt;
        }
        Directory directory;
        for (quint64 i = 0; i < count; ++i) {
            if (!seek(position + countSize + i * entrySize, entrySize)) {
                return std::nullopt;
            }
            if (!readEntry(directory, header) && header != nullptr) {
                header->complete = false;
            }
        }
        seek(position + countSize + count * entrySize, offsetSize());
        directory.next = number(static_cast<int>(offsetSize()));
        return directory;
    }

    void measureData(const Directory& directory, TiffHeader& header)
    {
        const Values& offsets = directory.offsets;
        const Values& byteCounts = directory.byteCounts;
        if (byteCounts.count != offsets.count) {
            // Some old programs do not write them, and readers guess.
            header.dataBytes = m_fileSize;
            return;
        }
        for (quint64 i = 0; header.complete && i < offsets.count; ++i) {
            const quint64 offset = valueAt(offsets, i);
            const quint64 bytes = valueAt(byteCounts, i);
            header.complete = offset <= m_fileSize && bytes <= m_fileSize - offset;
            header.dataBytes += bytes;
        }
    }

private:
    [[nodiscard]] quint64 offsetSize() const { return m_big ? 8 : 4; }

    bool seek(quint64 position, quint64 bytes)
    {
        return position <= m_fileSize && bytes <= m_fileSize - position &&
               m_file.seek(static_cast<qint64>(position));
    }

    quint64 number(int size)
    {
        switch (size) {
        case 1: {
            quint8 value = 0;
            m_stream >> value;
            return value;
        }
        case 2: {
            quint16 value = 0;
            m_stream >> value;
            return value;
        }
        case 4: {
            quint32 value = 0;
            m_stream >> value;
            return value;
        }
        default: {
            quint64 value = 0;
            m_stream >> value;
            return value;
        }
        }
    }

    quint64 valueAt(const Values& values, quint64 index)
    {
        m_file.seek(
            static_cast<qint64>(values.position + index * static_cast<quint64>(values.size)));
        return number(values.size);
    }

    /// @return false when the values of the entry do not lie in the file.
    bool readEntry(Directory& directory, TiffHeader* header)
    {
        // Sizes of the types of the standard from 0 on; 13 to 15 are not used, 16 has 64 bits.
        static constexpr std::array<int, 17> TypeSizes{0, 1, 1, 2, 4, 8, 1, 1, 2,
                                                       4, 8, 4, 8, 4, 0, 0, 8};
        const auto tag = static_cast<quint16>(number(2));
        const auto type = static_cast<std::size_t>(number(2));
        Values values;
        values.size = type < TypeSizes.size() ? TypeSizes[type] : 0;
        values.count = number(static_cast<int>(offsetSize()));
        if (values.size == 0) {
            return true;
        }
        if (values.count > m_fileSize) {
            return false;
        }
        values.position = static_cast<quint64>(m_file.pos());
        const quint64 bytes = values.count * static_cast<quint64>(values.size);
        if (bytes > offsetSize()) {
            values.position = number(static_cast<int>(offsetSize()));
            if (!seek(values.position, bytes)) {
                return false;
            }
        }
        if (values.isPresent()) {
            takeEntry(tag, values, directory, header);
        }
        return true;
    }

    void takeEntry(quint16 tag, const Values& values, Directory& directory, TiffHeader* header)
    {
        switch (tag) {
        case NewSubfileType:
            directory.isThumbnail = (valueAt(values, 0) & 1U) != 0;
            return;
        case StripOffsets:
        case TileOffsets:
            directory.offsets = values;
            return;
        case StripByteCounts:
        case TileByteCounts:
            directory.byteCounts = values;
            return;
        default:
            break;
        }
        if (header == nullptr) {
            return;
        }
        const quint64 value = valueAt(values, 0);
        const auto shortValue = static_cast<quint32>(std::min<quint64>(value, 0xFFFFFFFF));
        switch (tag) {
        case ImageWidth:
            header->width = static_cast<qint64>(shortValue);
            break;
        case ImageLength:
            header->height = static_cast<qint64>(shortValue);
            break;
        case BitsPerSample:
            header->bitsPerSample = shortValue;
            break;
        case Compression:
            header->compression = shortValue;
            break;
        case Photometric:
            header->photometric = shortValue;
            break;
        case SamplesPerPixel:
            header->samplesPerPixel = shortValue;
            break;
        case SampleFormat:
            header->sampleFormat = shortValue;
            break;
        case DngVersion:
            header->isDng = true;
            break;
        default:
            break;
        }
    }

    QIODevice& m_file;
    QDataStream m_stream;
    quint64 m_fileSize;
    bool m_big = false;
};

} // namespace

std::optional<TiffHeader> TiffHeader::read(QIODevice& file)
{
    TiffReader reader(file);
    TiffHeader header;
    const quint64 start = reader.readStart();
    const std::optional<Directory> first =
        start == 0 ? std::nullopt : reader.readDirectory(start, &header);
    if (!first) {
        return std::nullopt;
    }
    reader.measureData(*first, header);
    header.cameraRaw = header.isDng || header.photometric == PhotometricMosaic ||
                       header.photometric == PhotometricLinearRaw;
    quint64 next = first->next;
    for (int i = 1; next != 0 && i < MostDirectories; ++i) {
        const std::optional<Directory> directory = reader.readDirectory(next, nullptr);
        if (!directory) {
            break;
        }
        header.images += directory->isThumbnail ? 0 : 1;
        next = directory->next;
    }
    return header;
}
