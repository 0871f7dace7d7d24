// CImage: DIB-section pictures, their pixel access, and PNG/JPEG/BMP files through stb_image.
// Decoding goes only to stb's PNG, JPEG and BMP readers (chosen by the file's signature) and only
// after the header's size has been checked, so a damaged or hostile file costs neither the other
// decoders' attack surface nor a huge allocation.
//
// stb_image and stb_image_write are compiled into this file with static linkage. Other packages
// in a host process (a mesh importer, for one) carry and export their own copy of stb; with
// ordinary symbols the dynamic linker would hand our calls to whichever copy loaded first, an
// uninstrumented build of unknown version. Static functions leave nothing to bind to. This file
// is built with -fwrapv, so the decoders' int overflows on hostile input wrap instead of being
// undefined; what can overrun memory is refused before decoding (see WithinBounds).
#include <interfaces/CImage.h>

#include <interfaces/CString.h>

#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#endif
#include <stb_image.h>
#include <stb_image_write.h>
#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr long long kMaxPixels = 1LL << 25;
constexpr size_t kMaxFileBytes = size_t(1) << 28;

bool HasKnownSignature(const unsigned char* p, size_t n) {
    static const unsigned char png[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    if (n >= 8 && std::memcmp(p, png, 8) == 0) {
        return true;
    }
    if (n >= 3 && p[0] == 0xFF && p[1] == 0xD8 && p[2] == 0xFF) {
        return true;
    }
    return n >= 2 && p[0] == 'B' && p[1] == 'M';
}

std::string LowerExtension(const std::string& path) {
    const size_t dot = path.find_last_of('.');
    const size_t slash = path.find_last_of("/\\");
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) {
        return std::string();
    }
    std::string ext = path.substr(dot + 1);
    for (char& c : ext) {
        if (c >= 'A' && c <= 'Z') {
            c = char(c - 'A' + 'a');
        }
    }
    return ext;
}

uint32_t Le32(const unsigned char* p) {
    return uint32_t(p[0]) | (uint32_t(p[1]) << 8) | (uint32_t(p[2]) << 16) | (uint32_t(p[3]) << 24);
}

unsigned Le16(const unsigned char* p) {
    return unsigned(p[0]) | (unsigned(p[1]) << 8);
}

// stb's BMP reader reads zeros past the end of the data, so a cut-off file would come out as a
// picture with a black part. Uncompressed rows have a known size: a file too short for them is
// refused here. (A cut-off JPEG or PNG fails in the decoder: stb wants the JPEG's end marker.)
bool BmpPixelDataComplete(const unsigned char* p, size_t n) {
    if (n < 2 || p[0] != 'B' || p[1] != 'M') {
        return true;
    }
    if (n < 26) {
        return false;
    }
    const uint64_t offset = Le32(p + 10);
    const uint32_t headerSize = Le32(p + 14);
    uint64_t width = 0;
    uint64_t height = 0;
    unsigned bpp = 0;
    uint32_t compression = 0;
    if (headerSize == 12) {
        width = Le16(p + 18);
        height = Le16(p + 20);
        bpp = Le16(p + 24);
    } else {
        if (n < 34) {
            return false;
        }
        const int32_t h = int32_t(Le32(p + 22));
        width = Le32(p + 18);
        height = h < 0 ? uint64_t(-int64_t(h)) : uint64_t(h);
        bpp = Le16(p + 28);
        compression = Le32(p + 30);
    }
    if (compression != 0 && compression != 3) {
        return true; // left to the decoder, which refuses what it cannot read
    }
    const uint64_t stride = ((width * bpp + 31) / 32) * 4;
    return offset + stride * height <= n;
}

uint32_t Be32(const unsigned char* p) {
    return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | uint32_t(p[3]);
}

unsigned Be16(const unsigned char* p) {
    return (unsigned(p[0]) << 8) | unsigned(p[1]);
}

// The side and area a decoder may be asked for; an allocation of the decoded picture is then
// at most 512 MB, and the area cap below keeps it far smaller.
constexpr uint64_t kMaxSide = 16384;

bool DimensionsAllowed(uint64_t width, uint64_t height) {
    return width > 0 && height > 0 && width <= kMaxSide && height <= kMaxSide &&
           width * height <= uint64_t(kMaxPixels);
}

