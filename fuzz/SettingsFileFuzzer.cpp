// SPDX-License-Identifier: MIT
#include "fuzz/FuzzedFile.h"
#include "simulator/BusDescription.h"

#include <algorithm>

namespace {

void expectUsable(const CameraDescription& camera)
{
    const qint64 pixels = qint64{camera.width} * camera.height;
    fuzz::expect(!camera.serial.isEmpty() && camera.serial.size() <= 15 &&
                     !camera.serial.contains('/') && !camera.serial.contains('.'),
                 "the serial number can name a file");
    fuzz::expect(camera.width >= 4 && camera.height >= 4 && pixels <= qint64{128} << 20,
                 "the sensor fits into memory");
    fuzz::expect(camera.pixelClockMin >= 1 && camera.pixelClockMin <= camera.pixelClockDefault &&
                     camera.pixelClockDefault <= camera.pixelClockMax,
                 "the pixel clock lies in its range");
    fuzz::expect(camera.frameRate > 0 && camera.frameRate <= 10000, "frames take time");
    fuzz::expect(camera.hotPixels >= 0 && camera.hotPixels <= pixels / 200,
                 "hot pixels are rare enough to be placed");
    fuzz::expect(camera.userEntries >= 0 && camera.userEntries <= camera.userCapacity,
                 "the user entries fit into the list");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::FuzzedFile file(fuzz::bytes(data, size));
    const BusDescription bus = simulator::readBus(file.name());
    fuzz::expect(bus.speed >= 0.01 && bus.speed <= 1000, "time passes");
    fuzz::expect(bus.cameras.size() <= 64, "there are not too many cameras");
    std::ranges::for_each(bus.cameras, expectUsable);
    if (!bus.message.isEmpty()) {
        fuzz::expect(!bus.message.contains('\n'), "a message is one line");
        fuzz::expect(bus.cameras.size() == simulator::builtInBus().cameras.size(),
                     "a mistake gives the built-in cameras");
    }
    return 0;
}
