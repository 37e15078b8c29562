// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <new>

namespace darkframes {

/// Memory that has not been set to anything; freeLarge() gives it back, of as many bytes.
///
/// Linux hands out new memory in pages of 4 KiB, one at a time as each is touched, which takes
/// longer than what a stack of frames writes into it. It is asked for pages of 2 MiB here, where
/// some fit.
/// @throws std::bad_alloc
void* allocateLarge(std::size_t bytes);
void freeLarge(void* memory, std::size_t bytes) noexcept;

/// Very many values of a type that needs no construction, not set to anything.
template <typename T>
class LargeArray
{
public:
    /// @throws std::bad_alloc
    explicit LargeArray(std::size_t count)
        : m_values(static_cast<T*>(allocateLarge(bytesOf(count))), Free{bytesOf(count)})
    {}

    [[nodiscard]] T* data() { return m_values.get(); }
    [[nodiscard]] const T* data() const { return m_values.get(); }
    [[nodiscard]] const T& operator[](std::size_t index) const { return m_values.get()[index]; }

private:
    struct Free
    {
        void operator()(T* values) const noexcept { freeLarge(values, bytes); }

        std::size_t bytes;
    };

    static std::size_t bytesOf(std::size_t count)
    {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_array_new_length();
        }
        return count * sizeof(T);
    }

    std::unique_ptr<T, Free> m_values;
};

} // namespace darkframes
