// VxDIBLoader: the library's own BMP reader. Every read of the file's bytes goes through a
// bounds-checked view, and every size is computed in 64 bits after the dimensions are capped, so a
// hostile file gives null and a message, never a fault. It does not use an image library, does not
// read compressed payloads and does not map the file: the file is read into memory, so a file cut
// short by another process while it loads cannot fault the way a mapped view would.
#include <frame/VxDIBLoader.h>

#include <platform/VxMessageSink.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool g_bDIBShowMessage = true;

namespace {

constexpr unsigned int kMbIconError = 0x10;
const char* const kTitle = "Error";
const char* const kUnknownFormat = "Unknown DIB file format.";
const char* const kConversionError = "Image file conversion error.";
const char* const kOutOfMemory = "Out of memory.";

// Largest legitimate file within the caps: 32-bit pixels at kDIBMaxPixels plus headers, masks, a
// full palette and row padding. Anything past that can only be junk behind the bits.
constexpr uint64_t kMaxFileBytes = 4ULL * kDIBMaxPixels + (1ULL << 20);

constexpr uint32_t kBiRgb = 0;
constexpr uint32_t kBiBitfields = 3;

enum class Status { Ok, UnknownFormat, ConversionError, OutOfMemory };

void ShowError(const char* text) {
    if (g_bDIBShowMessage) {
        MessageBoxA(nullptr, text, kTitle, kMbIconError);
    }
}

void ShowStatus(Status s) {
    switch (s) {
    case Status::UnknownFormat:
        ShowError(kUnknownFormat);
        break;
    case Status::ConversionError:
        ShowError(kConversionError);
        break;
    case Status::OutOfMemory:
        ShowError(kOutOfMemory);
        break;
    case Status::Ok:
        break;
    }
}

class ByteView {
public:
    ByteView(const uint8_t* data, size_t size) : m_data(data), m_size(data ? size : 0) {}

