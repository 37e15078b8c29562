// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// Image memory that an SDK's user has allocated: @p height lines of @p pitch bytes each. Lines
/// begin at multiples of four bytes, as the toolkit's images expect it.
struct SimulatedImageMemory
{
    SimulatedImageMemory(std::int32_t memoryId, std::int32_t memoryWidth, std::int32_t memoryHeight,
                         std::int32_t bits);

    [[nodiscard]] char* data() const { return bytes.get(); }

    std::int32_t id;
    std::int32_t width;  ///< pixels
    std::int32_t height; ///< pixels
    std::int32_t bitsPerPixel;
    std::size_t pitch; ///< bytes from line to line
    std::unique_ptr<char[]> bytes;
};

/// The ring of image memories that live capture fills in turn. It never writes into the memory that
/// was handed out last as long as there is another one. Without locking; memory that is taken out
/// while it is written stays alive with the writer.
class FrameRing
{
public:
    using Memory = std::shared_ptr<SimulatedImageMemory>;

    void append(Memory memory);
    void remove(const Memory& memory);
    void clear();
    [[nodiscard]] bool isEmpty() const { return m_memories.empty(); }
    [[nodiscard]] const std::vector<Memory>& memories() const { return m_memories; }

    /// The memory for the next frame; null for an empty ring.
    Memory beginWrite();

    /// Ends what beginWrite began: a complete frame becomes the latest.
    void endWrite(bool complete);

    /// The latest complete frame is being overwritten, because the other memory is handed out.
    [[nodiscard]] bool latestIsBeingWritten() const { return m_writing && m_writing == m_latest; }

    /// The memory with the latest complete frame, null when there is none. It is left alone from
    /// now until another one is handed out.
    Memory handOutLatest();

private:
    std::vector<Memory> m_memories;
    std::size_t m_next = 0;
    Memory m_writing;
    Memory m_latest;
    Memory m_handedOut;
};
