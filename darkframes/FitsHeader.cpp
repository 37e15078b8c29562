// SPDX-License-Identifier: MIT
#include "darkframes/FitsHeader.h"

#include "darkframes/FrameError.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QHash>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(FitsHeader)
};

using darkframes::refuse;

constexpr qint64 CardBytes = 80;
constexpr qint64 BlockBytes = 2880;
constexpr qsizetype NameBytes = 8;

constexpr qint64 MostAxes = 999;
constexpr qint64 MostCompressedAxes = 6;
constexpr qint64 MostAxisLength = std::numeric_limits<qint32>::max();
constexpr qint64 MostColumns = 999;
constexpr qint64 MostDitherSeed = 10000;
constexpr qint64 MostBytes = std::numeric_limits<qint64>::max();

/// Whether @p name is one of @p names, or one of @p numbered with a number behind it.
bool isOneOf(const QByteArray& name, const QByteArrayList& names, const QByteArrayList& numbered)
{
    return names.contains(name) ||
           std::any_of(numbered.begin(), numbered.end(), [&](const QByteArray& prefix) {
               bool isNumber = false;
               return name.startsWith(prefix) && name.mid(prefix.size()).toUInt(&isNumber) > 0 &&
                      isNumber;
           });
}

/// The keywords by which CFITSIO measures.
bool isMeasure(const QByteArray& name)
{
    static const QByteArrayList names{"BITPIX", "NAXIS",   "PCOUNT", "GCOUNT",  "TFIELDS",
                                      "THEAP",  "ZBITPIX", "ZNAXIS", "ZDITHER0"};
    static const QByteArrayList numbered{"NAXIS", "ZNAXIS", "ZTILE"};
    return isOneOf(name, names, numbered);
}

/// The further keywords that it reads as numbers; where one is long and none, it ends the program.
bool isFactor(const QByteArray& name)
{
    static const QByteArrayList names{"BLANK",    "BSCALE",  "BZERO",  "EXTVER",
                                      "EXTLEVEL", "ZBLANK",  "ZSCALE", "ZZERO",
                                      "ZPCOUNT",  "ZGCOUNT", "ZTHEAP"};
    static const QByteArrayList numbered{"TSCAL", "TZERO", "TNULL", "TBCOL", "ZVAL"};
    return isOneOf(name, names, numbered);
}

/// What stands behind the "=" of a card, without its comment.
QByteArray valueOf(const QByteArray& card)
{
    if (card.mid(NameBytes, 2) != "= ") {
        return {};
    }
    return card.mid(NameBytes + 2).split('/').front().trimmed();
}

/// One header, and how many bytes of data belong to it.
class FitsHeader
{
public:
    /// @param content at the header's first byte; behind its last block afterwards
    /// @returns none at the end of the file, or where what follows is no header
    static std::optional<FitsHeader> read(const QString& fileName, QIODevice& content)
    {
        FitsHeader header(fileName);
        for (bool isFirst = true;; isFirst = false) {
            const QByteArray block = content.read(BlockBytes);
            if (isFirst && !block.startsWith("SIMPLE ") && !block.startsWith("XTENSION")) {
                return std::nullopt;
            }
            if (block.size() < BlockBytes) {
                refuse(fileName, Text::tr("truncated"));
            }
            for (qint64 start = 0; start < BlockBytes; start += CardBytes) {
                const QByteArray card = block.mid(start, CardBytes);
                const QByteArray name = card.left(NameBytes).trimmed().toUpper();
                if (name == "END") {
                    header.check();
                    return header;
                }
                header.add(name, card);
            }
        }
    }

    bool isCompressed() const { return m_isCompressed; }

    bool isImageWithTwoAxes() const
    {
        return m_isCompressed ? number("ZNAXIS", 0, MostCompressedAxes, 0) == 2
                              : !m_isTable && number("NAXIS", 0, MostAxes, 0) == 2;
    }

    /// Without the padding to whole blocks; no more than MostBytes.
    qint64 dataBytes() const
    {
        const qint64 axes = number("NAXIS", 0, MostAxes, 0);
        if (axes == 0) {
            return 0;
        }
        // Random groups have a first axis of length 0 that does not count.
        const bool isGroups = axes > 1 && axis("NAXIS", 1, 0) == 0;
        qint64 values = 1;
        for (qint64 number = isGroups ? 2 : 1; number <= axes; ++number) {
            values = product(values, axis("NAXIS", number, 0));
        }
        const qint64 parameters = number("PCOUNT", 0, MostBytes / 2, 0);
        values = values > MostBytes / 2 ? MostBytes : values + parameters;
        const qint64 groups = number("GCOUNT", 0, MostAxisLength, 1);
        return product(product(values, groups), std::abs(number("BITPIX", -64, 64, 8)) / 8);
    }

private:
    explicit FitsHeader(const QString& fileName)
        : m_fileName(fileName)
    {}

