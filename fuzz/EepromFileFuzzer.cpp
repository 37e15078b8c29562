// SPDX-License-Identifier: MIT
#include "fuzz/FuzzedFile.h"
#include "simulator/EepromFile.h"

#include <QCryptographicHash>

#include <optional>
#include <stdexcept>

namespace {

std::optional<EepromContent> read(const QString& fileName)
{
    try {
        return EepromFile(fileName).read();
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

void readAndWrite(const QByteArray& text)
{
    const fuzz::FuzzedFile file(text);
    const std::optional<EepromContent> content = read(file.name());
    if (content) {
        EepromFile(file.name()).write(*content);
        fuzz::expect(read(file.name()) == content, "what is written comes back as it was");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray text = fuzz::bytes(data, size);
    readAndWrite(text);
    // The checksum would keep nearly everything from being read, so it is right at every other try.
    readAndWrite(text + "sha256 " +
                 QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex() + '\n');
    return 0;
}
