// Tests of the BMP reader against BMP files written here by a small independent writer: every depth
// with core, info, V4 and V5 headers, masks, palettes, top-down rows, row padding, and hostile
// files, each of which must give null and exactly one message. No GL.
#include <frame/VxDIBLoader.h>

#include <platform/VxMessageSink.h>

#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

enum class Kind { Core = 12, Info = 40, V4 = 108, V5 = 124 };

struct Rgb {
    uint8_t r, g, b;
};

struct BmpCase {
    int width = 1;
    int height = 1;
    int bpp = 24;
    Kind kind = Kind::Info;
    bool topDown = false;
    bool fileHeader = true;
    uint32_t compression = 0;
    uint32_t masks[3] = {0, 0, 0};
    uint32_t colorsUsed = 0;    // written into the header, and the number of entries written
    uint32_t gapBeforeBits = 0; // junk between the colour table and the bits
    bool padLastRow = true;
    uint8_t padByte = 0xA5; // padding and unused bits are junk the reader must skip
};

// Little-endian fields of n bytes.
void Put(Bytes& b, uint32_t v, int n = 4) {
    for (int k = 0; k < n; ++k) {
        b.push_back(uint8_t(v >> (8 * k)));
    }
}
void Patch(Bytes& b, size_t at, uint32_t v, int n = 4) {
    for (int k = 0; k < n; ++k) {
        b[at + size_t(k)] = uint8_t(v >> (8 * k));
    }
}

BmpCase Make(int bpp, int width, int height, Kind kind = Kind::Info) {
    BmpCase s;
    s.bpp = bpp;
    s.width = width;
    s.height = height;
    s.kind = kind;
    return s;
}

Rgb PaletteEntry(uint32_t i) {
    return {uint8_t(i * 7 + 1), uint8_t(i * 13 + 50), uint8_t(255 - i * 3)};
}

uint32_t TableEntries(const BmpCase& s) {
    if (s.colorsUsed) {
        return s.colorsUsed;
    }
    return s.bpp <= 8 ? (1u << s.bpp) : 0;
}

// raw(x, y), y counted from the bottom: a palette index, or the packed pixel value of the depth.
Bytes WriteBmp(const BmpCase& s, const std::function<uint32_t(int, int)>& raw) {
    const bool core = s.kind == Kind::Core;
    const uint32_t headerSize = uint32_t(s.kind);
    const bool masksAfter = s.kind == Kind::Info && s.compression == 3;
    const uint32_t entries = TableEntries(s);
    const uint32_t entrySize = core ? 3 : 4;
    const uint32_t stride = (uint32_t(s.width) * s.bpp + 31) / 32 * 4;
    const uint32_t fileHeader = s.fileHeader ? 14 : 0;
    const uint32_t bitsOffset =
        fileHeader + headerSize + (masksAfter ? 12 : 0) + entries * entrySize + s.gapBeforeBits;

    Bytes b;
    if (s.fileHeader) {
        b = {'B', 'M'};
        Put(b, 0); // file size, patched below; readers must not need it
        Put(b, 0);
        Put(b, bitsOffset);
    }
    Put(b, headerSize);
    Put(b, uint32_t(s.width), core ? 2 : 4);
    Put(b, uint32_t(s.topDown ? -s.height : s.height), core ? 2 : 4);
    Put(b, 1, 2);
    Put(b, uint32_t(s.bpp), 2);
    if (!core) {
        // The image size may be 0 for uncompressed images.
        for (uint32_t v : {s.compression, 0u, 2835u, 2835u, s.colorsUsed, 0u}) {
            Put(b, v);
        }
        if (headerSize > 40) {
            for (uint32_t m : s.masks) {
                Put(b, m);
            }
            while (b.size() < fileHeader + headerSize) {
                b.push_back(0);
            }
        }
    }
    for (uint32_t m : s.masks) {
        if (masksAfter) {
            Put(b, m);
        }
    }
    for (uint32_t i = 0; i < entries; ++i) {
        const Rgb c = PaletteEntry(i);
        b.push_back(c.b);
        b.push_back(c.g);
        b.push_back(c.r);
        if (!core) {
            b.push_back(0x77);
        }
    }
    b.insert(b.end(), s.gapBeforeBits, 0xEE);
    EXPECT_EQ(b.size(), bitsOffset);

    for (int r = 0; r < s.height; ++r) {
        const int y = s.topDown ? s.height - 1 - r : r;
        Bytes row(stride, s.padByte);
        for (int x = 0; x < s.width; ++x) {
            const uint32_t v = raw(x, y);
            if (s.bpp < 8) {
                const int bit = x * s.bpp;
                const int shift = 8 - s.bpp - bit % 8;
                const uint32_t mask = (1u << s.bpp) - 1;
                uint8_t& byte = row[size_t(bit / 8)];
                byte = uint8_t((byte & ~(mask << shift)) | ((v & mask) << shift));
            } else {
                for (int k = 0; k < s.bpp / 8; ++k) {
                    row[size_t(x * (s.bpp / 8) + k)] = uint8_t(v >> (8 * k));
                }
            }
        }
        if (!s.padLastRow && r == s.height - 1) {
            row.resize((size_t(s.width) * s.bpp + 7) / 8);
        }
        b.insert(b.end(), row.begin(), row.end());
    }
    if (s.fileHeader) {
        Patch(b, 2, uint32_t(b.size()));
    }
    return b;
}

