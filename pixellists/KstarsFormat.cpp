// SPDX-License-Identifier: MIT
// `kstars`: a defect map of KStars, one object of JSON. A hot pixel counts there only if its value
// is at least the median and the standard deviation times a factor of the aggressiveness, so what
// is written without a value has the greatest one, and the standard deviation is 0: every listed
// pixel counts. The first column and row are never corrected.

#include "pixellists/PixelListError.h"
#include "pixellists/PixelListReading.h"
#include "pixellists/PixelListWriting.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(KstarsFormat)
};

constexpr qint64 GreatestFile = qint64{128} << 20;
constexpr float Saturated = 65535;
constexpr int Aggressiveness = 75;
constexpr auto HotKey = "hot";
constexpr auto ColdKey = "cold";

/// Walks through a text that is known to be JSON, for the lines of what stands in it.
class JsonWalk
{
public:
    explicit JsonWalk(const QByteArray& text)
        : m_text(text)
    {}

    /// The line of the object @p index in the array of the last @p key of the outermost object.
    std::uint64_t lineOf(const QByteArray& key, qsizetype index)
    {
        std::uint64_t found = 1;
        qsizetype elements = 0;
        QByteArray name;
        for (; m_at < m_text.size(); ++m_at) {
            const char character = m_text[m_at];
            if (character == '\n') {
                ++m_line;
            } else if (character == '"') {
                const QByteArray text = takeString();
                name = m_depth == 1 ? text : name;
            } else if (character == '[' || character == '{') {
                ++m_depth;
                if (m_depth == 2) {
                    elements = 0;
                    found = name == key ? m_line : found;
                }
                if (m_depth == 3 && name == key && elements == index) {
                    found = m_line;
                }
            } else if (character == ']' || character == '}') {
                --m_depth;
            } else if (character == ',' && m_depth == 2) {
                ++elements;
                // An element that is no object begins behind the comma.
                if (name == key && elements == index) {
                    found = m_line;
                }
            }
        }
        return found;
    }

private:
    QByteArray takeString()
    {
        const qsizetype begin = ++m_at;
        while (m_at < m_text.size() && m_text[m_at] != '"') {
            m_at += m_text[m_at] == '\\' ? 2 : 1;
        }
        return m_text.mid(begin, m_at - begin);
    }

    const QByteArray& m_text;
    qsizetype m_at = 0;
    std::uint64_t m_line = 1;
    int m_depth = 0;
};

bool takeCoordinate(const QJsonValue& value, std::uint16_t& coordinate)
{
    const double number = value.toDouble(-1);
    if (!(number >= 0 && number <= pixellists::GreatestCoordinate) ||
        number != std::floor(number)) {
        return false;
    }
    coordinate = static_cast<std::uint16_t>(number);
    return true;
}

bool takePixel(const QJsonValue& value, ListedPixel& pixel)
{
    const QJsonObject object = value.toObject();
    if (!takeCoordinate(object[QLatin1String("x")], pixel.x) ||
        !takeCoordinate(object[QLatin1String("y")], pixel.y)) {
        return false;
    }
    if (const QJsonValue grey = object[QLatin1String("value")]; !grey.isUndefined()) {
        pixel.value = static_cast<float>(grey.toDouble());
        return grey.isDouble() && std::isfinite(*pixel.value);
    }
    return true;
}

void readArray(const QJsonObject& map, const char* key, PixelDefect defect,
               const QByteArray& content, PixelListInput& input)
{
    const QJsonValue value = map[QLatin1String(key)];
    if (!value.isUndefined() && !value.isArray()) {
        input.refuseAt(JsonWalk(content).lineOf(key, 0),
                       Text::tr("an array of pixels behind \"%1\"").arg(QLatin1String(key)), {});
    }
    const QJsonArray pixels = value.toArray();
    for (qsizetype i = 0; i < pixels.size(); ++i) {
        ListedPixel pixel{.defect = defect};
        if (takePixel(pixels[i], pixel)) {
            input.add(pixel);
            continue;
        }
        if (!input.tellsBadLines()) {
            input.refuse();
            continue;
        }
        const QByteArray found =
            pixels[i].isObject()
                ? QJsonDocument(pixels[i].toObject()).toJson(QJsonDocument::Compact)
                : QJsonDocument(QJsonArray{pixels[i]}).toJson(QJsonDocument::Compact);
        input.refuseAt(JsonWalk(content).lineOf(key, i), Text::tr("a pixel {x, y, value}"),
                       {found.constData(), static_cast<std::size_t>(found.size())});
    }
}

