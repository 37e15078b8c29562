// SPDX-License-Identifier: MIT
#include "camera/OrdinalCameraSdk.h"

#include "Recorder.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <type_traits>
#include <windows.h>

namespace {

using Handle = CameraSdk::Handle;

// Each has its top bit set or more than 32 bits, and no two parts of one are alike, so that a
// truncation, a sign extension and an exchange all show.
constexpr Handle SomeHandle = 0x89ABCDEF;
constexpr std::int32_t First = -0x12345678;
constexpr std::int32_t Second = 0x2468ACE1;
constexpr std::int32_t Third = -0x13579BDF;
constexpr std::int32_t Fourth = 0x7FEDCBA9;
constexpr double SomeDouble = -1234.56789e-30;
constexpr std::int32_t SomeResult = -0x0BADCAFE;

template <typename T>
T* addressOf(std::uint64_t value)
{
    return reinterpret_cast<T*>(value);
}

char* const SomeMemory = addressOf<char>(0x7FE1234589ABCDEF);
void* const SomePointer = addressOf<void>(0x6ED9876543210FED);

Recorder& recorder()
{
    // The library is in the process since before main: the program imports it.
    static const auto access = std::bit_cast<RecorderAccess>(
        GetProcAddress(GetModuleHandleW(L"Vorn_api_64.dll"), RecorderAccessName));
    return *access();
}

/// Memory above 4 GiB for what the library fills in.
class HighMemory
{
public:
    HighMemory()
        : m_base(static_cast<unsigned char*>(VirtualAlloc(
              addressOf<void>(0x123456780000), Size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)))
        , m_next(m_base)
    {}
    ~HighMemory() { VirtualFree(m_base, 0, MEM_RELEASE); }
    HighMemory(const HighMemory&) = delete;
    HighMemory& operator=(const HighMemory&) = delete;

    [[nodiscard]] bool isHigh() const { return std::bit_cast<std::uint64_t>(m_base) >> 32U != 0; }

    template <typename T>
    T* make()
    {
        T* const made = new (m_next) T();
        m_next += (sizeof(T) + 15U) / 16U * 16U;
        return made;
    }

private:
    static constexpr SIZE_T Size = 0x10000;
    unsigned char* m_base;
    unsigned char* m_next;
};

/// The one way to the library that the program has, and the recorder in the library's place.
class OrdinalBinding : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_high.isHigh());
        recorder() = {};
        recorder().result = SomeResult;
    }

    /// The next call writes @p value to where its argument @p argument, from 0, points to.
    template <typename T>
    void answer(std::uint32_t argument, const T& value)
    {
        RecorderOutput& output = recorder().outputs[m_answers++];
        static_assert(sizeof(T) <= sizeof(output.bytes));
        output.argument = argument;
        output.size = sizeof(T);
        std::memcpy(output.bytes, &value, sizeof(T));
    }

    /// Calls @p operation and checks that exactly one call reached the library, at @p ordinal, with
    /// every argument as given, and that the library's result came back.
    template <typename... Parameters>
    void expectCall(std::uint32_t ordinal, std::int32_t (CameraSdk::*operation)(Parameters...),
                    std::type_identity_t<Parameters>... arguments)
    {
        const std::unique_ptr<CameraSdk> sdk = createCameraSdk();
        const std::int32_t result = (sdk.get()->*operation)(arguments...);

        EXPECT_EQ(result, SomeResult);
        ASSERT_EQ(recorder().callCount, 1U);
        EXPECT_EQ(recorder().calls[0].ordinal, ordinal);
        std::size_t place = 0;
        (expectArgument(place++, arguments), ...);
    }

    template <typename T>
    T* high()
    {
        return m_high.make<T>();
    }

private:
    static void expectArgument(std::size_t place, double expected)
    {
        EXPECT_EQ(recorder().calls[0].doubles[place], std::bit_cast<std::uint64_t>(expected))
            << "argument " << place;
    }

    static void expectArgument(std::size_t place, std::uint32_t expected)
    {
        // The calling convention leaves the upper half of the place undefined.
        EXPECT_EQ(static_cast<std::uint32_t>(recorder().calls[0].integers[place]), expected)
            << "argument " << place;
    }

    static void expectArgument(std::size_t place, std::int32_t expected)
    {
        expectArgument(place, static_cast<std::uint32_t>(expected));
    }

    static void expectArgument(std::size_t place, const void* expected)
    {
        EXPECT_EQ(recorder().calls[0].integers[place], std::bit_cast<std::uint64_t>(expected))
            << "argument " << place;
    }

    HighMemory m_high;
    std::size_t m_answers = 0;
};