// stb's PNG reader trusts each chunk's length: it grows its buffer to the declared IDAT size
// before it notices the data is not there, so 150 bytes can ask for gigabytes. Every chunk must
// therefore lie inside the data, IHDR must give an allowed size, and the compressed data must be
// able to hold the declared picture at all (deflate expands by at most 1032 to 1).
bool PngWithinBounds(const unsigned char* p, size_t n) {
    size_t at = 8;
    uint64_t width = 0;
    uint64_t height = 0;
    uint64_t bitsPerPixel = 0;
    uint64_t compressed = 0;
    bool haveHeader = false;
    for (int index = 0; at < n; ++index) {
        if (n - at < 12) {
            return false;
        }
        const uint64_t length = Be32(p + at);
        const unsigned char* type = p + at + 4;
        if (length > n - at - 12) {
            return false;
        }
        if (std::memcmp(type, "IHDR", 4) == 0) {
            // Only the first chunk, or the second behind an Apple "CgBI" marker, is a header.
            if (haveHeader || index > 1 || length != 13) {
                return false;
            }
            width = Be32(p + at + 8);
            height = Be32(p + at + 12);
            const unsigned depth = p[at + 16];
            const unsigned colour = p[at + 17];
            const unsigned channels = colour == 0 || colour == 3 ? 1
                                      : colour == 2              ? 3
                                      : colour == 4              ? 2
                                      : colour == 6              ? 4
                                                                 : 0;
            if (channels == 0 || depth == 0 || depth > 16 || !DimensionsAllowed(width, height)) {
                return false;
            }
            bitsPerPixel = uint64_t(depth) * channels;
            haveHeader = true;
        } else if (std::memcmp(type, "IDAT", 4) == 0) {
            compressed += length;
        } else if (std::memcmp(type, "IEND", 4) == 0) {
            break;
        }
        at += size_t(length) + 12;
    }
    if (!haveHeader) {
        return false;
    }
    const uint64_t raw = height * (1 + (width * bitsPerPixel + 7) / 8);
    return raw <= compressed * 1032;
}

// Huffman tables of one DHT segment: stb's reader takes each table's sixteen code counts as they
// come and writes that many sizes and symbols into arrays of 257 and 256, so a table of more
// than 256 codes would write past them. Marks the tables defined (bits 0-3 DC, 4-7 AC).
bool HuffmanTablesFit(const unsigned char* p, size_t length, unsigned& defined) {
    size_t at = 0;
    while (at < length) {
        if (length - at < 17) {
            return false;
        }
        const unsigned cls = p[at] >> 4;
        const unsigned slot = p[at] & 15;
        if (cls > 1 || slot > 3) {
            return false;
        }
        defined |= 1u << (cls * 4 + slot);
        size_t codes = 0;
        for (size_t i = 1; i <= 16; ++i) {
            codes += p[at + i];
        }
        if (codes > 256 || codes > length - at - 17) {
            return false;
        }
        at += 17 + codes;
    }
    return true;
}

