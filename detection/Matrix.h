// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>

#include <cstddef>
#include <memory>
#include <stdexcept>

/// A matrix of numbers that is worked on by visitors; its storage stays inside.
///
/// The elements are not initialised: the first visitor has to write every one of them.
template <typename T>
class Matrix
{
    Q_DECLARE_TR_FUNCTIONS(Matrix)

public:
    /// What is done to each element. Visitors are plain objects of whoever runs them and may keep
    /// state from one element to the next.
    class Iterator
    {
    public:
        virtual void operator()(T& element) = 0;

    protected:
        Iterator() = default;
        Iterator(const Iterator&) = default;
        Iterator& operator=(const Iterator&) = default;
        ~Iterator() = default;
    };

    /// Thrown by the access to an element that does not exist.
    class out_of_range : public std::out_of_range
    {
    public:
        using std::out_of_range::out_of_range;
    };

    /// @throws std::length_error "Matrix has no size" when either is 0.
    static void checkSize(unsigned sizeY, unsigned sizeX)
    {
        if (sizeX == 0 || sizeY == 0) {
            throw std::length_error(tr("Matrix has no size").toStdString());
        }
    }

    /// @param sizeY number of rows, which comes first here.
    /// @param sizeX number of columns.
    /// @throws std::length_error as checkSize() does.
    Matrix(unsigned sizeY, unsigned sizeX)
        : m_sizeX(sizeX)
        , m_sizeY(sizeY)
    {
        checkSize(sizeY, sizeX);
        m_data = std::make_unique_for_overwrite<T[]>(std::size_t{sizeX} * sizeY);
    }

    Matrix(const Matrix&) = delete;
    Matrix& operator=(const Matrix&) = delete;

    /// The element at column @p posX, row @p posY; the column comes first here.
    /// @throws Matrix::out_of_range
    ///         "Matrix<T>::operator() (unsigned posY, unsigned poX) out of range"
    [[nodiscard]] T& operator()(unsigned posX, unsigned posY)
    {
        if (posY >= m_sizeY || posX >= m_sizeX) {
            throw out_of_range("Matrix<T>::operator() (unsigned posY, unsigned poX) out of range");
        }
        return m_data[posX + std::size_t{m_sizeX} * posY];
    }

    /// Calls @p it for every element: row by row from the top, each from left to right. What it
    /// throws passes through.
    void iterate(Iterator& it)
    {
        for (unsigned y = 0; y < m_sizeY; ++y) {
            for (unsigned x = 0; x < m_sizeX; ++x) {
                it((*this)(x, y));
            }
        }
    }

private:
    unsigned m_sizeX;
    unsigned m_sizeY;
    std::unique_ptr<T[]> m_data;
};
