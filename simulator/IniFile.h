// SPDX-License-Identifier: MIT
#pragma once

#include <QSettings>
#include <QString>

#include <memory>

namespace simulator {

/// Opens an INI file that a person has written. Only plain values are let through: QSettings would
/// build objects of any type from values with "@" or escapes, which no setting here needs.
/// @throws std::runtime_error with what is wrong: "there is no such file", "the file is too large"
/// (more than 1 MiB), the system's text when it can't be read, "the characters @ and \ can't be
/// used", "the file is not an INI file"
std::unique_ptr<QSettings> openIniFile(const QString& fileName);

} // namespace simulator
