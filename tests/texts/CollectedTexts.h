// SPDX-License-Identifier: MIT
#pragma once

#include "tests/texts/LongerLanguage.h"

#include <QString>
#include <QStringList>

#include <set>

/// What a translator gets: the texts that tools/collect-texts finds in the sources, and what it
/// complains about. They are collected once for the whole program.
struct CollectedTexts
{
    /// Whether lupdate is installed; there are no texts otherwise.
    [[nodiscard]] static bool canBeCollected();
    [[nodiscard]] static const CollectedTexts& get();

    std::set<OwnedText> texts;
    QString complaints;
};

/// The program's sources, whole, in the order of their names.
[[nodiscard]] QStringList programSources();

/// Fails for each of @p asked that a translator does not get. Does nothing without lupdate.
void expectCollected(const std::set<OwnedText>& asked);
