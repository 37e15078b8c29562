// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTranslator>

#include <mutex>
#include <set>
#include <tuple>

/// A text of the programs with the class whose it is.
struct OwnedText
{
    QString owner;
    QString text;

    friend bool operator<(const OwnedText& a, const OwnedText& b)
    {
        return std::tie(a.owner, a.text) < std::tie(b.owner, b.text);
    }
};

/// A language that nobody speaks, as long as one lives: every text, also of the toolkit, is another
/// one and half as long again. No letter of it is one of the 26 of English, so whatever still has
/// some of those was not translated. Keeps what a translator has to keep: placeholders, mnemonics,
/// line ends, blanks at both ends, the patterns of a file dialogue, and the names of options.
class LongerLanguage final : public QTranslator
{
public:
    LongerLanguage();
    ~LongerLanguage() override;

    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* text,
                                    const char* disambiguation, int n) const override;

    /// What was asked for so far, without the toolkit's own texts.
    [[nodiscard]] std::set<OwnedText> asked() const;

    /// @p text in this language.
    [[nodiscard]] static QString longer(const QString& text);

private:
    mutable std::mutex m_mutex; ///< the companion's progress bar is drawn by a thread of its own
    mutable std::set<OwnedText> m_asked;
};
