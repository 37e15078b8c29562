#include "cli/CommandError.h"
#include "cli/UserListFile.h"
#include "fuzz/FuzzedFile.h"
#include "hotpixel/BadpixelListFile.h"

#include <QRegularExpression>

#include <algorithm>
#include <vector>

namespace {

/// The editor takes a number that begins with 0 for an octal, hexadecimal or binary one.
bool hasLeadingZero(const QByteArray& content)
{
    static const QRegularExpression pattern(QStringLiteral("\\b0[0-9a-zA-Z]"));
    return pattern.match(QString::fromLatin1(content)).hasMatch();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray content = fuzz::bytes(data, size);
    const fuzz::FuzzedFile file(content);
    std::vector<BadpixelEntry> entries;
    try {
        entries = cli::readUserListFile(file.name());
    } catch (const cli::CommandError&) {
        return 0;
    }
    fuzz::expect(
        std::ranges::all_of(
            entries, [](const BadpixelEntry& entry) { return entry.pixelClass == UserPixel; }),
        "nothing but user entries passes");
    // A file of one empty line is an empty list here and an entry at (0, 0) in the editor.
    if (!entries.empty() && !hasLeadingZero(content)) {
        fuzz::expect(entries == hotpixel::readListFile(file.name()),
                     "what may go into a camera is read alike by the editor");
    }
    return 0;
}
