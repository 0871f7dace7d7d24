// Character: one glyph of the narrow and wide text stores: its texture, bitmap size, bearing
// (left and top of the bitmap from the pen) and advance in 1/64 pixels.
#pragma once

struct Character {
    unsigned int textureID = 0;
    int sizeX = 0;
    int sizeY = 0;
    int bearingX = 0;
    int bearingY = 0;
    unsigned int advance = 0;
};
