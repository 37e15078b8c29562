// SPDX-License-Identifier: MIT
#include "darkframes/PgmReader.h"

#include "darkframes/FrameError.h"
#include "darkframes/FrameSize.h"

#include <QCoreApplication>
#include <QFile>
#include <QtEndian>

#include <cctype>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(PgmReader)
};

using darkframes::refuse;

constexpr qint64 GreatestNumber = 100'000'000;

/// Reads the numbers of the header, and of the whole file where they are text.
class PgmText
{
public:
    explicit PgmText(QFile& file)
        : m_file(file)
    {}

    /// The next number; -1 when there is none. Takes the one character behind it, too.
    qint64 number()
    {
        char c = ' ';
        while (isSpace(c) || c == '#') {
            if (c == '#') {
                do {
                    if (!m_file.getChar(&c)) {
                        return -1;
                    }
                } while (c != '\n' && c != '\r');
            }
            if (!m_file.getChar(&c)) {
                return -1;
            }
        }
        qint64 value = -1;
        while (c >= '0' && c <= '9') {
            value = (value < 0 ? 0 : value) * 10 + (c - '0');
            if (value > GreatestNumber) {
                return -1;
            }
            if (!m_file.getChar(&c)) {
                return value;
            }
        }
        return isSpace(c) || c == '#' ? value : -1;
    }

private:
    static bool isSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

    QFile& m_file;
};

[[noreturn]] void refuseValue(const QString& fileName)
{
    refuse(fileName, Text::tr("a value is greater than the greatest one that it names"));
}

void readText(QFile& file, QImage& image, qint64 greatest)
{
    PgmText text(file);
    const bool wide = image.format() == QImage::Format_Grayscale16;
    for (int y = 0; y < image.height(); ++y) {
        uchar* line = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            const qint64 value = text.number();
            if (value < 0) {
                refuse(file.fileName(), Text::tr("truncated or damaged"));
            }
            if (value > greatest) {
                refuseValue(file.fileName());
            }
            if (wide) {
                reinterpret_cast<quint16*>(line)[x] = static_cast<quint16>(value);
            } else {
                line[x] = static_cast<uchar>(value);
            }
        }
    }
}

void readBytes(QFile& file, QImage& image, qint64 greatest)
{
    const bool wide = image.format() == QImage::Format_Grayscale16;
    const qint64 bytes = qint64{image.width()} * (wide ? 2 : 1);
    for (int y = 0; y < image.height(); ++y) {
        uchar* line = image.scanLine(y);
        if (file.read(reinterpret_cast<char*>(line), bytes) != bytes) {
            refuse(file.fileName(), Text::tr("truncated"));
        }
        quint16 most = 0;
        if (wide) {
            auto* values = reinterpret_cast<quint16*>(line);
            for (int x = 0; x < image.width(); ++x) {
                values[x] = qFromBigEndian(values[x]);
                most = std::max(most, values[x]);
            }
        } else {
            for (int x = 0; x < image.width(); ++x) {
                most = std::max<quint16>(most, line[x]);
            }
        }
        if (most > greatest) {
            refuseValue(file.fileName());
        }
    }
}

} // namespace

Frame darkframes::readPgm(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        refuse(fileName, file.errorString());
    }
    const QByteArray kind = file.read(2);
    const bool asBytes = kind == "P5";
    if (!asBytes && kind != "P2") {
        refuse(fileName, Text::tr("not a PGM file"));
    }
    PgmText text(file);
    const qint64 width = text.number();
    const qint64 height = text.number();
    const qint64 greatest = text.number();
    if (width < 0 || height < 0 || greatest < 1 || greatest > 65535) {
        refuse(fileName, Text::tr("damaged: its header says no size and depth of an image"));
    }
    const bool wide = greatest > 255;
    const auto rest = static_cast<quint64>(file.size() - file.pos());
    // As text, a value is at least one digit and one space, but for the last.
    checkClaimedSize(fileName, width, height, asBytes && wide ? 2 : 1,
                     asBytes ? rest : rest / 2 + 1, 1);
    QImage image(static_cast<int>(width), static_cast<int>(height),
                 wide ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8);
    if (image.isNull()) {
        refuse(fileName, Text::tr("not enough memory"));
    }
    if (asBytes) {
        readBytes(file, image, greatest);
    } else {
        readText(file, image, greatest);
    }
    return {std::move(image), std::nullopt};
}
