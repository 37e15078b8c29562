// SPDX-License-Identifier: MIT
#include "simulator/TestScene.h"

#include "simulator/NoiseField.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <string_view>

namespace {

struct Color
{
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
};

constexpr Color grey(int level)
{
    const auto value = static_cast<std::uint8_t>(level);
    return {value, value, value};
}

constexpr Color Paper = grey(225);
constexpr Color Ink = grey(12);

// Pale and earthy tones, strong ones, the primaries with their complements, and greys.
constexpr int PatchColumns = 6;
constexpr std::array<Color, 24> Patches{{
    {110, 80, 65},   {195, 150, 130}, {95, 120, 155}, {90, 105, 65},   {130, 130, 175},
    {105, 190, 170}, {215, 125, 45},  {75, 90, 165},  {190, 85, 95},   {90, 60, 105},
    {160, 190, 65},  {225, 165, 45},  {55, 60, 150},  {70, 150, 75},   {175, 50, 55},
    {235, 200, 30},  {185, 85, 150},  {10, 135, 165}, {240, 240, 235}, {200, 200, 200},
    {160, 160, 160}, {120, 120, 120}, {85, 85, 85},   {50, 50, 50},
}};

// Seven lines of five dots for each character.
constexpr std::string_view Letters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-";
constexpr std::array<std::array<std::uint8_t, 7>, 37> Glyphs{{
    {0x0e, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0e}, {0x04, 0x0c, 0x04, 0x04, 0x04, 0x04, 0x0e},
    {0x0e, 0x11, 0x01, 0x06, 0x08, 0x10, 0x1f}, {0x1e, 0x01, 0x01, 0x0e, 0x01, 0x01, 0x1e},
    {0x02, 0x06, 0x0a, 0x12, 0x1f, 0x02, 0x02}, {0x1f, 0x10, 0x1e, 0x01, 0x01, 0x11, 0x0e},
    {0x06, 0x08, 0x10, 0x1e, 0x11, 0x11, 0x0e}, {0x1f, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0e, 0x11, 0x11, 0x0e, 0x11, 0x11, 0x0e}, {0x0e, 0x11, 0x11, 0x0f, 0x01, 0x02, 0x0c},
    {0x0e, 0x11, 0x11, 0x1f, 0x11, 0x11, 0x11}, {0x1e, 0x11, 0x11, 0x1e, 0x11, 0x11, 0x1e},
    {0x0e, 0x11, 0x10, 0x10, 0x10, 0x11, 0x0e}, {0x1e, 0x11, 0x11, 0x11, 0x11, 0x11, 0x1e},
    {0x1f, 0x10, 0x10, 0x1e, 0x10, 0x10, 0x1f}, {0x1f, 0x10, 0x10, 0x1e, 0x10, 0x10, 0x10},
    {0x0e, 0x11, 0x10, 0x17, 0x11, 0x11, 0x0f}, {0x11, 0x11, 0x11, 0x1f, 0x11, 0x11, 0x11},
    {0x0e, 0x04, 0x04, 0x04, 0x04, 0x04, 0x0e}, {0x07, 0x02, 0x02, 0x02, 0x02, 0x12, 0x0c},
    {0x11, 0x12, 0x14, 0x18, 0x14, 0x12, 0x11}, {0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x1f},
    {0x11, 0x1b, 0x15, 0x15, 0x11, 0x11, 0x11}, {0x11, 0x19, 0x15, 0x13, 0x11, 0x11, 0x11},
    {0x0e, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0e}, {0x1e, 0x11, 0x11, 0x1e, 0x10, 0x10, 0x10},
    {0x0e, 0x11, 0x11, 0x11, 0x15, 0x12, 0x0d}, {0x1e, 0x11, 0x11, 0x1e, 0x14, 0x12, 0x11},
    {0x0f, 0x10, 0x10, 0x0e, 0x01, 0x01, 0x1e}, {0x1f, 0x04, 0x04, 0x04, 0x04, 0x04, 0x04},
    {0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0e}, {0x11, 0x11, 0x11, 0x11, 0x11, 0x0a, 0x04},
    {0x11, 0x11, 0x11, 0x15, 0x15, 0x1b, 0x11}, {0x11, 0x11, 0x0a, 0x04, 0x0a, 0x11, 0x11},
    {0x11, 0x11, 0x0a, 0x04, 0x04, 0x04, 0x04}, {0x1f, 0x01, 0x02, 0x04, 0x08, 0x10, 0x1f},
    {0x00, 0x00, 0x00, 0x1f, 0x00, 0x00, 0x00},
}};
constexpr int GlyphWidth = 5;
constexpr int GlyphHeight = 7;

/// Draws into the sensor's pixels, each of which takes the one colour that its filter lets through.
/// Whatever lies outside is left out.
class SensorPainter
{
public:
    SensorPainter(std::vector<std::uint8_t>& pixels, int width, int height, bool bayer)
        : m_pixels(pixels)
        , m_width(width)
        , m_height(height)
        , m_bayer(bayer)
    {}

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }

