#include "simulator/TestScene.h"

#include <cstring>

TestScene::TestScene(int width, int height, bool /*bayer*/, const QString& /*label*/)
    : m_width(width)
    , m_bandTop(height)
    , m_bandBottom(height)
    , m_pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 128)
{}

int TestScene::shift(int y, std::uint64_t frame) const
{
    return y >= m_bandTop && y < m_bandBottom
               ? static_cast<int>(frame * 8 % static_cast<std::uint64_t>(m_width))
               : 0;
}

void TestScene::copyRow(int y, std::uint64_t /*frame*/, std::uint8_t* row) const
{
    std::memcpy(row,
                m_pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width),
                static_cast<std::size_t>(m_width));
}

std::uint8_t TestScene::reflectance(int x, int y, std::uint64_t frame) const
{
    return m_pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) +
                    static_cast<std::size_t>((x + shift(y, frame)) % m_width)];
}