TEST_F(OrdinalBinding, MakingItCallsNothing)
{
    EXPECT_NE(createCameraSdk(), nullptr);
    EXPECT_EQ(recorder().callCount, 0U);
}

TEST_F(OrdinalBinding, StopLiveVideoIsOrdinal3)
{
    expectCall(3, &CameraSdk::stopLiveVideo, SomeHandle, First);
}

TEST_F(OrdinalBinding, StartLiveVideoIsOrdinal5)
{
    expectCall(5, &CameraSdk::startLiveVideo, SomeHandle, First);
}

TEST_F(OrdinalBinding, SetColorModeIsOrdinal17)
{
    expectCall(17, &CameraSdk::setColorMode, SomeHandle, First);
}

TEST_F(OrdinalBinding, GetErrorIsOrdinal23)
{
    auto* const code = high<std::int32_t>();
    auto* const text = high<char*>();
    answer(1, Second);
    answer(2, SomeMemory);
    expectCall(23, &CameraSdk::getError, SomeHandle, code, text);
    EXPECT_EQ(*code, Second);
    EXPECT_EQ(*text, SomeMemory);
}

TEST_F(OrdinalBinding, AllocImageMemoryIsOrdinal36)
{
    auto* const memory = high<char*>();
    auto* const memoryId = high<std::int32_t>();
    answer(4, SomeMemory);
    answer(5, Fourth);
    expectCall(36, &CameraSdk::allocImageMemory, SomeHandle, First, Second, Third, memory,
               memoryId);
    EXPECT_EQ(*memory, SomeMemory);
    EXPECT_EQ(*memoryId, Fourth);
}

TEST_F(OrdinalBinding, FreeImageMemoryIsOrdinal38)
{
    expectCall(38, &CameraSdk::freeImageMemory, SomeHandle, SomeMemory, First);
}

TEST_F(OrdinalBinding, InitEventIsOrdinal55)
{
    expectCall(55, &CameraSdk::initEvent, SomeHandle, SomePointer, First);
}

TEST_F(OrdinalBinding, ExitEventIsOrdinal56)
{
    expectCall(56, &CameraSdk::exitEvent, SomeHandle, First);
}

TEST_F(OrdinalBinding, EnableEventIsOrdinal57)
{
    expectCall(57, &CameraSdk::enableEvent, SomeHandle, First);
}

TEST_F(OrdinalBinding, DisableEventIsOrdinal58)
{
    expectCall(58, &CameraSdk::disableEvent, SomeHandle, First);
}

TEST_F(OrdinalBinding, AddToSequenceIsOrdinal68)
{
    expectCall(68, &CameraSdk::addToSequence, SomeHandle, SomeMemory, First);
}

TEST_F(OrdinalBinding, ClearSequenceIsOrdinal69)
{
    expectCall(69, &CameraSdk::clearSequence, SomeHandle);
}

TEST_F(OrdinalBinding, GetFrameMemoryIsOrdinal70)
{
    auto* const memory = high<char*>();
    answer(3, SomeMemory);
    expectCall(70, &CameraSdk::getFrameMemory, SomeHandle, First, Second, memory);
    EXPECT_EQ(*memory, SomeMemory);
}

TEST_F(OrdinalBinding, SetPixelClockIsOrdinal205)
{
    expectCall(205, &CameraSdk::setPixelClock, SomeHandle, First);
}

TEST_F(OrdinalBinding, GetSensorInfoIsOrdinal213)
{
    auto* const info = high<SensorInfo>();
    SensorInfo filled;
    std::memset(&filled, 0xA5, sizeof(filled));
    filled.maxWidth = 0x98765432;
    filled.maxHeight = 0x87654321;
    answer(1, filled);
    expectCall(213, &CameraSdk::getSensorInfo, SomeHandle, info);
    EXPECT_EQ(std::memcmp(info, &filled, sizeof(filled)), 0);
}

TEST_F(OrdinalBinding, SetHardwareGainIsOrdinal215)
{
    expectCall(215, &CameraSdk::setHardwareGain, SomeHandle, First, Second, Third, Fourth);
}

TEST_F(OrdinalBinding, GetFramesPerSecondIsOrdinal221)
{
    auto* const framesPerSecond = high<double>();
    answer(1, SomeDouble);
    expectCall(221, &CameraSdk::getFramesPerSecond, SomeHandle, framesPerSecond);
    EXPECT_EQ(*framesPerSecond, SomeDouble);
}

