// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Command.h"

#include <QCoreApplication>

/// `cameras`: the connected cameras, as the editor's camera list shows them.
class CamerasCommand final : public Command
{
    Q_DECLARE_TR_FUNCTIONS(CamerasCommand)

public:
    [[nodiscard]] QString name() const override { return QStringLiteral("cameras"); }
    [[nodiscard]] QString summary() const override;
    [[nodiscard]] QString description() const override;
    void run(const QStringList& values, const QCommandLineParser& parser,
             CommandContext& context) const override;
};
