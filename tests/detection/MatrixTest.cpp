// SPDX-License-Identifier: MIT
#include "detection/Matrix.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using FrameMatrix = Matrix<unsigned int>;

static_assert(!std::is_copy_constructible_v<FrameMatrix>);
static_assert(!std::is_copy_assignable_v<FrameMatrix>);
static_assert(std::is_abstract_v<FrameMatrix::Iterator>);
static_assert(!std::has_virtual_destructor_v<FrameMatrix::Iterator>);
static_assert(std::is_base_of_v<std::out_of_range, FrameMatrix::out_of_range>);

namespace {

/// Writes 0, 1, 2 … in the order of its calls.
class NumberIterator : public FrameMatrix::Iterator
{
public:
    void operator()(unsigned int& element) override { element = m_next++; }

    [[nodiscard]] unsigned calls() const { return m_next; }

private:
    unsigned m_next = 0;
};

class CollectIterator : public FrameMatrix::Iterator
{
public:
    void operator()(unsigned int& element) override { elements.push_back(element); }

    std::vector<unsigned> elements;
};

/// Writes 7 and throws at its call number @p failingCall, from 1.
class FailingIterator : public FrameMatrix::Iterator
{
public:
    explicit FailingIterator(int failingCall)
        : m_callsLeft(failingCall)
    {}
    void operator()(unsigned int& element) override
    {
        if (--m_callsLeft == 0) {
            throw std::domain_error("enough");
        }
        element = 7;
    }

private:
    int m_callsLeft;
};

std::string accessError(FrameMatrix& matrix, unsigned posX, unsigned posY)
{
    try {
        static_cast<void>(matrix(posX, posY));
    } catch (const FrameMatrix::out_of_range& e) {
        return e.what();
    }
    return {};
}

} // namespace

TEST(Matrix, RefusesASizeOfZero)
{
    for (const auto& [rows, columns] : {std::pair{0U, 5U}, std::pair{5U, 0U}, std::pair{0U, 0U}}) {
        try {
            const FrameMatrix matrix(rows, columns);
            ADD_FAILURE() << rows << " rows, " << columns << " columns";
        } catch (const std::length_error& e) {
            EXPECT_STREQ(e.what(), "Matrix has no size");
        }
    }
}

TEST(Matrix, VisitsASingleElementOnce)
{
    FrameMatrix matrix(1, 1);
    NumberIterator number;
    matrix.iterate(number);
    EXPECT_EQ(number.calls(), 1U);
}

TEST(Matrix, VisitsRowByRowFromLeftToRight)
{
    FrameMatrix matrix(2, 3);
    NumberIterator number;
    matrix.iterate(number);
    EXPECT_EQ(number.calls(), 6U);
    EXPECT_EQ(matrix(0, 0), 0U);
    EXPECT_EQ(matrix(1, 0), 1U);
    EXPECT_EQ(matrix(2, 0), 2U);
    EXPECT_EQ(matrix(0, 1), 3U);
    EXPECT_EQ(matrix(1, 1), 4U);
    EXPECT_EQ(matrix(2, 1), 5U);

    CollectIterator collect;
    matrix.iterate(collect);
    EXPECT_EQ(collect.elements, (std::vector<unsigned>{0, 1, 2, 3, 4, 5}));
}

TEST(Matrix, TakesRowsFirstAtConstructionAndTheColumnFirstAtAccess)
{
    const std::string text = "Matrix<T>::operator() (unsigned posY, unsigned poX) out of range";
    FrameMatrix matrix(2, 3);
    EXPECT_EQ(accessError(matrix, 2, 1), "");
    EXPECT_EQ(accessError(matrix, 3, 0), text);
    EXPECT_EQ(accessError(matrix, 0, 2), text);
    EXPECT_EQ(accessError(matrix, 3, 2), text);
    EXPECT_EQ(accessError(matrix, 0xffffffffU, 0), text);
}

TEST(Matrix, LetsAVisitorsExceptionPassAndKeepsWhatWasWritten)
{
    FrameMatrix matrix(2, 2);
    NumberIterator number;
    matrix.iterate(number);
    FailingIterator failing(3);
    EXPECT_THROW(matrix.iterate(failing), std::domain_error);
    EXPECT_EQ(matrix(0, 0), 7U);
    EXPECT_EQ(matrix(1, 0), 7U);
    EXPECT_EQ(matrix(0, 1), 2U);
    EXPECT_EQ(matrix(1, 1), 3U);
}
