// SPDX-License-Identifier: MIT
// What is written is read as it was meant by the programs that it is for: stand-ins here, which
// read as their programs do.

#include "tests/pixellists/ListTexts.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <functional>
#include <tuple>

namespace {

using Place = std::tuple<int, int, char>; ///< x, y, and H or C where it is said

/// The lines of a text as fgets() gives them to a buffer of @p size bytes.
QByteArrayList linesOf(const QByteArray& text, qsizetype size = 4096)
{
    QByteArrayList lines;
    for (qsizetype begin = 0; begin < text.size();) {
        const qsizetype end = text.indexOf('\n', begin);
        const qsizetype length =
            std::min(end < 0 ? text.size() - begin : end + 1 - begin, size - 1);
        lines.append(text.mid(begin, length));
        begin += length;
    }
    return lines;
}

std::vector<Place> readAsDcraw(const QByteArray& text)
{
    std::vector<Place> places;
    for (QByteArray line : linesOf(text, 128)) {
        line.truncate(line.indexOf('#') < 0 ? line.size() : line.indexOf('#'));
        int x = 0;
        int y = 0;
        int time = 0;
        if (std::sscanf(line.constData(), "%d %d %d", &x, &y, &time) == 3 && time <= 0) {
            places.emplace_back(x, y, ' ');
        }
    }
    return places;
}

std::vector<Place> readAsRawtherapee(const QByteArray& text)
{
    std::vector<Place> places;
    int offset = 0;
    bool first = true;
    for (const QByteArray& line : linesOf(text)) {
        int x = 0;
        int y = 0;
        const int count = std::sscanf(line.constData(), "%d %d", &x, &y);
        if (count == 2) {
            places.emplace_back(x + offset, y + offset, ' ');
        } else if (count == 1 && first) {
            offset = x;
        }
        first = false;
    }
    return places;
}

std::vector<Place> readAsSiril(const QByteArray& text)
{
    std::vector<Place> places;
    for (const QByteArray& line : linesOf(text)) {
        int x = 0;
        int y = 0;
        char letter = 'H';
        if (line.startsWith('P') &&
            std::sscanf(line.constData() + 2, "%d %d %c", &x, &y, &letter) >= 2) {
            places.emplace_back(x, y, letter == 'H' ? 'H' : 'C');
        } else {
            EXPECT_TRUE(line.startsWith('#')) << line.constData();
        }
    }
    return places;
}

std::vector<Place> readAsPhd2(const QByteArray& text)
{
    std::vector<Place> places;
    int announced = -1;
    for (const QByteArray& line : linesOf(text)) {
        std::sscanf(line.constData(), "# Defect count: %d", &announced);
        if (line.trimmed().isEmpty() || line.startsWith('#')) {
            continue;
        }
        const QByteArrayList words = line.simplified().split(' ');
        EXPECT_GE(words.size(), 2);
        places.emplace_back(words.value(0).toInt(), words.value(1).toInt(), ' ');
    }
    EXPECT_TRUE(text.startsWith("# PHD2 Defect Map v1\n"));
    EXPECT_EQ(static_cast<std::size_t>(announced), places.size());
    return places;
}

std::vector<Place> readAsKstars(const QByteArray& text)
{
    const QJsonObject map = QJsonDocument::fromJson(text).object();
    for (const char* key : {"camera", "median", "standardDeviation", "hotAggressiveness",
                            "coldAggressiveness", "hot", "cold"}) {
        EXPECT_TRUE(map.contains(QLatin1String(key))) << key;
    }
    const double median = map[QStringLiteral("median")].toDouble();
    const double deviation = map[QStringLiteral("standardDeviation")].toDouble();
    std::vector<Place> places;
    // Whatever factor the aggressiveness stands for.
    for (const double factor : {0.0, 1.0, 1000.0}) {
        places.clear();
        for (const QJsonValue& pixel : map[QStringLiteral("hot")].toArray()) {
            if (pixel[QStringLiteral("value")].toDouble(-1) >= median + deviation * factor) {
                places.emplace_back(pixel[QStringLiteral("x")].toInt(),
                                    pixel[QStringLiteral("y")].toInt(), 'H');
            }
        }
        for (const QJsonValue& pixel : map[QStringLiteral("cold")].toArray()) {
            if (pixel[QStringLiteral("value")].toDouble(65536) <= median - deviation * factor) {
                places.emplace_back(pixel[QStringLiteral("x")].toInt(),
                                    pixel[QStringLiteral("y")].toInt(), 'C');
            }
        }
        EXPECT_EQ(places.size(),
                  static_cast<std::size_t>(map[QStringLiteral("hot")].toArray().size() +
                                           map[QStringLiteral("cold")].toArray().size()));
    }
    return places;
}

/// One that scans the whole text, and never comes forward at what is no number.
std::vector<Place> readAsMlvapp(const QByteArray& text)
{
    const char* at = text.constData();
    int consumed = 0;
    unsigned camera = 0;
    if (std::sscanf(at, "#FPM %x%n", &camera, &consumed) == 1) {
        at += consumed;
    }
    std::vector<Place> places;
    int x = 0;
    int y = 0;
    int count = 0;
    while ((count = std::sscanf(at, "%d %d%n", &x, &y, &consumed)) != EOF) {
        if (count != 2) {
            ADD_FAILURE() << "it would read for ever: " << at;
            break;
        }
        places.emplace_back(x, y, ' ');
        at += consumed;
    }
    return places;
}

std::vector<Place> readAsImperx(const QByteArray& text)
{
    std::vector<Place> places;
    int header = 0; ///< 0 before the table, 1 at the names of its columns, 2 in it
    for (const QByteArray& line : linesOf(text)) {
        if (header == 0) {
            EXPECT_TRUE(line.endsWith(",\n")) << line.constData();
            EXPECT_LE(line.size() - 1, 256);
            header = line == ":Table,\n" ? 1 : 0;
        } else if (header == 1) {
            EXPECT_EQ(line, QByteArray("-- Column(X),Row(Y)\n"));
            header = 2;
        } else {
            int x = 0;
            int y = 0;
            EXPECT_EQ(std::sscanf(line.constData(), "%d,%d", &x, &y), 2) << line.constData();
            EXPECT_GE(std::min(x, y), 1);
            const Place place(x - 1, y - 1, ' ');
            if (!places.empty()) {
                EXPECT_LE(std::tuple(std::get<1>(places.back()), std::get<0>(places.back())),
                          std::tuple(y - 1, x - 1));
            }
            places.push_back(place);
        }
    }
    EXPECT_EQ(header, 2);
    EXPECT_LE(places.size(), 4096U);
    return places;
}

std::vector<Place> readAsFixpix(const QByteArray& text)
{
    std::vector<Place> places;
    for (const QByteArray& line : linesOf(text)) {
        std::array<int, 4> numbers{};
        const int count = std::sscanf(line.constData(), "%d %d %d %d", &numbers[0], &numbers[1],
                                      &numbers[2], &numbers[3]);
        const bool isPixel = count == 2;
        EXPECT_TRUE(isPixel || count == 4) << line.constData();
        const auto [x1, x2, y1, y2] =
            isPixel ? std::array{numbers[0], numbers[0], numbers[1], numbers[1]} : numbers;
        for (int y = y1; y <= y2; ++y) {
            for (int x = x1; x <= x2; ++x) {
                places.emplace_back(x - 1, y - 1, ' ');
            }
        }
    }
    return places;
}

struct Program
{
    const char* format;
    std::function<std::vector<Place>(const QByteArray&)> read;
};

void PrintTo(const Program& program, std::ostream* stream)
{
    *stream << program.format;
}

class AList : public testing::TestWithParam<Program>
{};

} // namespace

