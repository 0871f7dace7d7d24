// NuPngImage: one decoded editor image, kept for the life of the process: its RGB pixels (null
// when the file was missing or unreadable), its size, and the GL texture made from it at the
// first editor draw (0 until then).
#pragma once

struct NuPngImage {
    unsigned char* pixels = nullptr;
    int width = 0;
    int height = 0;
    unsigned int texture = 0;
};
