// VxDIBLoader: reads a BMP file into a plain RGB array for the background, the corner icons and the
// optional tooth and gum textures. Reads 1, 4, 8, 16, 24 and 32-bit uncompressed images (BI_RGB,
// and BI_BITFIELDS for 16 and 32 bits) with a 12-byte core header or a 40-byte info header (52, 56,
// 108 and 124-byte headers are read as info headers), with or without the 14-byte "BM" file header.
// It does not read RLE, JPEG or PNG payloads, does not keep alpha, and never scales or converts
// colour spaces. Failures give null and, while g_bDIBShowMessage is true, one message box.
#pragma once

#include <cstddef>

// One decoded image. The record and the pixels are malloc'd; the caller frees both (FreeDIB does).
struct VxDIBImage {
    int width;
    int height;
    // width * height * 3 bytes, red-green-blue, no row padding, bottom row first as in the file
    // (a top-down file is flipped so every record has the same orientation).
    unsigned char* pixels;
};

// Process-wide: while true, a failed load shows its reason in a message box titled "Error".
// True at start; the library never changes it.
extern bool g_bDIBShowMessage;

// Largest image accepted. Any GL texture the library could make of it is far smaller; the caps keep
// every size computation well inside 64 bits and a hostile header from asking for gigabytes.
constexpr int kDIBMaxDimension = 32768;
constexpr long long kDIBMaxPixels = 1LL << 26;

// Loads a BMP file named by a wide path. '\\' and '/' both separate folders (see LoadDIBFile).
VxDIBImage* LoadDIB(const wchar_t* fileName);

// The worker: fileName is a const wchar_t* when wideName is true, otherwise a const char* (UTF-8).
// Messages: "Failed to open DIB file <name>.\n" when the file cannot be opened or read (missing,
// not a regular file, empty), "Unknown DIB file format." when no known header is found,
// "Image file conversion error." when the header's image cannot be decoded from the bytes present,
// "Out of memory." when an allocation fails.
VxDIBImage* LoadDIBFile(const void* fileName, bool wideName);

// Decodes a BMP already in memory (with or without its "BM" file header), with the same messages
// but for the one about opening.
VxDIBImage* LoadDIBFromMemory(const void* bytes, size_t size);

// Frees the pixels and the record; null is allowed.
void FreeDIB(VxDIBImage* image);
