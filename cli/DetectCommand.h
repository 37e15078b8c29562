// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Command.h"

#include <QCoreApplication>

/// `detect`: takes dark frames with a camera and finds its hotpixels.
class DetectCommand final : public Command
{
    Q_DECLARE_TR_FUNCTIONS(DetectCommand)

public:
    [[nodiscard]] QString name() const override { return QStringLiteral("detect"); }
    [[nodiscard]] QString summary() const override;
    [[nodiscard]] QString description() const override;
    [[nodiscard]] QStringList arguments() const override { return {QStringLiteral("CAMERA")}; }
    [[nodiscard]] QList<QCommandLineOption>
    options(const std::vector<SdkSwitch>& switches) const override;
    void run(const QStringList& values, const QCommandLineParser& parser,
             CommandContext& context) const override;
};