// Asymmetric in x and y and different in each channel, so a flip or a channel swap shows.
uint32_t Pattern24(int x, int y) {
    const uint32_t r = uint32_t(x * 37 + y * 11) & 255;
    const uint32_t g = uint32_t(x * 5 + y * 71 + 3) & 255;
    const uint32_t b = uint32_t((x * 3) ^ (y * 29 + 1)) & 255;
    return r << 16 | g << 8 | b;
}

uint32_t Pattern16(int x, int y) {
    const uint32_t a = uint32_t(x * 3 + y) & 31;
    const uint32_t b = uint32_t(x + y * 7 + 2) & 31;
    const uint32_t c = uint32_t(x * 5 + y * 3 + 1) & 31;
    return a << 10 | b << 5 | c | uint32_t((x + y) & 1) << 15;
}

uint32_t PatternIndex(int x, int y, uint32_t n) {
    return uint32_t(x * 3 + y * 5 + x * y) % n;
}

// 5 and 6 bits widen by repeating their top bits; wider channels keep their top byte.
uint8_t Widen(uint32_t v, int bits) {
    return bits < 8 ? uint8_t(v << (8 - bits) | v >> (2 * bits - 8)) : uint8_t(v >> (bits - 8));
}

// The reference: what each raw value must decode to, for the depth and masks the file declares.
Rgb Expected(const BmpCase& s, uint32_t v) {
    if (s.bpp <= 8) {
        return PaletteEntry(v);
    }
    if (s.bpp == 24 || (s.bpp == 32 && s.compression == 0)) {
        return {uint8_t(v >> 16), uint8_t(v >> 8), uint8_t(v)};
    }
    if (s.bpp == 16 && s.compression == 0) {
        return {Widen(v >> 10 & 31, 5), Widen(v >> 5 & 31, 5), Widen(v & 31, 5)};
    }
    uint8_t out[3];
    for (int i = 0; i < 3; ++i) {
        uint32_t m = s.masks[i];
        int shift = 0;
        while (!(m & 1)) {
            m >>= 1;
            ++shift;
        }
        int bits = 0;
        while (m & 1) {
            m >>= 1;
            ++bits;
        }
        out[i] = Widen((v >> shift) & ((1u << bits) - 1), bits);
    }
    return {out[0], out[1], out[2]};
}

std::function<uint32_t(int, int)> PatternFor(const BmpCase& s) {
    if (s.bpp <= 8) {
        const uint32_t n = std::min(TableEntries(s), 1u << s.bpp);
        return [n](int x, int y) { return PatternIndex(x, y, n); };
    }
    if (s.bpp == 16) {
        return Pattern16;
    }
    if (s.bpp == 32) {
        // Junk in the top byte: alpha or unused bits must not leak into the colours.
        return [](int x, int y) { return Pattern24(x, y) | uint32_t(0x5A + x) << 24; };
    }
    return Pattern24;
}

Bytes ExpectedPixels(const BmpCase& s) {
    const auto raw = PatternFor(s);
    Bytes out;
    for (int y = 0; y < s.height; ++y) {
        for (int x = 0; x < s.width; ++x) {
            const Rgb c = Expected(s, raw(x, y));
            out.push_back(c.r);
            out.push_back(c.g);
            out.push_back(c.b);
        }
    }
    return out;
}

