// SPDX-License-Identifier: MIT
#pragma once

#include "detection/BadpixelDetector.h"

#include <QCoreApplication>

/// Finds the pixels whose mean over the dark frames lies more than a threshold above the mean of
/// all pixels of their plane. Used on the thread that the list it fills belongs to.
class HotpixelDetector : public BadpixelDetector
{
    Q_DECLARE_TR_FUNCTIONS(HotpixelDetector)

public:
    /// Sums and counts the elements; both wrap at 32 bits.
    class MeanIterator final : public Matrix<unsigned int>::Iterator
    {
    public:
        void operator()(unsigned int& element) override
        {
            sum += element;
            count += 1;
        }

        unsigned int sum = 0;
        unsigned int count = 0;
    };

    /// Adds the positions of all elements that are greater than a limit to a list.
    class AddHotpixelIterator final : public PixelPosIterator
    {
    public:
        AddHotpixelIterator(BadpixelListModel* listModel, unsigned int greatestAllowed)
            : model(listModel)
            , limit(greatestAllowed)
        {}
        void operator()(unsigned int& element, int x, int y) override;

        BadpixelListModel* model;
        unsigned int limit;
    };

    /// @param threshold in grey levels above the mean.
    explicit HotpixelDetector(int threshold);

    void detect(BadpixelListModel* model) override;

private:
    void report(const Plane& plane, BadpixelListModel* model) const;

    int m_threshold;
};
