// RenderV1: making the singleton and reading its files from beside the library.
#include <shader/RenderV1.h>

#include <mesh/VxDrawerFiles.h>
#include <platform/VxFileSystem.h>
#include <shader/Shader.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include <interfaces/CImage.h>
#include <interfaces/CString.h>

#include <cstdlib>

#include <iostream>
#include <string>

namespace {

// An image file as tightly packed RGB rows, top row first, in memory that std::free releases; null
// where the file is missing or not a picture. It goes through CImage, whose decoder is the
// library's own and refuses declared sizes the file cannot hold.
unsigned char* LoadRgb(const std::string& nativePath, int* width, int* height) {
    CImage image;
    if (FAILED(image.Load(CString::FromUtf8(nativePath).GetString())) || image.IsNull()) {
        return nullptr;
    }
    const int w = image.GetWidth(), h = image.GetHeight();
    auto* rgb = static_cast<unsigned char*>(std::malloc(static_cast<size_t>(w) * h * 3));
    if (rgb == nullptr) {
        return nullptr;
    }
    unsigned char* p = rgb;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const COLORREF c = image.GetPixel(x, y);
            *p++ = GetRValue(c);
            *p++ = GetGValue(c);
            *p++ = GetBValue(c);
        }
    }
    *width = w;
    *height = h;
    return rgb;
}

std::string NativePath(const wchar_t* suffix) {
    return VxFileSystem::ToNativePath(VxDrawerFiles::Path(suffix).Str().c_str());
}

// The editor's images in the order they are read, with their elements.
struct EditorImageFile {
    const char* file;
    Enumerationofpng element;
};
const EditorImageFile kEditorImages[] = {
    {"btn_add_nor.png", PngBtnAddNormal},
    {"btn_add_sel.png", PngBtnAddHover},
    {"btn_del_nor.png", PngBtnDelNormal},
    {"btn_del_sel.png", PngBtnDelHover},
    {"btn_down_nor.png", PngBtnDownNormal},
    {"btn_down_sel.png", PngBtnDownHover},
    {"btn_lock_nor.png", PngBtnLockNormal},
    {"btn_lock_sel.png", PngBtnLockHover},
    {"btn_unlock_nor.png", PngBtnUnlockNormal},
    {"btn_unlock_sel.png", PngBtnUnlockHover},
    {"btn_up_nor.png", PngBtnUpNormal},
    {"btn_up_sel.png", PngBtnUpHover},
    {"gap_card_bg.png", PngGapCard},
    {"list_popup_bg.png", PngListBackground},
    {"ipr_active_step.png", PngStepActive},
    {"ipr_done_step.png", PngStepDone},
    {"ipr_normal_step.png", PngStepNormal},
};

} // namespace

RenderV1* RenderV1::GetInstance() {
    static RenderV1 instance;
    return &instance;
}

RenderV1::RenderV1() {
    SetUpdata();
    // The kept slots start empty; programs need a context, which may not exist yet.
    meshShader = toothShader = gumShader = attachShader = billboardShader = nullptr;
    triandcolorShader = quadrTextureShader = quadrSelectionShader = nullptr;
    quadrTextureForPngShader = lineShader = textShader = textChineseShader = nullptr;
    wideCharacters.clear();
    theModel = nullptr;
}

RenderV1::~RenderV1() {
    // Runs at process exit, when the context may already be gone: no GL call and no FreeType
    // clean-up here. Only plain memory is given back.
    Shader* slots[] = {currentMeshShader,    meshShader,
                       toothShader,          gumShader,
                       attachShader,         billboardShader,
                       triandcolorShader,    quadrTextureShader,
                       quadrSelectionShader, quadrTextureForPngShader,
                       lineShader,           textShader,
                       textChineseShader};
    for (Shader* s : slots) {
        delete s;
    }
    std::free(gumImagePixels);
    std::free(gumBumpPixels);
    for (auto& entry : editorImages) {
        std::free(entry.second.pixels);
    }
}

void RenderV1::SetUpdata() {
    // Called again (tests do), it reads afresh rather than keeping two copies.
    std::free(gumImagePixels);
    std::free(gumBumpPixels);
    for (auto& entry : editorImages) {
        std::free(entry.second.pixels);
    }
    editorImages.clear();

    const std::wstring colourPath = VxDrawerFiles::Path(L"\\GumImageredwhite.png").Str();
    const std::wstring bumpPath = VxDrawerFiles::Path(L"\\GumImagebump.png").Str();
    // Asked and not acted on: a missing image is reported when a gum is drawn with it.
    const bool colourExists = PathFileExistsW(colourPath.c_str());
    const bool bumpExists = PathFileExistsW(bumpPath.c_str());
    (void)colourExists;
    (void)bumpExists;

    gumImagePixels =
        LoadRgb(VxFileSystem::ToNativePath(colourPath.c_str()), &gumImageWidth, &gumImageHeight);
    gumBumpPixels =
        LoadRgb(VxFileSystem::ToNativePath(bumpPath.c_str()), &gumBumpWidth, &gumBumpHeight);

    const std::string fontPath = NativePath(L"\\default.ttf");
    // A second read replaces the font; the stores hold only textures made from the old face.
    if (ftFace != nullptr) {
        FT_Done_Face(ftFace);
        ftFace = nullptr;
    }
    if (ftLibrary != nullptr) {
        FT_Done_FreeType(ftLibrary);
        ftLibrary = nullptr;
    }
    if (FT_Init_FreeType(&ftLibrary)) {
        ftLibrary = nullptr;
        std::cout << "ERROR::FREETYPE: Could not init FreeType Library" << std::endl;
    }
    if (FT_New_Face(ftLibrary, fontPath.c_str(), 0, &ftFace)) {
        ftFace = nullptr;
        std::cout << "ERROR::FREETYPE: Failed to load font" << std::endl;
    }
    // FreeType answers a null face with an error code, so a missing font goes no further.
    FT_Set_Pixel_Sizes(ftFace, 0, 48);

    const std::string folder = NativePath(L"\\pngofcreatemodify\\");
    for (const EditorImageFile& row : kEditorImages) {
        NuPngImage image;
        image.pixels = LoadRgb(folder + row.file, &image.width, &image.height);
        if (!image.pixels) {
            image.width = image.height = 0;
        }
        image.texture = 0;
        editorImages[row.element] = image;
    }
    if (!gumImagePixels) {
        gumImageWidth = gumImageHeight = 0;
    }
    if (!gumBumpPixels) {
        gumBumpWidth = gumBumpHeight = 0;
    }
}

void RenderV1::ClearMapofVBOID() {
    mapOfVBOID.clear();
    mapOfTriColorVBO.clear();
}
