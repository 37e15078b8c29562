// SPDX-License-Identifier: MIT
#include "simulator/FrameRing.h"

#include <algorithm>
#include <utility>

namespace {

std::size_t linePitch(std::int32_t width, std::int32_t bitsPerPixel)
{
    const auto bits = static_cast<std::size_t>(width) * static_cast<std::size_t>(bitsPerPixel);
    return (bits + 31) / 32 * 4;
}

} // namespace

SimulatedImageMemory::SimulatedImageMemory(std::int32_t memoryId, std::int32_t memoryWidth,
                                           std::int32_t memoryHeight, std::int32_t bits)
    : id(memoryId)
    , width(memoryWidth)
    , height(memoryHeight)
    , bitsPerPixel(bits)
    , pitch(linePitch(memoryWidth, bits))
    , bytes(std::make_unique<char[]>(pitch * static_cast<std::size_t>(memoryHeight)))
{}

void FrameRing::append(Memory memory)
{
    m_memories.push_back(std::move(memory));
}

void FrameRing::remove(const Memory& memory)
{
    std::erase(m_memories, memory);
    m_next = 0;
    for (Memory* mark : {&m_latest, &m_handedOut}) {
        if (*mark == memory) {
            mark->reset();
        }
    }
}

void FrameRing::clear()
{
    m_memories.clear();
    m_next = 0;
    m_latest.reset();
    m_handedOut.reset();
}

FrameRing::Memory FrameRing::beginWrite()
{
    if (m_memories.empty()) {
        return nullptr;
    }
    if (m_memories[m_next] == m_handedOut) {
        m_next = (m_next + 1) % m_memories.size();
    }
    m_writing = m_memories[m_next];
    m_next = (m_next + 1) % m_memories.size();
    return m_writing;
}

void FrameRing::endWrite(bool complete)
{
    const bool stillInRing =
        std::find(m_memories.begin(), m_memories.end(), m_writing) != m_memories.end();
    if (complete && stillInRing) {
        m_latest = m_writing;
    } else if (m_latest == m_writing) {
        m_latest.reset();
    }
    m_writing.reset();
}

FrameRing::Memory FrameRing::handOutLatest()
{
    m_handedOut = m_latest;
    return m_latest;
}