    void add(const QByteArray& name, const QByteArray& card)
    {
        const auto isText = [](char letter) { return letter >= ' ' && letter <= '~'; };
        if (!std::all_of(card.begin(), card.end(), isText)) {
            refuse(m_fileName, Text::tr("damaged (a header that is no text)"));
        }
        m_names.append(name);
        const QByteArray value = valueOf(card);
        if (name == "XTENSION") {
            m_isTable = !value.startsWith("'IMAGE");
        } else if (name == "ZIMAGE") {
            m_isCompressed = m_isCompressed || value.toUpper() == "T";
        } else if (isMeasure(name)) {
            // CFITSIO takes one of the two, and which depends on where it began to look.
            if (m_values.contains(name)) {
                refuse(m_fileName, Text::tr("damaged (%1 stands twice)").arg(textOf(name)));
            }
            m_values.insert(name, value);
        } else if (isFactor(name)) {
            bool isNumber = false;
            const double factor = QByteArray(value).replace('D', 'E').toDouble(&isNumber);
            if (!isNumber) {
                refuse(m_fileName, Text::tr("damaged (%1 is no number)").arg(textOf(name)));
            }
            if (name.startsWith("ZVAL") && !(factor >= 1)) {
                m_smallParameter = name;
            }
        } else if (name == "ZCMPTYPE") {
            m_isRice = m_isRice || value.toUpper().startsWith("'RICE");
        }
    }

    void check() const
    {
        QByteArrayList needed{"BITPIX", "NAXIS"};
        const qint64 axes = number("NAXIS", 0, MostAxes, 0);
        for (qint64 index = 1; index <= axes; ++index) {
            needed += "NAXIS" + QByteArray::number(index);
        }
        if (m_isTable) {
            needed += {"PCOUNT", "GCOUNT", "TFIELDS"};
        }
        for (qsizetype index = 0; index < needed.size(); ++index) {
            if (m_names.value(index + 1) != needed[index]) {
                refuse(m_fileName,
                       Text::tr("damaged (%1 is not in its place)").arg(textOf(needed[index])));
            }
        }
        (void)dataBytes();
        (void)number("TFIELDS", 0, MostColumns, 0);
        (void)number("THEAP", 0, dataBytes(), 0);
        if (m_isCompressed) {
            checkTiles();
        }
    }

    void checkTiles() const
    {
        const qint64 axes = number("ZNAXIS", 1, MostCompressedAxes, 0);
        qint64 pixels = 1;
        for (qint64 index = 1; index <= axes; ++index) {
            const qint64 length = axis("ZNAXIS", index, 1);
            const QByteArray tile = "ZTILE" + QByteArray::number(index);
            pixels = product(pixels, number(tile, 1, length, index == 1 ? length : 1));
        }
        if (pixels > MostAxisLength) {
            refuse(m_fileName, Text::tr("damaged (%1 is out of range)").arg(textOf("ZTILE1")));
        }
        (void)number("ZDITHER0", 1, MostDitherSeed, 1);
        // The parameters of this compression are sizes, which CFITSIO divides by.
        if (m_isRice && !m_smallParameter.isEmpty()) {
            refuse(m_fileName,
                   Text::tr("damaged (%1 is out of range)").arg(textOf(m_smallParameter)));
        }
    }

    qint64 axis(const char* name, qint64 index, qint64 least) const
    {
        return number(name + QByteArray::number(index), least, MostAxisLength, least);
    }

    /// @param fallback where the header lacks the keyword
    qint64 number(const QByteArray& name, qint64 least, qint64 most, qint64 fallback) const
    {
        const auto found = m_values.constFind(name);
        if (found == m_values.cend()) {
            return fallback;
        }
        bool isNumber = false;
        const qint64 value = found->toLongLong(&isNumber);
        if (!isNumber) {
            refuse(m_fileName, Text::tr("damaged (%1 is no number)").arg(textOf(name)));
        }
        if (value < least || value > most) {
            refuse(m_fileName, Text::tr("damaged (%1 is out of range)").arg(textOf(name)));
        }
        return value;
    }

    static QString textOf(const QByteArray& name) { return QString::fromLatin1(name); }

    /// Of two numbers that are not negative; MostBytes where it is more than that.
    static qint64 product(qint64 a, qint64 b)
    {
        return a != 0 && b > MostBytes / a ? MostBytes : a * b;
    }

    QString m_fileName;
    QByteArrayList m_names;                 ///< of all cards
    QHash<QByteArray, QByteArray> m_values; ///< of the measures
    bool m_isTable = false;
    bool m_isCompressed = false;
    bool m_isRice = false;
    QByteArray m_smallParameter; ///< the name of one below 1, or empty
};

} // namespace

void darkframes::checkFitsHeaders(const QString& fileName, QIODevice& content)
{
    while (const auto header = FitsHeader::read(fileName, content)) {
        const qint64 rest = content.size() - content.pos();
        const bool isWanted = header->isImageWithTwoAxes();
        // Of an image that is not compressed the reader compares the size itself, and says it.
        if (!(isWanted && !header->isCompressed()) && header->dataBytes() > rest) {
            refuse(fileName, Text::tr("truncated"));
        }
        if (isWanted) {
            return;
        }
        const qint64 blocks = (header->dataBytes() + BlockBytes - 1) / BlockBytes;
        content.seek(content.pos() + std::min(rest, blocks * BlockBytes));
    }
}