    size_t Size() const { return m_size; }
    bool Has(uint64_t offset, uint64_t count) const {
        return offset <= m_size && count <= m_size - offset;
    }
    // Out-of-range reads give 0; callers check Has first where a short file must be an error.
    uint16_t U16(uint64_t at) const {
        if (!Has(at, 2)) {
            return 0;
        }
        return static_cast<uint16_t>(m_data[at] | (m_data[at + 1] << 8));
    }
    uint32_t U32(uint64_t at) const {
        if (!Has(at, 4)) {
            return 0;
        }
        return static_cast<uint32_t>(m_data[at]) | (static_cast<uint32_t>(m_data[at + 1]) << 8) |
               (static_cast<uint32_t>(m_data[at + 2]) << 16) |
               (static_cast<uint32_t>(m_data[at + 3]) << 24);
    }
    // Only after Has(at, n) for the n bytes the caller will touch.
    const uint8_t* At(uint64_t at) const { return m_data + at; }

private:
    const uint8_t* m_data;
    size_t m_size;
};

// One colour field of a 16 or 32-bit pixel.
struct Channel {
    uint32_t mask = 0;
    int shift = 0;
    int bits = 0;
};

bool MakeChannel(uint32_t mask, int bitCount, Channel& c) {
    if (mask == 0 || (bitCount < 32 && (mask >> bitCount) != 0)) {
        return false;
    }
    const int shift = __builtin_ctz(mask);
    const uint32_t field = mask >> shift;
    if ((field & (field + 1)) != 0) {
        return false; // not one run of ones
    }
    c.mask = mask;
    c.shift = shift;
    c.bits = __builtin_popcount(field);
    return true;
}

// Narrow fields are widened by repeating their bits, so full scale gives 255 (5 bits: v<<3 | v>>2,
// the same values the system's own DIB conversion gives); wide fields keep their top 8 bits.
uint8_t Expand(uint32_t pixel, const Channel& c) {
    const uint32_t v = (pixel & c.mask) >> c.shift;
    if (c.bits >= 8) {
        return static_cast<uint8_t>(v >> (c.bits - 8));
    }
    uint32_t out = 0;
    int filled = 0;
    while (filled < 8) {
        out = (out << c.bits) | v;
        filled += c.bits;
    }
    return static_cast<uint8_t>(out >> (filled - 8));
}

struct Header {
    int64_t width = 0;
    int64_t height = 0; // absolute value
    bool topDown = false;
    unsigned planes = 0;
    unsigned bitCount = 0;
    uint32_t compression = kBiRgb;
    uint32_t colorsUsed = 0;
    uint32_t masks[3] = {0, 0, 0};
    bool masksInHeader = false;
    uint64_t tableStart = 0; // where the colour table (or the masks behind a 40-byte header) begins
    unsigned entrySize = 4;
};

bool IsInfoHeaderSize(uint32_t size) {
    return size == 40 || size == 52 || size == 56 || size == 108 || size == 124;
}

Status ReadHeader(const ByteView& v, uint64_t at, Header& h) {
    if (!v.Has(at, 4)) {
        return Status::UnknownFormat;
    }
    const uint32_t size = v.U32(at);
    if (size != 12 && !IsInfoHeaderSize(size)) {
        return Status::UnknownFormat;
    }
    if (!v.Has(at, size)) {
        return Status::UnknownFormat;
    }
    h.tableStart = at + size;
    if (size == 12) {
        h.width = v.U16(at + 4);
        h.height = v.U16(at + 6);
        h.planes = v.U16(at + 8);
        h.bitCount = v.U16(at + 10);
        h.entrySize = 3;
        return Status::Ok;
    }
    const int32_t width = static_cast<int32_t>(v.U32(at + 4));
    const int32_t height = static_cast<int32_t>(v.U32(at + 8));
    h.width = width;
    h.topDown = height < 0;
    h.height = height < 0 ? -static_cast<int64_t>(height) : height;
    h.planes = v.U16(at + 12);
    h.bitCount = v.U16(at + 14);
    h.compression = v.U32(at + 16);
    h.colorsUsed = v.U32(at + 32);
    h.entrySize = 4;
    if (size >= 52) {
        h.masksInHeader = true;
        for (int i = 0; i < 3; ++i) {
            h.masks[i] = v.U32(at + 40 + 4 * i);
        }
    }
    return Status::Ok;
}

struct Layout {
    Channel channels[3];       // red, green, blue for 16 and 32 bits
    uint32_t paletteCount = 0; // entries actually usable for 1, 4 and 8 bits
    uint64_t tableStart = 0;
    uint64_t bitsOffset = 0;
    uint64_t stride = 0;
};

bool DepthSupported(unsigned bitCount, uint32_t compression) {
    switch (bitCount) {
    case 1:
    case 4:
    case 8:
    case 24:
        return compression == kBiRgb;
    case 16:
    case 32:
        return compression == kBiRgb || compression == kBiBitfields;
    default:
        return false;
    }
}

// Checks the header against the bytes present and works out where everything lies. hasFileHeader
// and fileBitsOffset come from the "BM" header; without it the bits follow the colour table.
Status Plan(const ByteView& v, Header& h, bool hasFileHeader, uint64_t fileBitsOffset,
            Layout& out) {
    if (h.planes != 1 || !DepthSupported(h.bitCount, h.compression)) {
        return Status::ConversionError;
    }
    if (h.width <= 0 || h.height <= 0 || h.width > kDIBMaxDimension ||
        h.height > kDIBMaxDimension || h.width * h.height > kDIBMaxPixels) {
        return Status::ConversionError;
    }
    out.tableStart = h.tableStart;
    if (h.compression == kBiBitfields && !h.masksInHeader) {
        if (!v.Has(h.tableStart, 12)) {
            return Status::ConversionError;
        }
        for (int i = 0; i < 3; ++i) {
            h.masks[i] = v.U32(h.tableStart + 4 * i);
        }
        out.tableStart += 12;
    }
    if (h.bitCount == 16 || h.bitCount == 32) {
        uint32_t masks[3] = {h.masks[0], h.masks[1], h.masks[2]};
        if (h.compression == kBiRgb) {
            const bool is16 = h.bitCount == 16;
            masks[0] = is16 ? 0x7C00u : 0xFF0000u;
            masks[1] = is16 ? 0x03E0u : 0x00FF00u;
            masks[2] = is16 ? 0x001Fu : 0x0000FFu;
        }
        for (int i = 0; i < 3; ++i) {
            if (!MakeChannel(masks[i], static_cast<int>(h.bitCount), out.channels[i])) {
                return Status::ConversionError;
            }
        }
    }

    // A zero count means the full table for the depth; a larger count than the depth can index is
    // allowed, only its first entries can ever be used.
    const uint64_t tableEntries =
        h.colorsUsed != 0 ? h.colorsUsed : (h.bitCount <= 8 ? (1u << h.bitCount) : 0);
    if (h.bitCount <= 8) {
        out.paletteCount =
            static_cast<uint32_t>(std::min<uint64_t>(tableEntries, 1u << h.bitCount));
        if (!v.Has(out.tableStart, uint64_t(out.paletteCount) * h.entrySize)) {
            return Status::ConversionError;
        }
    }
    out.bitsOffset = hasFileHeader ? fileBitsOffset : out.tableStart + tableEntries * h.entrySize;
    if (out.bitsOffset < h.tableStart) {
        return Status::ConversionError; // bits would overlap the headers
    }

    const uint64_t rowBits = uint64_t(h.width) * h.bitCount;
    out.stride = (rowBits + 31) / 32 * 4;
    // The last row need not carry its padding: some writers stop at the last pixel.
    const uint64_t needed = out.stride * uint64_t(h.height - 1) + (rowBits + 7) / 8;
    if (!v.Has(out.bitsOffset, needed)) {
        return Status::ConversionError;
    }
    return Status::Ok;
}

Status DecodeRow(const ByteView& v, const Header& h, const Layout& l, const uint8_t* src,
                 uint8_t* dst) {
    const int64_t w = h.width;
    switch (h.bitCount) {
    case 1:
    case 4:
    case 8: {
        const unsigned bpp = h.bitCount;
        const unsigned mask = (1u << bpp) - 1;
        for (int64_t x = 0; x < w; ++x) {
            const uint64_t bit = uint64_t(x) * bpp;
            const unsigned shift = 8 - bpp - static_cast<unsigned>(bit % 8);
            const unsigned index = (src[bit / 8] >> shift) & mask;
            if (index >= l.paletteCount) {
                return Status::ConversionError;
            }
            const uint8_t* e = v.At(l.tableStart + uint64_t(index) * h.entrySize);
            dst[0] = e[2];
            dst[1] = e[1];
            dst[2] = e[0];
            dst += 3;
        }
        break;
    }
    case 24:
        for (int64_t x = 0; x < w; ++x) {
            dst[0] = src[2];
            dst[1] = src[1];
            dst[2] = src[0];
            src += 3;
            dst += 3;
        }
        break;
    case 16:
    case 32: {
        const bool is16 = h.bitCount == 16;
        for (int64_t x = 0; x < w; ++x) {
            uint32_t p = src[0] | (src[1] << 8);
            if (!is16) {
                p |= (static_cast<uint32_t>(src[2]) << 16) | (static_cast<uint32_t>(src[3]) << 24);
            }
            src += is16 ? 2 : 4;
            dst[0] = Expand(p, l.channels[0]);
            dst[1] = Expand(p, l.channels[1]);
            dst[2] = Expand(p, l.channels[2]);
            dst += 3;
        }
        break;
    }
    default:
        return Status::ConversionError;
    }
    return Status::Ok;
}

Status Decode(const ByteView& v, VxDIBImage*& result) {
    result = nullptr;
    bool hasFileHeader = false;
    uint64_t fileBitsOffset = 0;
    uint64_t headerAt = 0;
    // 0x4D42 read little-endian: "BM".
    if (v.Has(0, 2) && v.U16(0) == 0x4D42) {
        if (!v.Has(0, 14)) {
            return Status::UnknownFormat;
        }
        hasFileHeader = true;
        fileBitsOffset = v.U32(10);
        headerAt = 14;
    }
    Header h;
    Status s = ReadHeader(v, headerAt, h);
    if (s != Status::Ok) {
        return s;
    }
    Layout l;
    s = Plan(v, h, hasFileHeader, fileBitsOffset, l);
    if (s != Status::Ok) {
        return s;
    }

    const size_t outRow = static_cast<size_t>(h.width) * 3;
    unsigned char* pixels = static_cast<unsigned char*>(std::malloc(outRow * h.height));
    if (!pixels) {
        return Status::OutOfMemory;
    }
    for (int64_t y = 0; y < h.height; ++y) {
        const int64_t fileRow = h.topDown ? h.height - 1 - y : y;
        const uint8_t* src = v.At(l.bitsOffset + uint64_t(fileRow) * l.stride);
        s = DecodeRow(v, h, l, src, pixels + outRow * y);
        if (s != Status::Ok) {
            std::free(pixels);
            return s;
        }
    }
    auto* image = static_cast<VxDIBImage*>(std::malloc(sizeof(VxDIBImage)));
    if (!image) {
        std::free(pixels);
        return Status::OutOfMemory;
    }
    image->width = static_cast<int>(h.width);
    image->height = static_cast<int>(h.height);
    image->pixels = pixels;
    result = image;
    return Status::Ok;
}

void AppendUtf8(std::string& out, uint32_t c) {
    if (c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
        c = 0xFFFD;
    }
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

std::string WideToUtf8(const wchar_t* s) {
    std::string out;
    for (; *s; ++s) {
        AppendUtf8(out, static_cast<uint32_t>(*s));
    }
    return out;
}

enum class ReadResult { Ok, OpenFailed, OutOfMemory };

struct FileBytes {
    uint8_t* data = nullptr;
    size_t size = 0;
    ~FileBytes() { std::free(data); }
};

ReadResult ReadWholeFile(const std::string& path, FileBytes& file) {
    // O_NONBLOCK keeps a FIFO given as the name from blocking the open; it does nothing to a
    // regular file.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        return ReadResult::OpenFailed;
    }
    struct stat st;
    // An empty file cannot be mapped by the system this loader replaces, so it counts as one that
    // failed to open, as does anything that is not a regular file.
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size <= 0) {
        ::close(fd);
        return ReadResult::OpenFailed;
    }
    const uint64_t want = std::min<uint64_t>(static_cast<uint64_t>(st.st_size), kMaxFileBytes);
    file.data = static_cast<uint8_t*>(std::malloc(static_cast<size_t>(want)));
    if (!file.data) {
        ::close(fd);
        return ReadResult::OutOfMemory;
    }
    size_t got = 0;
    while (got < want) {
        const ssize_t n = ::read(fd, file.data + got, static_cast<size_t>(want - got));
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break; // a file that shrank since fstat is decoded from what was there
        }
        got += static_cast<size_t>(n);
    }
    ::close(fd);
    if (got == 0) {
        return ReadResult::OpenFailed;
    }
    file.size = got;
    return ReadResult::Ok;
}

} // namespace