// The JPEG counterpart: every marker segment must lie inside the data, a frame header must come
// before the first scan and give an allowed size, and the file must be big enough for a
// sixteenth of the smallest possible scan of that size (one bit per 8 x 8 block), so a few
// hundred bytes cannot make the decoder fill tens of megabytes with nothing. Segments behind a
// scan (the tables of a progressive file) are found the way the decoder finds them, by skipping
// the entropy-coded bytes to the next marker. A file cut off inside a scan is left to the decoder.
// stb keeps its tables in memory it does not clear, so a scan may only use Huffman tables and
// its components only quantisation tables that the file has defined before it.
bool JpegWithinBounds(const unsigned char* p, size_t n) {
    size_t at = 2;
    bool haveFrame = false;
    bool haveScan = false;
    bool progressive = false;
    uint64_t pixels = 0;
    unsigned huffman = 0;
    unsigned quantisers = 0;
    unsigned frameQuantisers = 0;
    while (at < n) {
        if (p[at] != 0xFF) {
            return false;
        }
        while (at < n && p[at] == 0xFF) {
            ++at; // fill bytes
        }
        if (at >= n) {
            break;
        }
        const unsigned marker = p[at++];
        if (marker == 0xD9) {
            break;
        }
        if (marker == 0xD8 || (marker >= 0xD0 && marker <= 0xD7) || marker == 0x01) {
            continue;
        }
        if (n - at < 2) {
            return false;
        }
        const size_t length = Be16(p + at);
        if (length < 2 || length > n - at) {
            return false;
        }
        const bool frame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (frame) {
            if (haveFrame || length < 8) {
                return false;
            }
            const uint64_t height = Be16(p + at + 3);
            const uint64_t width = Be16(p + at + 5);
            const size_t components = p[at + 7];
            if (length != 8 + 3 * components || !DimensionsAllowed(width, height)) {
                return false;
            }
            for (size_t c = 0; c < components; ++c) {
                frameQuantisers |= 1u << (p[at + 10 + 3 * c] & 15);
            }
            pixels = width * height;
            progressive = marker == 0xC2;
            haveFrame = true;
        } else if (marker == 0xC4 && !HuffmanTablesFit(p + at + 2, length - 2, huffman)) {
            return false;
        } else if (marker == 0xDB) {
            // Tables of 65 or 129 bytes; the decoder refuses a bad precision or slot itself.
            for (size_t t = at + 2; t < at + length; t += (p[t] >> 4) ? 129 : 65) {
                quantisers |= 1u << (p[t] & 15);
            }
        }
        if (marker == 0xDA) {
            if (!haveFrame || pixels > uint64_t(n) * 8 * 64 * 16 || length < 3 ||
                (frameQuantisers & ~quantisers) != 0) {
                return false;
            }
            const size_t count = p[at + 2];
            if (length < 6 + 2 * count) {
                return false;
            }
            // A progressive scan uses the DC tables when it starts at coefficient 0, else the AC
            // tables; a sequential scan uses both.
            const bool dcScan = !progressive || p[at + 3 + 2 * count] == 0;
            const bool acScan = !progressive || p[at + 3 + 2 * count] != 0;
            for (size_t c = 0; c < count; ++c) {
                const unsigned tables = p[at + 4 + 2 * c];
                const unsigned dc = tables >> 4;
                const unsigned ac = tables & 15;
                if ((dcScan && (dc > 3 || !(huffman & (1u << dc)))) ||
                    (acScan && (ac > 3 || !(huffman & (1u << (4 + ac)))))) {
                    return false;
                }
            }
        }
        at += length;
        if (marker == 0xDA) {
            haveScan = true;
            // Entropy-coded bytes: a 0xFF is followed by 0 (a stuffed byte), a restart marker or
            // more 0xFF; anything else starts the next segment.
            while (at + 1 < n && !(p[at] == 0xFF && p[at + 1] != 0x00 && p[at + 1] != 0xFF &&
                                   !(p[at + 1] >= 0xD0 && p[at + 1] <= 0xD7))) {
                ++at;
            }
            if (at + 1 >= n) {
                break;
            }
        }
    }
    return haveScan;
}

bool WithinBounds(const unsigned char* p, size_t n) {
    if (n >= 8 && p[0] == 0x89 && p[1] == 'P') {
        return PngWithinBounds(p, n);
    }
    if (n >= 3 && p[0] == 0xFF && p[1] == 0xD8) {
        return JpegWithinBounds(p, n);
    }
    return BmpPixelDataComplete(p, n);
}

} // namespace

CImage::~CImage() {
    Destroy();
}

BOOL CImage::Create(int width, int height, int bpp, DWORD flags) {
    if (m_bitmap || height == 0 || height == std::numeric_limits<int>::min()) {
        return FALSE;
    }
    if ((flags & createAlphaChannel) && bpp != 32) {
        return FALSE;
    }
    const bool topDown = height < 0;
    m_bitmap = VxCreateBitmapObject(width, topDown ? -height : height, bpp, true, topDown);
    if (!m_bitmap) {
        return FALSE;
    }
    if (bpp == 1) {
        m_bitmap->colorTable = {RGBQUAD{0, 0, 0, 0}, RGBQUAD{255, 255, 255, 0}};
    }
    m_alpha = (flags & createAlphaChannel) != 0;
    return TRUE;
}

void CImage::DropDC() const {
    m_dc.reset();
    m_dcRefs = 0;
}

void CImage::Destroy() {
    DropDC();
    if (m_bitmap) {
        ::DeleteObject(m_bitmap);
        m_bitmap = nullptr;
    }
    m_alpha = false;
}

