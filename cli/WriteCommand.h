// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Command.h"

#include <QCoreApplication>

/// `write`: the user entries of a list file into a camera's EEPROM, guarded.
class WriteCommand final : public Command
{
    Q_DECLARE_TR_FUNCTIONS(WriteCommand)

public:
    [[nodiscard]] QString name() const override { return QStringLiteral("write"); }
    [[nodiscard]] QString summary() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QStringList arguments() const override
    {
        return {QStringLiteral("CAMERA"), QStringLiteral("FILE")};
    }
    [[nodiscard]] QList<QCommandLineOption>
    options(const std::vector<SdkSwitch>& switches) const override;
    void run(const QStringList& values, const QCommandLineParser& parser,
             CommandContext& context) const override;
};
