// Feeds the device's and the 3D buffer's settings-file loaders damaged files: bytes changed,
// cuts at every offset, wrong string-prefix lengths, narrow and wide magic. A load must end in
// a refusal, an archive exception, or fields that all come from the file: storing what was
// loaded gives the file's fields back. Anything else, or a crash, is a wrong load.
//   settings_fuzz [FILES_PER_LOADER] [SEED]
#include "DirectSndty.h"

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace
{
using Bytes = std::string;

const wchar_t* const kPath = L"settings-fuzz.bin";

int CALLBACK answerOk(LPCTSTR, UINT, UINT)
{
    return IDOK;
}

void writeFile(const Bytes& bytes)
{
    CFile file(kPath, CFile::modeCreate | CFile::modeWrite);
    file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
}

Bytes readFile()
{
    CFile file(kPath, CFile::modeRead);
    Bytes bytes(static_cast<size_t>(file.GetLength()), '\0');
    file.Read(&bytes[0], static_cast<UINT>(bytes.size()));
    return bytes;
}

template <class T> Bytes stored(T& object)
{
    {
        CFile file(kPath, CFile::modeCreate | CFile::modeWrite);
        CArchive ar(&file, CArchive::store);
        object.serialize(ar);
        ar.Close();
    }
    return readFile();
}

// The string the archive reads at the start of a file, and the bytes it takes; the long
// forms (lengths from 0xFFFF on) never hold a magic that loads.
struct Magic
{
    std::wstring text;
    size_t bytes = 0;
};

Magic readMagic(const Bytes& b)
{
    auto at = [&](size_t i) { return i < b.size() ? static_cast<unsigned char>(b[i]) : 0u; };
    size_t pos = 0, charSize = 1;
    if (at(0) == 0xFF && at(1) == 0xFE && at(2) == 0xFF)
        pos = 3, charSize = 2;
    size_t length = at(pos++);
    if (length == 0xFF)
    {
        length = at(pos) | at(pos + 1) << 8;
        pos += 2;
    }
    Magic magic;
    for (size_t i = 0; length < 0xFFFF && i < length; i++, pos += charSize)
        magic.text += static_cast<wchar_t>(charSize == 2 ? at(pos) | at(pos + 1) << 8 : at(pos));
    magic.bytes = pos;
    return magic;
}

struct Counts
{
    long refused = 0, archiveException = 0, loaded = 0, wrong = 0;
};

// One damaged file from a good one.
Bytes damaged(const Bytes& good, std::mt19937& random, long n)
{
    Bytes file = good;
    auto pick = [&](size_t below) { return below == 0 ? 0 : static_cast<size_t>(random() % below); };
    switch (n % 5)
    {
    case 0: // bytes changed
        for (size_t k = 1 + pick(8); k > 0; k--)
            file[pick(file.size())] = static_cast<char>(random());
        break;
    case 1: // cut at every offset in turn
        file.resize(static_cast<size_t>(n / 5) % (good.size() + 1));
        break;
    case 2: // a wrong length in the wide prefix, in its short or escaped form
        if (random() % 2)
            file[3] = static_cast<char>(random());
        else
            file.replace(3, 1, Bytes("\xFF") + static_cast<char>(random()) + static_cast<char>(random()));
        break;
    case 3: // the magic narrow, perhaps with a letter changed
    {
        const size_t chars = static_cast<unsigned char>(good[3]);
        Bytes narrow(1, static_cast<char>(chars));
        for (size_t i = 0; i < chars; i++)
            narrow += good[4 + 2 * i];
        if (random() % 2)
            narrow[1 + pick(chars)] ^= 0x20;
        file.replace(0, 4 + 2 * chars, narrow);
        break;
    }
    default: // bytes added or taken at the end
        if (random() % 2)
            file.append(pick(16) + 1, static_cast<char>(random()));
        else
            file.resize(pick(file.size()));
    }
    return file;
}

template <class T> void fuzz(const char* name, void (*fill)(T&), long files, unsigned seed)
{
    T source;
    fill(source);
    const Bytes good = stored(source);
    std::mt19937 random(seed);
    Counts counts;
    for (long n = 0; n < files; n++)
    {
        const Bytes file = damaged(good, random, n);
        writeFile(file);
        T loaded;
        int result = 0;
        try
        {
            CFile input(kPath, CFile::modeRead);
            CArchive ar(&input, CArchive::load);
            result = loaded.serialize(ar);
        }
        catch (CArchiveException* e)
        {
            e->Delete();
            counts.archiveException++;
            continue;
        }
        catch (...)
        {
            counts.wrong++;
            std::printf("%s: file %ld ended in an exception the loader does not throw\n", name, n);
            continue;
        }
        if (result == 0)
        {
            counts.refused++;
            continue;
        }
        counts.loaded++;
        const Bytes again = stored(loaded);
        const Magic expected = readMagic(good), found = readMagic(file);
        if (found.text != expected.text ||
            file.compare(found.bytes, again.size() - expected.bytes, again, expected.bytes, Bytes::npos) != 0)
        {
            counts.wrong++;
            std::printf("%s: file %ld loaded with another magic or fields that are not the file's\n", name, n);
        }
    }
    std::printf("%s: %ld files: %ld refused, %ld archive exceptions, %ld loaded, %ld wrong\n", name, files,
                counts.refused, counts.archiveException, counts.loaded, counts.wrong);
    std::fflush(stdout);
    if (counts.wrong != 0)
        std::exit(1);
}

void fillDevice(CDirectSndDevicety& device)
{
    device.m_dwExtra1 = 0x11111111;
    device.m_dwExtra5 = 0x55555555;
    device.m_wfxSecond = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
}

void fillBuffer(CDirectSnd3DBuffty& buffer)
{
    buffer.m_ds3dListener = {64, {1, 2, 3}, {4, 5, 6}, {0, 0, 1}, {0, 1, 0}, 1.5f, 2.5f, 3.5f};
    buffer.m_ds3dBuffer = {64, {7, 8, 9}, {10, 11, 12}, 30, 90, {0, 0, -1}, -600, 1.25f, 500.0f, 0};
}
}

int main(int argc, char** argv)
{
    const long files = argc > 1 ? std::atol(argv[1]) : 100000;
    const unsigned seed = argc > 2 ? static_cast<unsigned>(std::atol(argv[2])) : 1;
    AfxSetMessageBoxAnswerer(answerOk);
    fuzz<CDirectSndDevicety>("device settings", fillDevice, files, seed);
    fuzz<CDirectSnd3DBuffty>("3D buffer settings", fillBuffer, files, seed);
    DeleteFileW(kPath);
    std::printf("0 wrong loads, 0 crashes\n");
    return 0;
}
