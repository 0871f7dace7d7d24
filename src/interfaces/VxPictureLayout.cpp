// VxPictureLayout: the turn and the byte swap, row by row.
#include <interfaces/VxPictureLayout.h>

#include <interfaces/CImage.h>

bool VxPictureLayout::ToOverlayLayout(const CImage& source, CImage& target) {
    if (!target.IsNull()) {
        target.Destroy();
    }
    if (source.IsNull()) {
        return false;
    }
    const int bpp = source.GetBPP();
    if (bpp != 8 && bpp != 24 && bpp != 32) {
        return false;
    }
    const int w = source.GetWidth() & ~1;
    const int h = source.GetHeight() & ~1;
    if (w < 2 || h < 2 || !target.Create(w, h, 24)) {
        return false;
    }
    const int step = bpp / 8;
    for (int y = 0; y < h; ++y) {
        const auto* in = static_cast<const unsigned char*>(source.GetPixelAddress(0, h - 1 - y));
        auto* out = static_cast<unsigned char*>(target.GetPixelAddress(0, y));
        for (int x = 0; x < w; ++x, in += step, out += 3) {
            if (step == 1) {
                out[0] = out[1] = out[2] = in[0];
            } else {
                // The picture's B, G, R become R, G, B.
                out[0] = in[2];
                out[1] = in[1];
                out[2] = in[0];
            }
        }
    }
    return true;
}