int CImage::GetWidth() const {
    return m_bitmap ? m_bitmap->width : 0;
}

int CImage::GetHeight() const {
    return m_bitmap ? m_bitmap->height : 0;
}

int CImage::GetBPP() const {
    return m_bitmap ? m_bitmap->bpp : 0;
}

int CImage::GetPitch() const {
    if (!m_bitmap) {
        return 0;
    }
    return m_bitmap->topDown ? m_bitmap->stride : -m_bitmap->stride;
}

void* CImage::GetBits() {
    return m_bitmap ? m_bitmap->Row(0) : nullptr;
}

const void* CImage::GetBits() const {
    return m_bitmap ? static_cast<const VxBitmapObject*>(m_bitmap)->Row(0) : nullptr;
}

void* CImage::GetPixelAddress(int x, int y) {
    if (!m_bitmap) {
        return nullptr;
    }
    return static_cast<BYTE*>(GetBits()) + std::ptrdiff_t(y) * GetPitch() +
           (std::ptrdiff_t(x) * m_bitmap->bpp) / 8;
}

const void* CImage::GetPixelAddress(int x, int y) const {
    return const_cast<CImage*>(this)->GetPixelAddress(x, y);
}

COLORREF CImage::GetPixel(int x, int y) const {
    return m_bitmap ? m_bitmap->GetPixel(x, y) : CLR_INVALID;
}

void CImage::SetPixel(int x, int y, COLORREF color) {
    if (m_bitmap) {
        m_bitmap->SetPixel(x, y, color);
    }
}

bool CImage::IsIndexed() const {
    return m_bitmap && m_bitmap->bpp <= 8;
}

int CImage::GetMaxColorTableEntries() const {
    return IsIndexed() ? int(m_bitmap->colorTable.size()) : 0;
}

void CImage::GetColorTable(UINT first, UINT count, RGBQUAD* colors) const {
    if (!IsIndexed() || !colors) {
        return;
    }
    const auto& table = m_bitmap->colorTable;
    for (UINT i = 0; i < count && size_t(first) + i < table.size(); ++i) {
        colors[i] = table[first + i];
    }
}

void CImage::SetColorTable(UINT first, UINT count, const RGBQUAD* colors) {
    if (!IsIndexed() || !colors) {
        return;
    }
    auto& table = m_bitmap->colorTable;
    for (UINT i = 0; i < count && size_t(first) + i < table.size(); ++i) {
        table[first + i] = colors[i];
    }
}

HRESULT CImage::Load(const wchar_t* path) {
    Destroy();
    if (!path) {
        return E_FAIL;
    }
    std::ifstream in(CString(path).ToUtf8(), std::ios::binary | std::ios::ate);
    if (!in) {
        return E_FAIL;
    }
    const std::streamoff size = in.tellg();
    if (size <= 0 || size_t(size) > kMaxFileBytes) {
        return E_FAIL;
    }
    std::vector<unsigned char> bytes(static_cast<size_t>(size));
    in.seekg(0);
    if (!in.read(reinterpret_cast<char*>(bytes.data()), size)) {
        return E_FAIL;
    }
    return LoadFromMemory(bytes.data(), bytes.size());
}

