// SPDX-License-Identifier: MIT
#include "tests/texts/LongerLanguage.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>

namespace {

QChar otherLetter(QChar letter)
{
    static const QString English = QStringLiteral("abcdefghijklmnopqrstuvwxyz");
    static const QString Other = QStringLiteral("äƀčďëƒğħïĵķľṁňöṗɋřšťüṽŵẋÿž");
    const auto index = English.indexOf(letter.toLower());
    if (index < 0) {
        return letter;
    }
    return letter.isUpper() ? Other[index].toUpper() : Other[index];
}

QString withOtherLetters(QString text)
{
    for (QChar& letter : text) {
        letter = otherLetter(letter);
    }
    return text;
}

/// What a translation has to take over as it is, in any text.
const QRegularExpression& keptParts()
{
    static const QRegularExpression Parts(
        QStringLiteral("%L?[0-9]+|%n|<[^>]*>|&[a-z]+;|--[a-z-]+|\\(\\*[^)]*\\)$|^\\s+|\\s+$"));
    return Parts;
}

QString longerLine(const QString& line)
{
    QString translated;
    QString plain; // without what has to be there once only
    qsizetype from = 0;
    QString behind;
    const auto translate = [&](QStringView part) {
        const QString other = withOtherLetters(part.toString());
        translated += other;
        plain += QString(other).remove(u'&');
    };
    for (auto matches = keptParts().globalMatch(line); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        translate(QStringView(line).mid(from, match.capturedStart() - from));
        from = match.capturedEnd();
        const bool isLast = from == line.size() && !match.captured().startsWith(u'%');
        (isLast ? behind : translated) += match.captured();
    }
    translate(QStringView(line).mid(from));
    return translated + plain.left((plain.size() + 1) / 2) + behind;
}

} // namespace

LongerLanguage::LongerLanguage()
{
    QCoreApplication::installTranslator(this);
}

LongerLanguage::~LongerLanguage()
{
    QCoreApplication::removeTranslator(this);
}

QString LongerLanguage::longer(const QString& text)
{
    QStringList lines = text.split(u'\n');
    for (QString& line : lines) {
        line = longerLine(line);
    }
    return lines.join(u'\n');
}

QString LongerLanguage::translate(const char* context, const char* text,
                                  const char* /*disambiguation*/, int /*n*/) const
{
    const OwnedText asked{QString::fromUtf8(context), QString::fromUtf8(text)};
    // All of the toolkit's classes begin with a Q; the rest is what it calls the menus of a Mac.
    if (!asked.owner.startsWith(u'Q') && asked.owner != QLatin1String("MAC_APPLICATION_MENU") &&
        asked.owner != QLatin1String("CloseButton")) {
        const std::lock_guard lock(m_mutex);
        m_asked.insert(asked);
    }
    return longer(asked.text);
}

std::set<OwnedText> LongerLanguage::asked() const
{
    const std::lock_guard lock(m_mutex);
    return m_asked;
}
