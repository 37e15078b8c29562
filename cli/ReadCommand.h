// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Command.h"

#include <QCoreApplication>

/// `read`: the factory and the user list in a camera's EEPROM.
class ReadCommand final : public Command
{
    Q_DECLARE_TR_FUNCTIONS(ReadCommand)

public:
    [[nodiscard]] QString name() const override { return QStringLiteral("read"); }
    [[nodiscard]] QString summary() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QStringList arguments() const override { return {QStringLiteral("CAMERA")}; }
    [[nodiscard]] QList<QCommandLineOption>
    options(const std::vector<SdkSwitch>& switches) const override;
    void run(const QStringList& values, const QCommandLineParser& parser,
             CommandContext& context) const override;
};