VxDIBImage* LoadDIB(const wchar_t* fileName) {
    return LoadDIBFile(fileName, true);
}

VxDIBImage* LoadDIBFile(const void* fileName, bool wideName) {
    std::string name;
    if (fileName) {
        name = wideName ? WideToUtf8(static_cast<const wchar_t*>(fileName))
                        : std::string(static_cast<const char*>(fileName));
    }
    // The library builds its names the Windows way, directory + L"\\teeth.bmp", and hosts pass
    // such paths too. On Linux a backslash is an ordinary file-name character, so it is read as a
    // separator here; a file whose name really contains a backslash cannot be loaded.
    std::string path = name;
    std::replace(path.begin(), path.end(), '\\', '/');

    FileBytes file;
    const ReadResult r = fileName ? ReadWholeFile(path, file) : ReadResult::OpenFailed;
    if (r == ReadResult::OutOfMemory) {
        ShowError(kOutOfMemory);
        return nullptr;
    }
    if (r == ReadResult::OpenFailed) {
        // The wide ("%ws") and narrow ("%s") forms print the same once the name is UTF-8.
        const std::string text =
            "Failed to open DIB file " + (fileName ? name : std::string("(null)")) + ".\n";
        ShowError(text.c_str());
        return nullptr;
    }
    VxDIBImage* image = nullptr;
    ShowStatus(Decode(ByteView(file.data, file.size), image));
    return image;
}

VxDIBImage* LoadDIBFromMemory(const void* bytes, size_t size) {
    VxDIBImage* image = nullptr;
    ShowStatus(Decode(ByteView(static_cast<const uint8_t*>(bytes), size), image));
    return image;
}

void FreeDIB(VxDIBImage* image) {
    if (image) {
        std::free(image->pixels);
        std::free(image);
    }
}
