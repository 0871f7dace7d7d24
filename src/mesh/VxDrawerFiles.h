// VxDrawerFiles: where the fixed-function drawers find their optional files: the colour INI
// files and the "teeth.bmp" / "gum.bmp" textures, all in the directory of the library module.
// Only names and existence tests live here; reading the files is the callers' business.
#pragma once

#include <interfaces/CString.h>

class VxDrawerFiles {
public:
    // Directory of the library joined with a suffix written as L"\\teeth.bmp".
    static CString Path(const wchar_t* suffix);
    // PathFileExistsW on the path of "\teeth.bmp" / "\gum.bmp"; asked again at every call, so a
    // file dropped beside the library takes effect at the next draw.
    static bool TeethBitmapExists();
    static bool GumBitmapExists();

    // Tests only: look in this directory instead of the library's (empty goes back to the
    // library's). Test programs share the build directory with the library, and files written
    // beside it would leak into every other test of the tree running at the same time.
    static void SetDirectoryOverride(const CString& directory);
};