    /// Where a place given in thousandths of the image lies.
    [[nodiscard]] int x(int thousandths) const { return m_width * thousandths / 1000; }
    [[nodiscard]] int y(int thousandths) const { return m_height * thousandths / 1000; }

    void put(int x, int y, Color color)
    {
        if (x < 0 || y < 0 || x >= m_width || y >= m_height) {
            return;
        }
        m_pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
                 static_cast<std::size_t>(x)] = seen(x, y, color);
    }

    void fill(int left, int top, int right, int bottom, Color color)
    {
        for (int y = top; y < bottom; ++y) {
            for (int x = left; x < right; ++x) {
                put(x, y, color);
            }
        }
    }

private:
    [[nodiscard]] std::uint8_t seen(int x, int y, Color color) const
    {
        if (!m_bayer) {
            return static_cast<std::uint8_t>(
                (color.red * 77 + color.green * 150 + color.blue * 29) >> 8);
        }
        const bool oddRow = y % 2 != 0;
        if ((x % 2 != 0) != oddRow) {
            return color.green;
        }
        return oddRow ? color.blue : color.red;
    }

    std::vector<std::uint8_t>& m_pixels;
    int m_width;
    int m_height;
    bool m_bayer;
};

void drawBackground(SensorPainter& painter)
{
    std::vector<int> across;
    across.reserve(static_cast<std::size_t>(painter.width()));
    for (int x = 0; x < painter.width(); ++x) {
        across.push_back(50 + 40 * x / painter.width());
    }
    for (int y = 0; y < painter.height(); ++y) {
        const int down = 30 * y / painter.height();
        for (int x = 0; x < painter.width(); ++x) {
            painter.put(x, y, grey(across[static_cast<std::size_t>(x)] + down));
        }
    }
}

void drawPatches(SensorPainter& painter)
{
    painter.fill(painter.x(40), painter.y(50), painter.x(570), painter.y(450), Ink);
    for (int i = 0; i < static_cast<int>(Patches.size()); ++i) {
        const int left = 50 + i % PatchColumns * 86;
        const int top = 60 + i / PatchColumns * 96;
        painter.fill(painter.x(left), painter.y(top), painter.x(left + 80), painter.y(top + 90),
                     Patches[static_cast<std::size_t>(i)]);
    }
}

void drawStar(SensorPainter& painter)
{
    constexpr double Spokes = 36;
    const int radius = std::min(painter.x(170), painter.y(200));
    for (int dy = -radius; dy <= radius; ++dy) {
        for (int dx = -radius; dx <= radius; ++dx) {
            if (dx * dx + dy * dy > radius * radius) {
                continue;
            }
            const double turn = std::atan2(dy, dx) / (2 * std::numbers::pi) * Spokes;
            const bool dark = turn - std::floor(turn) < 0.5;
            painter.put(painter.x(780) + dx, painter.y(250) + dy, dark ? Ink : Paper);
        }
    }
}

void drawGreys(SensorPainter& painter)
{
    constexpr int Steps = 16;
    for (int i = 0; i < Steps; ++i) {
        painter.fill(painter.x(40) + painter.x(920) * i / Steps, painter.y(490),
                     painter.x(40) + painter.x(920) * (i + 1) / Steps, painter.y(545),
                     grey(i * 255 / (Steps - 1)));
    }
    for (int x = 0; x < painter.x(920); ++x) {
        painter.fill(painter.x(40) + x, painter.y(545), painter.x(40) + x + 1, painter.y(600),
                     grey(255 * x / painter.x(920)));
    }
}

