// SPDX-License-Identifier: MIT
#include "simulator/EepromFile.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QSaveFile>

#include <optional>
#include <stdexcept>
#include <utility>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(EepromFile)
};

constexpr char FirstLine[] = "vorn-eeprom 1";
constexpr char ChecksumWord[] = "sha256 ";
constexpr qint64 LargestFile = qint64{4} << 20; // two lists of 65535 entries take less

[[noreturn]] void fail(const QString& fileName, const QString& reason)
{
    throw std::runtime_error(QStringLiteral("%1: %2").arg(fileName, reason).toStdString());
}

QByteArray checksum(const QByteArray& text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex();
}

void appendList(QByteArray& text, const char* name, const std::vector<EepromPosition>& list)
{
    text += QByteArray(name) + ' ' + QByteArray::number(quint64{list.size()}) + '\n';
    for (const EepromPosition& position : list) {
        text += QByteArray::number(position.x) + ' ' + QByteArray::number(position.y) + '\n';
    }
}

/// Takes the lines of a file one by one; empty as soon as one is not as expected.
class LineReader
{
public:
    explicit LineReader(const QByteArray& text)
        : m_lines(text.split('\n'))
    {}

    [[nodiscard]] bool takeLine(const QByteArray& expected)
    {
        return m_next < m_lines.size() && m_lines[m_next++] == expected;
    }

    /// The number of a line "@p word number".
    [[nodiscard]] std::optional<uint> takeNumber(const QByteArray& word, uint most)
    {
        const QList<QByteArray> parts = takeParts();
        return parts.size() == 2 && parts[0] == word ? number(parts[1], most) : std::nullopt;
    }

    [[nodiscard]] std::optional<std::vector<EepromPosition>> takeList(const QByteArray& word)
    {
        const std::optional<uint> count = takeNumber(word, 65535);
        if (!count) {
            return std::nullopt;
        }
        std::vector<EepromPosition> list;
        for (uint i = 0; i < *count; ++i) {
            const QList<QByteArray> parts = takeParts();
            if (parts.size() != 2) {
                return std::nullopt;
            }
            const std::optional<uint> x = number(parts[0], 65535);
            const std::optional<uint> y = number(parts[1], 65535);
            if (!x || !y) {
                return std::nullopt;
            }
            list.push_back({static_cast<std::uint16_t>(*x), static_cast<std::uint16_t>(*y)});
        }
        return list;
    }

private:
    [[nodiscard]] QList<QByteArray> takeParts()
    {
        return m_next < m_lines.size() ? m_lines[m_next++].split(' ') : QList<QByteArray>();
    }

    [[nodiscard]] static std::optional<uint> number(const QByteArray& text, uint most)
    {
        bool isNumber = false;
        const uint value = text.toUInt(&isNumber);
        return isNumber && value <= most ? std::optional<uint>(value) : std::nullopt;
    }

    QList<QByteArray> m_lines;
    qsizetype m_next = 0;
};

std::optional<EepromContent> parse(const QByteArray& text)
{
    const qsizetype checksumAt = text.lastIndexOf(ChecksumWord);
    if (checksumAt < 0) {
        return std::nullopt;
    }
    const QByteArray body = text.left(checksumAt);
    if (text.mid(checksumAt) != ChecksumWord + checksum(body) + '\n') {
        return std::nullopt;
    }
    LineReader reader(body);
    if (!reader.takeLine(FirstLine)) {
        return std::nullopt;
    }
    const auto firmware = reader.takeNumber("firmware", 1);
    auto factory = firmware ? reader.takeList("factory") : std::nullopt;
    auto user = factory ? reader.takeList("user") : std::nullopt;
    if (!user || !reader.takeLine({})) {
        return std::nullopt;
    }
    return EepromContent{*firmware == 1, std::move(*factory), std::move(*user)};
}

/// The new name of a file is on the disk only once its folder is.
void syncFolder(const QString& folder)
{
#ifdef Q_OS_UNIX
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
#else
    Q_UNUSED(folder)
#endif
}

} // namespace

EepromFile::EepromFile(QString fileName)
    : m_fileName(std::move(fileName))
{}

bool EepromFile::exists() const
{
    return QFileInfo::exists(m_fileName);
}

EepromContent EepromFile::read() const
{
    QFile file(m_fileName);
    if (!QFileInfo(m_fileName).isFile()) {
        fail(m_fileName, Text::tr("not a file"));
    }
    if (!file.open(QIODevice::ReadOnly)) {
        fail(m_fileName, file.errorString());
    }
    const std::optional<EepromContent> content = parse(file.read(LargestFile));
    if (!content) {
        fail(m_fileName, Text::tr("the EEPROM file is damaged"));
    }
    return *content;
}

void EepromFile::write(const EepromContent& content) const
{
    QByteArray text = FirstLine;
    text += '\n';
    text += QByteArray("firmware ") + (content.firmwareUploaded ? "1\n" : "0\n");
    appendList(text, "factory", content.factory);
    appendList(text, "user", content.user);
    text += ChecksumWord + checksum(text) + '\n';

    const QString folder = QFileInfo(m_fileName).absolutePath();
    QDir().mkpath(folder);
    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size() || !file.commit()) {
        fail(m_fileName, file.errorString());
    }
    syncFolder(folder);
}

QString EepromFile::keepAside() const
{
    constexpr int Most = 1000;
    for (int number = 1; number < Most; ++number) {
        const QString name = m_fileName + QStringLiteral(".damaged-%1").arg(number);
        if (!QFileInfo::exists(name)) {
            return QFile::rename(m_fileName, name) ? name : QString();
        }
    }
    return {};
}

void EepromFile::removeLeftovers() const
{
    const QFileInfo info(m_fileName);
    const QDir folder = info.absoluteDir();
    // The toolkit's temporary files: the name, a dot and six letters.
    const QStringList leftovers =
        folder.entryList({info.fileName() + QStringLiteral(".??????")}, QDir::Files);
    for (const QString& name : leftovers) {
        QFile::remove(folder.filePath(name));
    }
}