void read(PixelListInput& input)
{
    const QByteArray content = input.wholeFile(GreatestFile);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(content, &error);
    if (!document.isObject()) {
        const qsizetype end = error.error == QJsonParseError::NoError ? 0 : qsizetype{error.offset};
        const QByteArray found = content.mid(std::max<qsizetype>(end - 1, 0), 20);
        input.refuseAt(static_cast<std::uint64_t>(content.left(end).count('\n')) + 1,
                       Text::tr("a JSON object"),
                       {found.constData(), static_cast<std::size_t>(found.size())});
        return;
    }
    const QJsonObject map = document.object();
    if (!map.contains(QLatin1String(HotKey)) && !map.contains(QLatin1String(ColdKey))) {
        input.refuseAt(1, Text::tr("the keys hot and cold"), std::string_view());
        return;
    }
    readArray(map, HotKey, PixelDefect::Hot, content, input);
    readArray(map, ColdKey, PixelDefect::Cold, content, input);
}

void appendValue(QByteArray& text, float value)
{
    std::array<char, 32> digits{};
    const char* const end = std::to_chars(digits.begin(), digits.end(), value).ptr;
    text.append(digits.data(), end - digits.data());
}

/// The pixels of one kind, of which none is hot and less than @p least.
void appendArray(const char* key, std::span<const ListedPixel> pixels, bool cold, float least,
                 QByteArray& text)
{
    text.append("    \"").append(key).append("\": [");
    const char* separator = "\n";
    for (const ListedPixel& pixel : pixels) {
        if ((pixel.defect == PixelDefect::Cold) != cold) {
            continue;
        }
        text.append(separator).append("        {\"x\": ");
        separator = ",\n";
        pixellists::appendNumber(text, pixel.x);
        text += ", \"y\": ";
        pixellists::appendNumber(text, pixel.y);
        text += ", \"value\": ";
        appendValue(text, cold ? pixel.value.value_or(0)
                               : std::max(pixel.value.value_or(Saturated), least));
        text += '}';
    }
    text += *separator == ',' ? "\n    ]" : "]";
}

void noteFirst(std::span<const ListedPixel> pixels, std::uint16_t ListedPixel::*coordinate,
               char name, PixelListContent& content)
{
    const auto count = std::ranges::count(pixels, 0, coordinate);
    if (count > 0) {
        const QString text = count == 1 ? Text::tr("%1 = 0: %2 entry that KStars never corrects")
                                        : Text::tr("%1 = 0: %2 entries that KStars never corrects");
        content.losses.append(text.arg(QLatin1Char(name)).arg(count));
    }
}

void write(std::span<const ListedPixel> pixels, const PixelListWriteOptions& options,
           PixelListContent& content)
{
    noteFirst(pixels, &ListedPixel::x, 'x', content);
    noteFirst(pixels, &ListedPixel::y, 'y', content);

    // Between the two kinds, so that each of them counts.
    float median = 0;
    for (const ListedPixel& pixel : pixels) {
        if (pixel.defect == PixelDefect::Cold) {
            median = std::max(median, pixel.value.value_or(0));
        }
    }
    const auto raised = std::ranges::count_if(pixels, [median](const ListedPixel& pixel) {
        return pixel.defect != PixelDefect::Cold && pixel.value && *pixel.value < median;
    });
    if (raised > 0) {
        content.losses.append(
            Text::tr("hot, but darker than a cold one: %1, which get its value").arg(raised));
    }

    const QByteArray camera =
        QJsonDocument(QJsonArray{options.camera}).toJson(QJsonDocument::Compact);
    QByteArray& text = content.bytes;
    text += "{\n    \"camera\": " + camera.mid(1, camera.size() - 2) + ",\n    \"median\": ";
    appendValue(text, median);
    text += ",\n    \"standardDeviation\": 0,\n    \"hotAggressiveness\": " +
            QByteArray::number(Aggressiveness) +
            ",\n    \"coldAggressiveness\": " + QByteArray::number(Aggressiveness) + ",\n";
    appendArray(HotKey, pixels, false, median, text);
    text += ",\n";
    appendArray(ColdKey, pixels, true, 0, text);
    text += "\n}\n";
}

} // namespace

namespace pixellists::formats {

PixelListFormat kstars()
{
    return {.name = QStringLiteral("kstars"),
            .suffixes = {QStringLiteral("json")},
            .summary = Text::tr("defect map of KStars"),
            .entry = Text::tr("a pixel {x, y, value}"),
            .keepsDefects = true,
            .keepsValues = true,
            .read = read,
            .write = write};
}

} // namespace pixellists::formats