Bytes Write(const BmpCase& s) {
    return WriteBmp(s, PatternFor(s));
}

std::string Describe(const BmpCase& s) {
    return "kind " + std::to_string(int(s.kind)) + " bpp " + std::to_string(s.bpp) + " " +
           std::to_string(s.width) + "x" + std::to_string(s.height) +
           (s.topDown ? " top-down" : "") + (s.fileHeader ? "" : " packed") + " compression " +
           std::to_string(s.compression) + " colorsUsed " + std::to_string(s.colorsUsed);
}

struct Message {
    std::string text, title;
};

class DIBLoaderTest : public ::testing::Test {
protected:
    void SetUp() override {
        VxMessageSink::SetHandler([this](const std::string& text, const std::string& title) {
            messages.push_back({text, title});
        });
    }
    void TearDown() override { VxMessageSink::Reset(); }

    // Decodes from memory and checks the record against the reference, with no message.
    void ExpectDecodes(const BmpCase& s) {
        SCOPED_TRACE(Describe(s));
        const Bytes file = Write(s);
        messages.clear();
        VxDIBImage* img = LoadDIBFromMemory(file.data(), file.size());
        ASSERT_NE(img, nullptr);
        EXPECT_TRUE(messages.empty());
        EXPECT_EQ(img->width, s.width);
        EXPECT_EQ(img->height, s.height);
        const Bytes expected = ExpectedPixels(s);
        const Bytes got(img->pixels, img->pixels + size_t(img->width) * img->height * 3);
        EXPECT_EQ(got, expected);
        FreeDIB(img);
    }

    // Must give null and exactly one message with that text.
    void ExpectRejected(const Bytes& file, const std::string& text, const std::string& what) {
        SCOPED_TRACE(what);
        messages.clear();
        VxDIBImage* img = LoadDIBFromMemory(file.data(), file.size());
        EXPECT_EQ(img, nullptr);
        FreeDIB(img);
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].text, text);
        EXPECT_EQ(messages[0].title, "Error");
    }

    std::vector<Message> messages;
};

const char* const kUnknown = "Unknown DIB file format.";
const char* const kConversion = "Image file conversion error.";

TEST_F(DIBLoaderTest, DecodesEveryDepthWithEveryHeaderKind) {
    for (Kind kind : {Kind::Core, Kind::Info, Kind::V4, Kind::V5}) {
        for (int bpp : {1, 4, 8, 16, 24, 32}) {
            if (kind == Kind::Core && (bpp == 16 || bpp == 32)) {
                continue; // the core format has no such depths
            }
            // Widths 1, 2, 3, 5 put every amount of row padding behind 24-bit rows; 33 crosses a
            // 32-bit word of 1-bit pixels.
            for (int width : {1, 2, 3, 5, 7, 33}) {
                for (int height : {1, 4}) {
                    ExpectDecodes(Make(bpp, width, height, kind));
                }
            }
        }
    }
}