TEST_P(AList, IsReadByItsProgramAsItWasMeant)
{
    const auto& [name, read] = GetParam();
    const PixelListFormat& format = *pixellists::formatNamed(QLatin1String(name));
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        const QSize size = seed % 2 == 0 ? QSize(65535, 65535) : QSize(40, 30);
        const PixelList pixels = randomPixels(seed, 50 * seed, size, format);
        std::vector<Place> expected;
        for (const ListedPixel& pixel : pixels) {
            const char letter = pixel.defect == PixelDefect::Cold ? 'C' : 'H';
            expected.emplace_back(pixel.x, pixel.y, format.keepsDefects ? letter : ' ');
        }
        std::vector<Place> places =
            read(contentOf(name, pixels, {.size = size, .suffix = {}, .camera = {}}).bytes);
        std::ranges::sort(expected);
        std::ranges::sort(places);
        EXPECT_EQ(places, expected) << "seed " << seed;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Of, AList,
    testing::Values(Program{"dcraw", readAsDcraw}, Program{"rawtherapee", readAsRawtherapee},
                    Program{"siril", readAsSiril}, Program{"phd2", readAsPhd2},
                    Program{"kstars", readAsKstars}, Program{"mlvapp", readAsMlvapp},
                    Program{"imperx", readAsImperx}, Program{"fixpix", readAsFixpix}),
    [](const auto& program) { return std::string(program.param.format); });
