// SPDX-License-Identifier: MIT
#pragma once

#include "hotpixel/BadpixelEntry.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <span>
#include <vector>

namespace cli {

/// A list on its way into a camera.
struct NewList
{
    std::vector<BadpixelEntry> entries; ///< as they are to be written
    int beside = 0;                     ///< how many of them lie at x = width of the sensor

    // What is left out of it, since the camera gains nothing by it.
    int duplicates = 0;
    int inFactoryList = 0;
};

/// @p entries without those that stand there a second time, and without those of @p factory.
/// @param entries user entries
[[nodiscard]] NewList withoutRepetitions(std::span<const BadpixelEntry> entries,
                                         std::span<const BadpixelEntry> factory);

/// In which pixels two lists differ; their order and repetitions do not count.
struct ListChange
{
    std::vector<BadpixelEntry> added;   ///< in the order of the new list
    std::vector<BadpixelEntry> removed; ///< in the order of the old one

    ListChange(std::span<const BadpixelEntry> before, std::span<const BadpixelEntry> after);

    [[nodiscard]] bool isEmpty() const { return added.empty() && removed.empty(); }

    /// "3 added, 2 removed"; "the same" when nothing is.
    [[nodiscard]] QString summary() const;
};

/// What changes and what is left out, as lines for people; of long lists the first pixels only.
[[nodiscard]] QStringList changeLines(const ListChange& change, const NewList& list);

/// {"added", "removed", "duplicates", "inFactoryList"}
[[nodiscard]] QJsonObject changeObject(const ListChange& change, const NewList& list);

} // namespace cli