TEST_F(DIBLoaderTest, MasksPalettesPackingAndRowOrder) {
    std::vector<BmpCase> cases;
    auto add = [&](BmpCase s, const std::function<void(BmpCase&)>& tweak) {
        tweak(s);
        cases.push_back(s);
    };
    // Bitfield masks choose the channels: 565 behind and inside the header, 555 spelled out,
    // the standard 32-bit masks, red in the low byte, 10 bits a channel.
    const struct {
        Kind kind;
        int bpp;
        uint32_t r, g, b;
    } masks[] = {{Kind::Info, 16, 0xF800, 0x07E0, 0x001F},
                 {Kind::V5, 16, 0xF800, 0x07E0, 0x001F},
                 {Kind::Info, 16, 0x7C00, 0x03E0, 0x001F},
                 {Kind::Info, 32, 0xFF0000, 0x00FF00, 0x0000FF},
                 {Kind::V4, 32, 0x000000FF, 0x0000FF00, 0x00FF0000},
                 {Kind::V5, 32, 0x3FF00000, 0x000FFC00, 0x000003FF}};
    for (const auto& m : masks) {
        add(Make(m.bpp, 5, 3, m.kind), [&](BmpCase& s) {
            s.compression = 3;
            s.masks[0] = m.r;
            s.masks[1] = m.g;
            s.masks[2] = m.b;
        });
    }
    for (int bpp : {1, 8, 24, 32}) {
        add(Make(bpp, 6, 5), [](BmpCase& s) { s.topDown = true; });
    }
    // Packed DIBs: the bits follow the colour table directly.
    for (Kind kind : {Kind::Core, Kind::Info, Kind::V5}) {
        for (int bpp : {1, 4, 8, 24}) {
            add(Make(bpp, 3, 2, kind), [](BmpCase& s) { s.fileHeader = false; });
        }
    }
    // A short table: the bits start right behind five entries.
    for (Kind kind : {Kind::Info, Kind::V5}) {
        for (bool fileHeader : {true, false}) {
            add(Make(8, 7, 3, kind), [&](BmpCase& s) {
                s.colorsUsed = 5;
                s.fileHeader = fileHeader;
            });
        }
    }
    // A 24-bit image may carry a colour table it does not use; a packed one's bits follow it.
    add(Make(24, 3, 2), [](BmpCase& s) {
        s.colorsUsed = 3;
        s.fileHeader = false;
    });
    // With a file header its bits offset is what counts, junk between table and bits or not.
    add(Make(8, 2, 2), [](BmpCase& s) {
        s.colorsUsed = 4;
        s.gapBeforeBits = 10;
    });
    // A colours-used count above what the depth can index is accepted.
    add(Make(1, 9, 2), [](BmpCase& s) { s.colorsUsed = 6; });
    // The last row may lack its padding.
    for (int bpp : {1, 24}) {
        add(Make(bpp, 5, 3), [](BmpCase& s) { s.padLastRow = false; });
    }
    for (const BmpCase& s : cases) {
        ExpectDecodes(s);
    }
}

TEST_F(DIBLoaderTest, LargestDimensionAcceptedOneMoreRejected) {
    BmpCase s = Make(1, kDIBMaxDimension, 1);
    ExpectDecodes(s);
    s.width = 1;
    s.height = kDIBMaxDimension;
    ExpectDecodes(s);

    Bytes wide = WriteBmp(s, PatternFor(s));
    Patch(wide, 18, kDIBMaxDimension + 1);
    Patch(wide, 22, 1);
    ExpectRejected(wide, kConversion, "width over the cap");

    // Both sides within the cap, their product over it, all bits present (8 MiB at 1 bit).
    Bytes many = Write(Make(1, kDIBMaxDimension, 1));
    const int rows = int(kDIBMaxPixels / kDIBMaxDimension) + 1;
    Patch(many, 22, uint32_t(rows));
    many.resize(many.size() + size_t(rows - 1) * kDIBMaxDimension / 8, 0);
    ExpectRejected(many, kConversion, "pixels over the cap");
}

// Every prefix of a valid file, cut before its last pixel, is rejected: before the end of the
// header as an unknown format, after it as a conversion error.
TEST_F(DIBLoaderTest, EveryTruncationIsRejected) {
    BmpCase s = Make(8, 5, 3);
    s.colorsUsed = 7;
    const Bytes full = Write(s);
    const size_t headerEnd = 14 + 40;
    const size_t lastPixelEnd = full.size() - 3; // the last row's padding may go
    for (size_t n = 0; n < lastPixelEnd; ++n) {
        const Bytes cut(full.begin(), full.begin() + long(n));
        ExpectRejected(cut, n < headerEnd ? kUnknown : kConversion, "cut at " + std::to_string(n));
    }
    messages.clear();
    VxDIBImage* img = LoadDIBFromMemory(full.data(), lastPixelEnd);
    EXPECT_NE(img, nullptr);
    FreeDIB(img);
}