void drawLinePairs(SensorPainter& painter)
{
    constexpr std::array<int, 7> Widths{1, 2, 3, 4, 6, 8, 12};
    int left = 40;
    for (const int lineWidth : Widths) {
        const int top = painter.y(630);
        const int bottom = painter.y(750);
        for (int y = top; y < bottom; ++y) {
            for (int x = painter.x(left); x < painter.x(left + 60); ++x) {
                painter.put(x, y, x / lineWidth % 2 == 0 ? Ink : Paper);
            }
            for (int x = painter.x(left + 60); x < painter.x(left + 115); ++x) {
                painter.put(x, y, y / lineWidth % 2 == 0 ? Ink : Paper);
            }
        }
        left += 134;
    }
}

void drawText(SensorPainter& painter, int left, int top, int scale, const QString& text)
{
    for (const char letter : text.toUpper().toLatin1()) {
        const std::size_t index = Letters.find(letter);
        if (index != std::string_view::npos) {
            for (int y = 0; y < GlyphHeight * scale; ++y) {
                const int dots = Glyphs[index][static_cast<std::size_t>(y / scale)];
                for (int x = 0; x < GlyphWidth * scale; ++x) {
                    if ((dots >> (GlyphWidth - 1 - x / scale) & 1) != 0) {
                        painter.put(left + x, top + y, Ink);
                    }
                }
            }
        }
        left += (GlyphWidth + 1) * scale;
    }
}

void drawLettering(SensorPainter& painter, const QString& label)
{
    painter.fill(painter.x(40), painter.y(775), painter.x(960), painter.y(905), Paper);
    int top = painter.y(785);
    for (int scale = std::max(1, painter.height() / 256); scale > 0; scale /= 2) {
        drawText(painter, painter.x(50), top, scale, label);
        drawText(painter, painter.x(550), top, scale, label);
        top += (GlyphHeight + 2) * scale;
    }
}

void drawBand(SensorPainter& painter, int top, int bottom)
{
    simulator::RandomSequence random(7);
    int left = 0;
    while (left < painter.width()) {
        const int right = left + 4 + random.below(std::max(1, painter.x(40)));
        painter.fill(left, top, right, bottom,
                     Patches[static_cast<std::size_t>(random.below(Patches.size()))]);
        left = right;
    }
}

} // namespace

TestScene::TestScene(int width, int height, bool bayer, const QString& label)
    : m_width(static_cast<std::size_t>(width))
    , m_bandTop(height * 930 / 1000)
    , m_bandBottom(height * 980 / 1000)
    , m_pixels(m_width * static_cast<std::size_t>(height))
{
    SensorPainter painter(m_pixels, width, height, bayer);
    drawBackground(painter);
    drawPatches(painter);
    drawStar(painter);
    drawGreys(painter);
    drawLinePairs(painter);
    drawLettering(painter, label);
    drawBand(painter, m_bandTop, m_bandBottom);
}

std::size_t TestScene::shift(int y, std::uint64_t frame) const
{
    // An even number, so that a mosaic keeps its colours.
    constexpr std::uint64_t PixelsPerFrame = 16;
    if (y < m_bandTop || y >= m_bandBottom) {
        return 0;
    }
    return frame * PixelsPerFrame % m_width & ~std::size_t{1};
}

void TestScene::copyRow(int y, std::uint64_t frame, std::uint8_t* row) const
{
    const std::uint8_t* line = m_pixels.data() + static_cast<std::size_t>(y) * m_width;
    const std::size_t start = shift(y, frame);
    std::memcpy(row, line + start, m_width - start);
    std::memcpy(row + m_width - start, line, start);
}

std::uint8_t TestScene::reflectance(int x, int y, std::uint64_t frame) const
{
    const std::size_t column = (static_cast<std::size_t>(x) + shift(y, frame)) % m_width;
    return m_pixels[static_cast<std::size_t>(y) * m_width + column];
}
