// SPDX-License-Identifier: MIT
#include "tests/cli/process/CompanionFixture.h"

#include "simulator/EepromFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <gtest/gtest.h>

namespace {

constexpr int DeadlineMsec = 120'000; ///< far more than any run takes, also under a sanitizer

} // namespace

QJsonObject Finished::json() const
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(out, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << out.constData() << err.constData();
    EXPECT_EQ(out.count('\n'), 1);
    return document.object();
}

CompanionFixture::CompanionFixture(const QByteArray& cameras)
{
    EXPECT_FALSE(write(QStringLiteral("cameras.ini"), cameras).isEmpty());
    setVariable(QStringLiteral("HOME"), m_home.path());
    setVariable(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    setVariable(QStringLiteral("XDG_DATA_HOME"), file(QStringLiteral("data")));
    setVariable(QStringLiteral("VORN_SIMULATED_CAMERAS"), file(QStringLiteral("cameras.ini")));
    setVariable(QStringLiteral("VORN_SIMULATED_EEPROMS"), file(QStringLiteral("eeprom")));
}

QString CompanionFixture::program()
{
    return QStringLiteral(VORN_COMPANION);
}

void CompanionFixture::setVariable(const QString& name, const QString& value)
{
    m_environment.insert(name, value);
}

QString CompanionFixture::write(const QString& name, const QByteArray& content) const
{
    QFile target(file(name));
    if (!target.open(QIODevice::WriteOnly) || target.write(content) != content.size()) {
        ADD_FAILURE() << qPrintable(target.errorString());
        return {};
    }
    return target.fileName();
}

std::unique_ptr<QProcess> CompanionFixture::start(const QStringList& arguments) const
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(m_environment);
    process->setWorkingDirectory(m_home.path());
    process->setStandardInputFile(QProcess::nullDevice());
    process->start(program(), arguments);
    EXPECT_TRUE(process->waitForStarted(DeadlineMsec));
    return process;
}

Finished CompanionFixture::run(const QString& arguments, const QString& name) const
{
    QStringList words = arguments.split(u' ', Qt::SkipEmptyParts);
    words.replaceInStrings(QStringLiteral("%1"), name);
    return finish(*start(words));
}

Finished CompanionFixture::finish(QProcess& process)
{
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(DeadlineMsec)) {
        ADD_FAILURE() << "the companion does not end";
        process.kill();
        process.waitForFinished(DeadlineMsec);
    }
    const bool ended = process.exitStatus() == QProcess::NormalExit;
    return {ended ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

bool CompanionFixture::waitForError(QProcess& process, const QByteArray& text)
{
    QElapsedTimer timer;
    timer.start();
    process.setReadChannel(QProcess::StandardError);
    while (!process.peek(process.bytesAvailable()).contains(text)) {
        if (timer.hasExpired(DeadlineMsec) ||
            (!process.waitForReadyRead(DeadlineMsec) && process.state() == QProcess::NotRunning)) {
            return false;
        }
    }
    return true;
}

std::vector<BadpixelEntry> CompanionFixture::eeprom(const QString& serial) const
{
    const QDir folder(file(QStringLiteral("eeprom")));
    const QStringList names = folder.entryList({serial + QStringLiteral(".eeprom")}, QDir::Files);
    EXPECT_EQ(names.size(), 1);
    std::vector<BadpixelEntry> entries;
    for (const EepromPosition& position : EepromFile(folder.filePath(names.value(0))).read().user) {
        entries.push_back({position.x, position.y, UserPixel});
    }
    return entries;
}

QStringList CompanionFixture::backups() const
{
    const QDir folder(file(QStringLiteral("data/VornHotpixelEditor/backups")));
    QStringList names;
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        names.append(folder.filePath(name));
    }
    return names;
}

QByteArray smallCamera(const QByteArray& more)
{
    return "[bus]\nspeed=40\n"
           "[camera1]\nserial=S1\nmodel=Small\nwidth=64\nheight=48\nsensor=bayer\n"
           "lineBlanking=10000\nslowestFrame=100\n"
           "hotPixels=12\nfactoryEntries=2\nuserEntries=3\nuserCapacity=16\n" +
           more;
}
