// SPDX-License-Identifier: MIT
#include "fuzz/FuzzedFile.h"
#include "hotpixel/BadpixelLineReader.h"
#include "hotpixel/BadpixelListFile.h"
#include "hotpixel/BadpixelListModel.h"

#include <QBuffer>
#include <QStringDecoder>
#include <QTextStream>

#include <algorithm>
#include <vector>

namespace {

using Entries = std::vector<BadpixelEntry>;

/// What the text stream makes of the bytes, which is what the reader has to make of them, too.
Entries readByTextStream(QByteArray content)
{
    Entries entries;
    QTextStream stream(&content);
    while (!stream.atEnd()) {
        QString line = stream.readLine();
        QTextStream fields(&line);
        unsigned x = 0xFFFFFFFF;
        unsigned y = 0xFFFFFFFF;
        unsigned pixelClass = 0xFFFFFFFF;
        fields >> x >> y >> pixelClass;
        entries.push_back({static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y),
                           static_cast<std::uint8_t>(pixelClass)});
    }
    return entries;
}

Entries readInPieces(const QString& text, qsizetype size)
{
    BadpixelLineReader reader;
    for (qsizetype begin = 0; begin < text.size(); begin += size) {
        reader.read(QStringView(text).mid(begin, std::min(size, text.size() - begin)));
    }
    return reader.finish(!text.isEmpty());
}

Entries userEntries(const BadpixelListModel& model)
{
    Entries entries;
    std::ranges::copy_if(model.entries(), std::back_inserter(entries),
                         [](const BadpixelEntry& entry) { return entry.pixelClass == UserPixel; });
    return entries;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray content = fuzz::bytes(data, size);
    QBuffer device(&content);
    device.open(QIODevice::ReadOnly);
    const Entries entries = hotpixel::readList(device);

    // Carriage returns are left out: the text stream sees them only when they stand before a line
    // feed, and the editor reads files in a mode that has none.
    if (!content.contains('\r')) {
        fuzz::expect(entries == readByTextStream(content), "it is read as the text stream does");
    }
    const QString text = QString::fromUtf8(content);
    fuzz::expect(readInPieces(text, 1) == readInPieces(text, 7), "pieces may end anywhere");

    const fuzz::FuzzedFile file(content);
    BadpixelListModel model;
    model.loadFromFile(file.name());
    fuzz::expect(std::ranges::equal(model.entries(), entries), "the model has what is in the file");
    const Entries saved = userEntries(model);
    model.saveAsFile(file.name());
    model.clearBadpixelList();
    model.loadFromFile(file.name());
    fuzz::expect(std::ranges::equal(model.entries(), saved), "a saved list comes back as it was");
    return 0;
}
