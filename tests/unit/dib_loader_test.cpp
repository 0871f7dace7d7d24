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

void Put16(Bytes& b, uint32_t v) {
    b.push_back(uint8_t(v));
    b.push_back(uint8_t(v >> 8));
}
void Put32(Bytes& b, uint32_t v) {
    Put16(b, v & 0xFFFF);
    Put16(b, v >> 16);
}
void Patch16(Bytes& b, size_t at, uint32_t v) {
    b[at] = uint8_t(v);
    b[at + 1] = uint8_t(v >> 8);
}
void Patch32(Bytes& b, size_t at, uint32_t v) {
    Patch16(b, at, v & 0xFFFF);
    Patch16(b, at + 2, v >> 16);
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
        b.push_back('B');
        b.push_back('M');
        Put32(b, 0); // file size, patched below; readers must not need it
        Put32(b, 0);
        Put32(b, bitsOffset);
    }
    Put32(b, headerSize);
    if (core) {
        Put16(b, s.width);
        Put16(b, s.height);
        Put16(b, 1);
        Put16(b, s.bpp);
    } else {
        Put32(b, s.width);
        Put32(b, uint32_t(s.topDown ? -s.height : s.height));
        Put16(b, 1);
        Put16(b, s.bpp);
        Put32(b, s.compression);
        Put32(b, 0); // image size: 0 is allowed for uncompressed images
        Put32(b, 2835);
        Put32(b, 2835);
        Put32(b, s.colorsUsed);
        Put32(b, 0);
        if (headerSize > 40) {
            for (uint32_t m : s.masks) {
                Put32(b, m);
            }
            while (b.size() < fileHeader + headerSize) {
                b.push_back(0);
            }
        }
    }
    if (masksAfter) {
        for (uint32_t m : s.masks) {
            Put32(b, m);
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
        Patch32(b, 2, uint32_t(b.size()));
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

uint8_t Widen(uint32_t v, int bits) {
    if (bits == 5) {
        return uint8_t(v << 3 | v >> 2);
    }
    if (bits == 6) {
        return uint8_t(v << 2 | v >> 4);
    }
    return uint8_t(v >> (bits - 8));
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
                    BmpCase s;
                    s.kind = kind;
                    s.bpp = bpp;
                    s.width = width;
                    s.height = height;
                    ExpectDecodes(s);
                }
            }
        }
    }
}

TEST_F(DIBLoaderTest, BitfieldMasksChooseTheChannels) {
    struct Case {
        Kind kind;
        int bpp;
        uint32_t r, g, b;
    };
    const Case cases[] = {
        {Kind::Info, 16, 0xF800, 0x07E0, 0x001F},           // 565, masks behind the header
        {Kind::V5, 16, 0xF800, 0x07E0, 0x001F},             // 565, masks inside the header
        {Kind::Info, 16, 0x7C00, 0x03E0, 0x001F},           // 555 spelled out
        {Kind::Info, 32, 0xFF0000, 0x00FF00, 0x0000FF},     // the standard masks
        {Kind::V4, 32, 0x000000FF, 0x0000FF00, 0x00FF0000}, // red in the low byte
        {Kind::V5, 32, 0x3FF00000, 0x000FFC00, 0x000003FF}, // 10 bits a channel
    };
    for (const Case& c : cases) {
        BmpCase s;
        s.kind = c.kind;
        s.bpp = c.bpp;
        s.compression = 3;
        s.masks[0] = c.r;
        s.masks[1] = c.g;
        s.masks[2] = c.b;
        s.width = 5;
        s.height = 3;
        ExpectDecodes(s);
    }
}

TEST_F(DIBLoaderTest, TopDownRowsComeOutBottomUp) {
    for (int bpp : {1, 8, 24, 32}) {
        BmpCase s;
        s.bpp = bpp;
        s.width = 6;
        s.height = 5;
        s.topDown = true;
        ExpectDecodes(s);
    }
}

TEST_F(DIBLoaderTest, PaletteSizeAndBitsOffset) {
    BmpCase s;
    s.bpp = 8;
    s.width = 7;
    s.height = 3;
    s.colorsUsed = 5; // short table: the bits start right behind five entries
    ExpectDecodes(s);
    s.fileHeader = false;
    ExpectDecodes(s);
    s.kind = Kind::V5;
    ExpectDecodes(s);

    BmpCase four;
    four.bpp = 4;
    four.width = 3;
    four.height = 2;
    four.colorsUsed = 0; // zero means the full table of 16
    four.fileHeader = false;
    ExpectDecodes(four);

    // A 24-bit image may carry a colour table it does not use; without a file header the bits
    // follow it.
    BmpCase direct;
    direct.bpp = 24;
    direct.width = 3;
    direct.height = 2;
    direct.colorsUsed = 3;
    direct.fileHeader = false;
    ExpectDecodes(direct);

    // With a file header its bits offset is what counts, junk between table and bits or not.
    BmpCase gap;
    gap.bpp = 8;
    gap.width = 2;
    gap.height = 2;
    gap.colorsUsed = 4;
    gap.gapBeforeBits = 10;
    ExpectDecodes(gap);

    // A colours-used count above what the depth can index is accepted.
    BmpCase big;
    big.bpp = 1;
    big.width = 9;
    big.height = 2;
    big.colorsUsed = 6;
    ExpectDecodes(big);
}

TEST_F(DIBLoaderTest, PackedDibWithoutFileHeader) {
    for (Kind kind : {Kind::Core, Kind::Info, Kind::V5}) {
        for (int bpp : {1, 4, 8, 24}) {
            BmpCase s;
            s.kind = kind;
            s.bpp = bpp;
            s.width = 3;
            s.height = 2;
            s.fileHeader = false;
            ExpectDecodes(s);
        }
    }
}