HRESULT CImage::LoadFromMemory(const void* data, size_t size) {
    Destroy();
    const auto* bytes = static_cast<const unsigned char*>(data);
    if (!bytes || size == 0 || size > size_t(std::numeric_limits<int>::max()) ||
        !HasKnownSignature(bytes, size) || !WithinBounds(bytes, size)) {
        return E_FAIL;
    }
    int w = 0;
    int h = 0;
    int comp = 0;
    if (!stbi_info_from_memory(bytes, int(size), &w, &h, &comp)) {
        return E_FAIL;
    }
    // A top-down BMP reports a negative height here.
    const long long infoW = w < 0 ? -(long long)w : w;
    const long long infoH = h < 0 ? -(long long)h : h;
    if (infoW == 0 || infoH == 0 || infoW * infoH > kMaxPixels) {
        return E_FAIL;
    }
    unsigned char* pixels = stbi_load_from_memory(bytes, int(size), &w, &h, &comp, 0);
    if (!pixels) {
        return E_FAIL;
    }
    if (w <= 0 || h <= 0 || (long long)w * h > kMaxPixels || comp < 1 || comp > 4) {
        stbi_image_free(pixels);
        return E_FAIL;
    }
    const int bpp = comp == 1 ? 8 : comp == 3 ? 24 : 32;
    if (!Create(w, h, bpp, bpp == 32 ? createAlphaChannel : 0)) {
        stbi_image_free(pixels);
        return E_FAIL;
    }
    for (int y = 0; y < h; ++y) {
        const unsigned char* src = pixels + size_t(y) * size_t(w) * size_t(comp);
        BYTE* dst = m_bitmap->Row(y);
        for (int x = 0; x < w; ++x, src += comp) {
            switch (comp) {
            case 1:
                dst[x] = src[0];
                break;
            case 2:
                dst[x * 4] = dst[x * 4 + 1] = dst[x * 4 + 2] = src[0];
                dst[x * 4 + 3] = src[1];
                break;
            case 3:
                dst[x * 3] = src[2];
                dst[x * 3 + 1] = src[1];
                dst[x * 3 + 2] = src[0];
                break;
            default:
                dst[x * 4] = src[2];
                dst[x * 4 + 1] = src[1];
                dst[x * 4 + 2] = src[0];
                dst[x * 4 + 3] = src[3];
                break;
            }
        }
    }
    stbi_image_free(pixels);
    return S_OK;
}

HRESULT CImage::Save(const wchar_t* path) const {
    if (!m_bitmap || !path) {
        return E_FAIL;
    }
    const int w = m_bitmap->width;
    const int h = m_bitmap->height;
    bool grey = m_bitmap->bpp == 8;
    for (size_t i = 0; grey && i < m_bitmap->colorTable.size(); ++i) {
        const RGBQUAD& q = m_bitmap->colorTable[i];
        grey = size_t(q.rgbRed) == i && size_t(q.rgbGreen) == i && size_t(q.rgbBlue) == i;
    }
    const int comp = grey ? 1 : (m_bitmap->bpp == 32 && m_alpha) ? 4 : 3;
    std::vector<unsigned char> out(size_t(w) * size_t(h) * size_t(comp));
    for (int y = 0; y < h; ++y) {
        const BYTE* row = m_bitmap->Row(y);
        unsigned char* dst = out.data() + size_t(y) * size_t(w) * size_t(comp);
        for (int x = 0; x < w; ++x, dst += comp) {
            if (grey) {
                dst[0] = row[x];
                continue;
            }
            const COLORREF c = m_bitmap->GetPixel(x, y);
            dst[0] = GetRValue(c);
            dst[1] = GetGValue(c);
            dst[2] = GetBValue(c);
            if (comp == 4) {
                dst[3] = row[x * 4 + 3];
            }
        }
    }
    const std::string file = CString(path).ToUtf8();
    const std::string ext = LowerExtension(file);
    int ok = 0;
    if (ext == "bmp") {
        ok = stbi_write_bmp(file.c_str(), w, h, comp, out.data());
    } else if (ext == "jpg" || ext == "jpeg") {
        ok = stbi_write_jpg(file.c_str(), w, h, comp, out.data(), 90);
    } else {
        ok = stbi_write_png(file.c_str(), w, h, comp, out.data(), w * comp);
    }
    return ok ? S_OK : E_FAIL;
}

HDC CImage::GetDC() const {
    if (!m_bitmap) {
        return nullptr;
    }
    if (!m_dc) {
        auto dc = std::make_unique<CDC>();
        if (!dc->CreateCompatibleDC(nullptr) || !dc->SelectObject(HGDIOBJ(m_bitmap))) {
            return nullptr;
        }
        m_dc = std::move(dc);
    }
    ++m_dcRefs;
    return m_dc->GetSafeHdc();
}

void CImage::ReleaseDC() const {
    if (m_dcRefs > 0 && --m_dcRefs == 0) {
        DropDC();
    }
}

void CImage::Attach(HBITMAP bitmap, DIBOrientation) {
    Destroy();
    m_bitmap = bitmap;
    m_alpha = false;
}

HBITMAP CImage::Detach() {
    DropDC();
    HBITMAP b = m_bitmap;
    m_bitmap = nullptr;
    m_alpha = false;
    return b;
}
