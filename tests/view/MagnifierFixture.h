// SPDX-License-Identifier: MIT
#pragma once

#include "view/Magnifier.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

/// A magnifier of 160 × 120 pixels, as small as its panel lets it become, and what it says.
class MagnifierFixture : public ::testing::Test
{
protected:
    MagnifierFixture()
        : pixelInfo(&magnifier, &Magnifier::pixelInfoChanged)
        , wanted(&magnifier, &Magnifier::changePosition)
    {
        magnifier.resize(160, 120);
    }

    /// The only position that was asked for since the last call.
    QPoint onlyWanted()
    {
        EXPECT_EQ(wanted.size(), 1);
        return wanted.isEmpty() ? QPoint(-9999, -9999) : wanted.takeFirst().constFirst().toPoint();
    }

    Magnifier magnifier;
    QSignalSpy pixelInfo;
    QSignalSpy wanted;
};
