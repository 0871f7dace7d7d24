// VxPictureLayout: brings a patient picture into the layout the picture overlays upload as it
// stands: even width and height, 24 bits, rows upside down (the picture's bottom row first when
// the rows are read from the top) and bytes R, G, B. That is the layout of the picture loader
// of the overlay cache; the case reader and the synthetic patient keep their pictures in it, so
// that an overlay shows them upright and in true colours.
#pragma once

class CImage;

class VxPictureLayout {
public:
    // Writes `source` into `target` (destroyed first) in the overlay layout. An odd width or
    // height loses its last column or row; an 8-bit picture spreads its grey byte to the three
    // channels; a 32-bit one drops its alpha. False, with a null target, for a null picture, one
    // smaller than 2 x 2 or of another depth. Every read stays within the source's rows.
    static bool ToOverlayLayout(const CImage& source, CImage& target);
    // The way back to an ordinary picture (for writing a file). Turning and swapping twice gives
    // the picture back, so this is the same operation; a picture in the layout keeps its size.
    static bool FromOverlayLayout(const CImage& source, CImage& target) {
        return ToOverlayLayout(source, target);
    }
};
