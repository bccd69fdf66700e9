#include "BufferTestSupport.h"

std::unique_ptr<CSndDatatyx> rampData(tWAVEFORMATEX wfx, unsigned long bytes)
{
    std::vector<char> data(bytes);
    for (unsigned long i = 0; i < bytes; i++)
        data[i] = static_cast<char>(i * 7 + 1);
    auto pSndData = std::make_unique<CSndDatatyx>();
    pSndData->setNewSndData(data.data(), bytes, wfx);
    return pSndData;
}

void BufferTest::SetUp()
{
    openDevice(device);
}

// Whatever a test made, nothing may be left once the buffers and the device are gone.
void BufferTest::TearDown()
{
    device.releaseDSndty(&device);
}