TEST_F(OrdinalBinding, SetFrameRateIsOrdinal231)
{
    auto* const actual = high<double>();
    answer(2, 0.1);
    expectCall(231, &CameraSdk::setFrameRate, SomeHandle, SomeDouble, actual);
    EXPECT_EQ(*actual, 0.1);
}

TEST_F(OrdinalBinding, SetExposureTimeIsOrdinal233)
{
    auto* const actual = high<double>();
    answer(2, 0.1);
    expectCall(233, &CameraSdk::setExposureTime, SomeHandle, SomeDouble, actual);
    EXPECT_EQ(*actual, 0.1);
}

TEST_F(OrdinalBinding, InitCameraIsOrdinal237)
{
    auto* const handle = high<Handle>();
    answer(0, SomeHandle);
    expectCall(237, &CameraSdk::initCamera, handle, SomePointer);
    EXPECT_EQ(*handle, SomeHandle);
}

TEST_F(OrdinalBinding, ExitCameraIsOrdinal239)
{
    expectCall(239, &CameraSdk::exitCamera, SomeHandle);
}

TEST_F(OrdinalBinding, GetNumberOfCamerasIsOrdinal247)
{
    auto* const count = high<std::int32_t>();
    answer(0, First);
    expectCall(247, &CameraSdk::getNumberOfCameras, count);
    EXPECT_EQ(*count, First);
}

TEST_F(OrdinalBinding, GetFrameTimeRangeIsOrdinal271)
{
    auto* const minimum = high<double>();
    auto* const maximum = high<double>();
    auto* const step = high<double>();
    answer(1, SomeDouble);
    answer(2, 0.2);
    answer(3, 0.3);
    expectCall(271, &CameraSdk::getFrameTimeRange, SomeHandle, minimum, maximum, step);
    EXPECT_EQ(*minimum, SomeDouble);
    EXPECT_EQ(*maximum, 0.2);
    EXPECT_EQ(*step, 0.3);
}

TEST_F(OrdinalBinding, GetExposureRangeIsOrdinal273)
{
    auto* const minimum = high<double>();
    auto* const maximum = high<double>();
    auto* const step = high<double>();
    answer(1, SomeDouble);
    answer(2, 0.2);
    answer(3, 0.3);
    expectCall(273, &CameraSdk::getExposureRange, SomeHandle, minimum, maximum, step);
    EXPECT_EQ(*minimum, SomeDouble);
    EXPECT_EQ(*maximum, 0.2);
    EXPECT_EQ(*step, 0.3);
}

TEST_F(OrdinalBinding, GetPixelClockRangeIsOrdinal299)
{
    auto* const minimum = high<std::int32_t>();
    auto* const maximum = high<std::int32_t>();
    answer(1, First);
    answer(2, Second);
    expectCall(299, &CameraSdk::getPixelClockRange, SomeHandle, minimum, maximum);
    EXPECT_EQ(*minimum, First);
    EXPECT_EQ(*maximum, Second);
}

TEST_F(OrdinalBinding, LoadParametersIsOrdinal312)
{
    expectCall(312, &CameraSdk::loadParameters, SomeHandle, SomeMemory);
}

TEST_F(OrdinalBinding, GetCameraListIsOrdinal335)
{
    auto* const list = high<CameraList>();
    CameraList filled = {};
    filled.count = 0x98765432;
    std::memset(filled.entries, 0x5A, sizeof(filled.entries));
    answer(0, filled);
    expectCall(335, &CameraSdk::getCameraList, list);
    EXPECT_EQ(std::memcmp(list, &filled, sizeof(filled)), 0);
}

TEST_F(OrdinalBinding, GetFirmwareUploadTimeIsOrdinal441)
{
    auto* const milliseconds = high<std::int32_t>();
    answer(2, Second);
    expectCall(441, &CameraSdk::getFirmwareUploadTime, SomeHandle, First, milliseconds);
    EXPECT_EQ(*milliseconds, Second);
}

TEST_F(OrdinalBinding, HotpixelCommandIsOrdinal484)
{
    expectCall(484, &CameraSdk::hotpixelCommand, SomeHandle, First, SomePointer, Third);
}

TEST_F(OrdinalBinding, HotpixelCommandPassesTheNullBuffer)
{
    expectCall(484, &CameraSdk::hotpixelCommand, SomeHandle, 33038, nullptr, 0);
}

} // namespace
