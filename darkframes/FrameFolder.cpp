// SPDX-License-Identifier: MIT
#include "darkframes/FrameFolder.h"

#include "darkframes/FrameError.h"

#include <QImageWriter>
#include <QSaveFile>

QString darkframes::frameFileName(std::uint32_t number)
{
    return QStringLiteral("frame_%1.png").arg(number, 4, 10, QChar(u'0'));
}

void darkframes::saveFrame(const QImage& frame, const QString& fileName)
{
    QImage grey = frame;
    if (frame.format() == QImage::Format_Indexed8) {
        grey = QImage(frame.constBits(), frame.width(), frame.height(), frame.bytesPerLine(),
                      QImage::Format_Grayscale8);
    }
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        refuse(fileName, file.errorString());
    }
    QImageWriter writer(&file, "png");
    if (!writer.write(grey)) {
        refuse(fileName, writer.errorString());
    }
    if (!file.commit()) {
        refuse(fileName, file.errorString());
    }
}
