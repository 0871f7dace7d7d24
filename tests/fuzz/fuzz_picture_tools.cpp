// Fuzz target: a picture file of any kind the loader accepts, then everything the patient-picture
// overlays do to it: brought into the overlay layout (even size, 24 bits, turned, R G B), the
// brightness and contrast steps of the cache with a value taken from the input, the cache's copy,
// and the way back to an ordinary picture. Odd sizes, 8- and 32-bit pictures and padded rows all
// pass here; a read or write past a row is a finding.
#include <interfaces/CImage.h>
#include <interfaces/VxPictureLayout.h>
#include <overlays/VxCacheStuff.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CImage img;
    if (size < 1 || img.LoadFromMemory(data, size) != S_OK) {
        return 0;
    }
    // The first byte picks the steps, as a slider would: -128 to 127.
    const int step = static_cast<int>(data[0]) - 128;
    VxCacheStuff* cache = VxCacheStuff::GetInstance();
    CImage held;
    if (VxPictureLayout::ToOverlayLayout(img, held)) {
        cache->AdjustImageBrightness(step, held);
        cache->AdjustImageContrast(step / 2, held);
        CImage copy;
        cache->ImageCopy(held, copy);
        CImage back;
        VxPictureLayout::FromOverlayLayout(copy, back);
    }
    // The cache's steps also meet pictures that never went through the layout.
    cache->AdjustImageBrightness(step, img);
    cache->AdjustImageContrast(-step, img);
    return 0;
}