TEST_F(DIBLoaderTest, LastRowWithoutPaddingIsAccepted) {
    BmpCase s;
    s.width = 5;
    s.height = 3;
    s.padLastRow = false;
    ExpectDecodes(s);
    s.bpp = 1;
    ExpectDecodes(s);
}

TEST_F(DIBLoaderTest, LargestDimensionAcceptedOneMoreRejected) {
    BmpCase s;
    s.width = kDIBMaxDimension;
    s.height = 1;
    s.bpp = 1;
    ExpectDecodes(s);
    s.width = 1;
    s.height = kDIBMaxDimension;
    ExpectDecodes(s);

    Bytes wide = WriteBmp(s, PatternFor(s));
    Patch32(wide, 18, kDIBMaxDimension + 1);
    Patch32(wide, 22, 1);
    ExpectRejected(wide, kConversion, "width over the cap");

    // Both sides within the cap, their product over it, all bits present (8 MiB at 1 bit).
    BmpCase row;
    row.bpp = 1;
    row.width = kDIBMaxDimension;
    Bytes many = Write(row);
    const int rows = int(kDIBMaxPixels / kDIBMaxDimension) + 1;
    Patch32(many, 22, uint32_t(rows));
    many.resize(many.size() + size_t(rows - 1) * kDIBMaxDimension / 8, 0);
    ExpectRejected(many, kConversion, "pixels over the cap");
}

// Every prefix of a valid file, cut before its last pixel, is rejected: before the end of the
// header as an unknown format, after it as a conversion error.
TEST_F(DIBLoaderTest, EveryTruncationIsRejected) {
    BmpCase s;
    s.bpp = 8;
    s.width = 5;
    s.height = 3;
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
    BmpCase s;
    s.bpp = 8;
    s.width = 4;
    s.height = 3;
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
        {"header size 0", [](Bytes& b) { Patch32(b, 14, 0); }, kUnknown},
        {"header size 64", [](Bytes& b) { Patch32(b, 14, 64); }, kUnknown},
        {"header size 16", [](Bytes& b) { Patch32(b, 14, 16); }, kUnknown},
        {"header size past the end", [](Bytes& b) { Patch32(b, 14, 124); }, kUnknown},
        {"header size huge", [](Bytes& b) { Patch32(b, 14, 0xFFFFFFF0u); }, kUnknown},
        {"bits offset past the end", [](Bytes& b) { Patch32(b, 10, 0x7FFFFFFF); }, kConversion},
        {"width 0", [](Bytes& b) { Patch32(b, 18, 0); }, kConversion},
        {"width negative", [](Bytes& b) { Patch32(b, 18, uint32_t(-4)); }, kConversion},
        {"height 0", [](Bytes& b) { Patch32(b, 22, 0); }, kConversion},
        {"height INT_MIN", [](Bytes& b) { Patch32(b, 22, 0x80000000u); }, kConversion},
        {"width and height huge",
         [](Bytes& b) {
             Patch32(b, 18, 0x7FFFFFFF);
             Patch32(b, 22, 0x7FFFFFFF);
         },
         kConversion},
        {"product over the cap",
         [](Bytes& b) {
             Patch32(b, 18, kDIBMaxDimension);
             Patch32(b, 22, kDIBMaxDimension);
         },
         kConversion},
        {"rows past the end", [](Bytes& b) { Patch32(b, 22, 4); }, kConversion},
        {"planes 0", [](Bytes& b) { Patch16(b, 26, 0); }, kConversion},
        {"planes 2", [](Bytes& b) { Patch16(b, 26, 2); }, kConversion},
        {"bit count 0", [](Bytes& b) { Patch16(b, 28, 0); }, kConversion},
        {"bit count 2", [](Bytes& b) { Patch16(b, 28, 2); }, kConversion},
        {"bit count 64", [](Bytes& b) { Patch16(b, 28, 64); }, kConversion},
        {"RLE8", [](Bytes& b) { Patch32(b, 30, 1); }, kConversion},
        {"JPEG", [](Bytes& b) { Patch32(b, 30, 4); }, kConversion},
        {"unknown compression", [](Bytes& b) { Patch32(b, 30, 0x12345678); }, kConversion},
        {"bitfields on 8 bits", [](Bytes& b) { Patch32(b, 30, 3); }, kConversion},
        {"colour table past the end", [](Bytes& b) { b.resize(54 + 8); }, kConversion},
        {"index equal to the table size", [](Bytes& b) { Patch32(b, 46, 3); }, kConversion},
        {"index beyond the table",
         [](Bytes& b) {
             Patch32(b, 46, 2); // two entries, and the pattern uses four
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
    BmpCase direct;
    direct.width = 2;
    direct.height = 2;
    for (uint32_t offset : {0u, 20u, 53u}) {
        Bytes b = Write(direct);
        Patch32(b, 10, offset);
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
        BmpCase s;
        s.kind = c.kind;
        s.bpp = c.bpp;
        s.compression = 3;
        s.masks[0] = c.r;
        s.masks[1] = c.g;
        s.masks[2] = c.b;
        s.width = 2;
        s.height = 2;
        ExpectRejected(WriteBmp(s, [](int, int) { return 0u; }), kConversion, c.what);
    }
    // Masks that should follow a 40-byte header but the file ends first.
    Bytes b;
    Put32(b, 40);
    Put32(b, 1);
    Put32(b, 1);
    Put16(b, 1);
    Put16(b, 32);
    Put32(b, 3);
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
    BmpCase s;
    s.bpp = 8;
    s.width = 3;
    s.height = 2;
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