TEST_F(DIBLoaderTest, HostileHeadersAreRejected) {
    BmpCase s = Make(8, 4, 3);
    s.colorsUsed = 4;
    const Bytes base = Write(s);
    // Offsets in the file: 10 bits offset, 14 header size, 18 width, 22 height, 26 planes,
    // 28 bit count, 30 compression, 46 colours used, 54 colour table.
    struct Mutation {
        const char* what;
        std::function<void(Bytes&)> apply;
        const char* message;
    };
    const Mutation mutations[] = {
        {"header size 0", [](Bytes& b) { Patch(b, 14, 0); }, kUnknown},
        {"header size 64", [](Bytes& b) { Patch(b, 14, 64); }, kUnknown},
        {"header size 16", [](Bytes& b) { Patch(b, 14, 16); }, kUnknown},
        {"header size past the end", [](Bytes& b) { Patch(b, 14, 124); }, kUnknown},
        {"header size huge", [](Bytes& b) { Patch(b, 14, 0xFFFFFFF0u); }, kUnknown},
        {"bits offset past the end", [](Bytes& b) { Patch(b, 10, 0x7FFFFFFF); }, kConversion},
        {"width 0", [](Bytes& b) { Patch(b, 18, 0); }, kConversion},
        {"width negative", [](Bytes& b) { Patch(b, 18, uint32_t(-4)); }, kConversion},
        {"height 0", [](Bytes& b) { Patch(b, 22, 0); }, kConversion},
        {"height INT_MIN", [](Bytes& b) { Patch(b, 22, 0x80000000u); }, kConversion},
        {"width and height huge",
         [](Bytes& b) {
             Patch(b, 18, 0x7FFFFFFF);
             Patch(b, 22, 0x7FFFFFFF);
         },
         kConversion},
        {"product over the cap",
         [](Bytes& b) {
             Patch(b, 18, kDIBMaxDimension);
             Patch(b, 22, kDIBMaxDimension);
         },
         kConversion},
        {"rows past the end", [](Bytes& b) { Patch(b, 22, 4); }, kConversion},
        {"planes 0", [](Bytes& b) { Patch(b, 26, 0, 2); }, kConversion},
        {"planes 2", [](Bytes& b) { Patch(b, 26, 2, 2); }, kConversion},
        {"bit count 0", [](Bytes& b) { Patch(b, 28, 0, 2); }, kConversion},
        {"bit count 2", [](Bytes& b) { Patch(b, 28, 2, 2); }, kConversion},
        {"bit count 64", [](Bytes& b) { Patch(b, 28, 64, 2); }, kConversion},
        {"RLE8", [](Bytes& b) { Patch(b, 30, 1); }, kConversion},
        {"JPEG", [](Bytes& b) { Patch(b, 30, 4); }, kConversion},
        {"unknown compression", [](Bytes& b) { Patch(b, 30, 0x12345678); }, kConversion},
        {"bitfields on 8 bits", [](Bytes& b) { Patch(b, 30, 3); }, kConversion},
        {"colour table past the end", [](Bytes& b) { b.resize(54 + 8); }, kConversion},
        {"index equal to the table size", [](Bytes& b) { Patch(b, 46, 3); }, kConversion},
        {"index beyond the table",
         [](Bytes& b) {
             Patch(b, 46, 2); // two entries, and the pattern uses four
         },
         kConversion},
        {"index beyond the table, last pixel",
         [](Bytes& b) { b[b.size() - 1] = 200; }, // rows of four bytes: the last byte is a pixel
         kConversion},
    };
    for (const Mutation& m : mutations) {
        Bytes b = base;
        m.apply(b);
        ExpectRejected(b, m.message, m.what);
    }

    // Bits that would overlap the headers; 24 bits, so no palette check can catch it instead.
    for (uint32_t offset : {0u, 20u, 53u}) {
        Bytes b = Write(Make(24, 2, 2));
        Patch(b, 10, offset);
        ExpectRejected(b, kConversion, "bits offset " + std::to_string(offset));
    }

    // Files too short to hold a header at all.
    ExpectRejected({}, kUnknown, "empty");
    ExpectRejected({'B', 'M'}, kUnknown, "BM only");
    ExpectRejected({'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0}, kUnknown,
                   "file header and half a size");
    ExpectRejected({40, 0, 0}, kUnknown, "packed, three bytes");
}

TEST_F(DIBLoaderTest, HostileMasksAreRejected) {
    struct Case {
        const char* what;
        Kind kind;
        int bpp;
        uint32_t r, g, b;
    };
    const Case cases[] = {
        {"zero mask", Kind::Info, 32, 0xFF0000, 0, 0xFF},
        {"split mask", Kind::V5, 32, 0xF0F000, 0xF00, 0xF},
        {"mask above 16 bits", Kind::Info, 16, 0x1F0000, 0x7E0, 0x1F},
    };
    for (const Case& c : cases) {
        BmpCase s = Make(c.bpp, 2, 2, c.kind);
        s.compression = 3;
        s.masks[0] = c.r;
        s.masks[1] = c.g;
        s.masks[2] = c.b;
        ExpectRejected(WriteBmp(s, [](int, int) { return 0u; }), kConversion, c.what);
    }
    // Masks that should follow a 40-byte header but the file ends first.
    BmpCase cut = Make(32, 1, 1);
    cut.compression = 3;
    cut.fileHeader = false;
    Bytes b = WriteBmp(cut, [](int, int) { return 0u; });
    b.resize(40 + 8);
    ExpectRejected(b, kConversion, "masks cut off");
}

TEST_F(DIBLoaderTest, SwitchOffKeepsFailuresQuiet) {
    ASSERT_TRUE(g_bDIBShowMessage) << "true from the start";
    g_bDIBShowMessage = false;
    const Bytes junk = {'B', 'M', 1, 2, 3};
    EXPECT_EQ(LoadDIBFromMemory(junk.data(), junk.size()), nullptr);
    EXPECT_EQ(LoadDIB(L"/nonexistent/dib/file.bmp"), nullptr);
    g_bDIBShowMessage = true;
    EXPECT_TRUE(messages.empty());
}

class DIBLoaderFileTest : public DIBLoaderTest {
protected:
    void SetUp() override {
        DIBLoaderTest::SetUp();
        dir = std::filesystem::path(VxTestOutputDir()) / "dib_loader";
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
    }
    void WriteFile(const std::filesystem::path& p, const Bytes& b) {
        std::ofstream out(p, std::ios::binary);
        out.write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
    }
    static std::wstring Wide(const std::string& ascii) {
        return std::wstring(ascii.begin(), ascii.end());
    }
    std::filesystem::path dir;
};

TEST_F(DIBLoaderFileTest, LoadsWithEitherSeparatorAndAWideName) {
    const BmpCase s = Make(8, 3, 2);
    const Bytes file = Write(s);
    const std::wstring name = L"z\u00e4hne-\U0001F9B7.bmp";
    // The same name in UTF-8: std::filesystem would convert the wide one by the C locale.
    WriteFile(dir / "z\xc3\xa4hne-\xf0\x9f\xa6\xb7.bmp", file);
    const std::wstring base = Wide(dir.string());
    const Bytes expected = ExpectedPixels(s);
    // The library's own names end in "\\teeth.bmp", Windows style.
    for (const std::wstring& path : {base + L"/" + name, base + L"\\" + name}) {
        messages.clear();
        VxDIBImage* img = LoadDIB(path.c_str());
        ASSERT_NE(img, nullptr);
        EXPECT_EQ(img->width, 3);
        EXPECT_EQ(img->height, 2);
        EXPECT_EQ(Bytes(img->pixels, img->pixels + 18), expected);
        FreeDIB(img);
        EXPECT_TRUE(messages.empty());
    }
    const std::string narrow = (dir / "narrow.bmp").string();
    WriteFile(narrow, file);
    VxDIBImage* img = LoadDIBFile(narrow.c_str(), false);
    ASSERT_NE(img, nullptr);
    FreeDIB(img);
}

TEST_F(DIBLoaderFileTest, FilesThatCannotBeOpenedNameThePath) {
    WriteFile(dir / "empty.bmp", {});
    std::filesystem::create_directories(dir / "folder.bmp");
    const std::string d = dir.string();
    // A wide name is reported as written, backslashes and all.
    const std::wstring wideCases[] = {Wide(d) + L"\\missing.bmp", Wide(d) + L"/empty.bmp",
                                      Wide(d) + L"/folder.bmp", Wide(d) + L"/\u00e4.bmp"};
    const std::string shown[] = {d + "\\missing.bmp", d + "/empty.bmp", d + "/folder.bmp",
                                 d + "/\xc3\xa4.bmp"};
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(shown[i]);
        messages.clear();
        EXPECT_EQ(LoadDIB(wideCases[i].c_str()), nullptr);
        ASSERT_EQ(messages.size(), 1u);
        EXPECT_EQ(messages[0].text, "Failed to open DIB file " + shown[i] + ".\n");
        EXPECT_EQ(messages[0].title, "Error");
    }
    messages.clear();
    EXPECT_EQ(LoadDIBFile("no/such.bmp", false), nullptr);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text, "Failed to open DIB file no/such.bmp.\n");

    // A file that opens but holds no bitmap reports its format, not the name.
    WriteFile(dir / "text.bmp", {'h', 'e', 'l', 'l', 'o', '\n'});
    messages.clear();
    EXPECT_EQ(LoadDIB((Wide(d) + L"/text.bmp").c_str()), nullptr);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text, kUnknown);
}

} // namespace
