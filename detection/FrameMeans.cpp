// SPDX-License-Identifier: MIT
#include "detection/FrameMeans.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#ifdef VORN_HAS_HIGHWAY
#include <hwy/cache_control.h>
#include <hwy/highway.h>
#endif

namespace {

// With 2^k <= n < 2^(k + 1) and factor f = (2^(16 + k) + e) / n, 0 <= e < n, rounding up, s * f /
// 2^(16 + k) is s / n + s * e / (n * 2^(16 + k)). The excess is at most 255 * (n - 1) / 2^(16 + k),
// as s is at most 255 * n, and less than 1 / n, which is what it takes not to reach the next
// integer, as long as 255 * (n - 1) * n < 2^(16 + k); 2^k > n / 2, so n up to 129 will do.
constexpr unsigned int MaxFramesInVectors = 128;

} // namespace

FrameMeans::FrameMeans(std::vector<const quint8*> frames)
    : m_frames(std::move(frames))
    , m_count(static_cast<unsigned int>(m_frames.size()))
{
    if (m_count == 1) {
        // Twice the same: the factor of a single frame would not fit 16 bits.
        m_frames.push_back(m_frames.front());
        m_count = 2;
    }
    if (m_count <= MaxFramesInVectors) {
        // Of a power of two, whose factor would be 2^16, one bit less.
        m_shift =
            static_cast<int>(std::bit_width(m_count)) - (std::has_single_bit(m_count) ? 2 : 1);
        m_factor = static_cast<quint16>(((65536U << m_shift) + m_count - 1) / m_count);
    }
}

#ifdef VORN_HAS_HIGHWAY

namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<quint8>;
using Words = hn::Repartition<quint16, Bytes>;
using Sums = hn::Repartition<std::uint64_t, Bytes>;
constexpr Bytes ByteTag;
constexpr Words WordTag;

/// What is summed up along a run, lane by lane.
struct LaneSums
{
    hn::Vec<Sums> even = hn::Zero(Sums());
    hn::Vec<Sums> odd = hn::Zero(Sums());
    hn::Vec<Bytes> greatest = hn::Zero(Bytes());
};

// The hardware fetches what comes next of a stream within a page of memory, but not beyond, and
// has only so many streams: with ten frames it is asked for it. Behind the end of a frame it finds
// nothing, and says nothing.
constexpr std::size_t BytesAhead = 1024;

/// The means of Vectors vectors of bytes from byte @p at on.
template <std::size_t Vectors>
HWY_INLINE void meanBlock(const std::vector<const quint8*>& frames, std::size_t at, quint16 factor,
                          int shift, quint8* means, LaneSums& sums)
{
    const std::size_t lanes = hn::Lanes(ByteTag);
    // Of pairs of bytes, as words and thus modulo 2^16, and of the odd bytes, which leaves the sums
    // of the even ones, all of them below 2^16.
    hn::Vec<Words> pairs[Vectors];
    hn::Vec<Words> odd[Vectors];
    for (std::size_t v = 0; v < Vectors; ++v) {
        pairs[v] = odd[v] = hn::Zero(WordTag);
    }
    for (const quint8* const frame : frames) {
        hwy::Prefetch(frame + at + BytesAhead);
        for (std::size_t v = 0; v < Vectors; ++v) {
            const auto words = hn::BitCast(WordTag, hn::LoadU(ByteTag, frame + at + v * lanes));
            pairs[v] = hn::Add(pairs[v], words);
            odd[v] = hn::Add(odd[v], hn::ShiftRight<8>(words));
        }
    }
    const auto factors = hn::Set(WordTag, factor);
    for (std::size_t v = 0; v < Vectors; ++v) {
        const auto even = hn::Sub(pairs[v], hn::ShiftLeft<8>(odd[v]));
        const auto evenMeans = hn::ShiftRightSame(hn::MulHigh(even, factors), shift);
        const auto oddMeans = hn::ShiftRightSame(hn::MulHigh(odd[v], factors), shift);
        const auto both = hn::BitCast(ByteTag, hn::Or(evenMeans, hn::ShiftLeft<8>(oddMeans)));
        hn::StoreU(both, ByteTag, means + v * lanes);
        sums.even = hn::Add(sums.even, hn::SumsOf8(hn::BitCast(ByteTag, evenMeans)));
        sums.odd = hn::Add(sums.odd, hn::SumsOf8(hn::BitCast(ByteTag, oddMeans)));
        sums.greatest = hn::Max(sums.greatest, both);
    }
}

} // namespace

FrameMeans::Run FrameMeans::run(std::size_t first, std::size_t count, quint8* means) const
{
    std::size_t done = 0;
    Run run;
    if (m_count <= MaxFramesInVectors) {
        const std::size_t lanes = hn::Lanes(ByteTag);
        constexpr std::size_t Together = 4;
        LaneSums sums;
        for (; done + Together * lanes <= count; done += Together * lanes) {
            meanBlock<Together>(m_frames, first + done, m_factor, m_shift, means + done, sums);
        }
        for (; done + lanes <= count; done += lanes) {
            meanBlock<1>(m_frames, first + done, m_factor, m_shift, means + done, sums);
        }
        run.evenSum = static_cast<quint32>(hn::GetLane(hn::SumOfLanes(Sums(), sums.even)));
        run.oddSum = static_cast<quint32>(hn::GetLane(hn::SumOfLanes(Sums(), sums.odd)));
        run.greatest = hn::GetLane(hn::MaxOfLanes(ByteTag, sums.greatest));
    }
    runEnd(first, done, count, means, run);
    return run;
}

#else

FrameMeans::Run FrameMeans::run(std::size_t first, std::size_t count, quint8* means) const
{
    Run run;
    runEnd(first, 0, count, means, run);
    return run;
}

#endif

void FrameMeans::runEnd(std::size_t first, std::size_t begin, std::size_t end, quint8* means,
                        Run& run) const
{
    for (std::size_t x = begin; x < end; ++x) {
        quint32 sum = 0;
        for (const quint8* const frame : m_frames) {
            sum += frame[first + x];
        }
        means[x] = static_cast<quint8>(sum / m_count);
        (x % 2 == 0 ? run.evenSum : run.oddSum) += means[x];
        run.greatest = std::max(run.greatest, means[x]);
    }
}
