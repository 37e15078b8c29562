// SPDX-License-Identifier: MIT
#include "simulator/IniFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <stdexcept>

namespace {

/// Where these texts belong.
struct Text
{
    Q_DECLARE_TR_FUNCTIONS(IniFile)
};

[[noreturn]] void refuse(const QString& reason)
{
    throw std::runtime_error(reason.toStdString());
}

} // namespace

namespace simulator {

std::unique_ptr<QSettings> openIniFile(const QString& fileName)
{
    if (!QFileInfo(fileName).isFile()) {
        refuse(Text::tr("there is no such file"));
    }
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        refuse(file.errorString());
    }
    constexpr qint64 LargestFile = qint64{1} << 20;
    const QByteArray text = file.read(LargestFile + 1);
    if (text.size() > LargestFile) {
        refuse(Text::tr("the file is too large"));
    }
    if (text.contains('@') || text.contains('\\')) {
        refuse(Text::tr("the characters @ and \\ can't be used"));
    }
    auto settings = std::make_unique<QSettings>(fileName, QSettings::IniFormat);
    if (settings->status() != QSettings::NoError) {
        refuse(Text::tr("the file is not an INI file"));
    }
    return settings;
}

} // namespace simulator
