// RenderV1: making the singleton and reading its files from beside the library.
#include <shader/RenderV1.h>

#include <mesh/VxDrawerFiles.h>
#include <platform/VxFileSystem.h>
#include <shader/Shader.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include <stb_image.h>

#include <iostream>
#include <string>

namespace {

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
    stbi_image_free(gumImagePixels);
    stbi_image_free(gumBumpPixels);
    for (auto& entry : editorImages) {
        stbi_image_free(entry.second.pixels);
    }
}

void RenderV1::SetUpdata() {
    // Called again (tests do), it reads afresh rather than keeping two copies.
    stbi_image_free(gumImagePixels);
    stbi_image_free(gumBumpPixels);
    for (auto& entry : editorImages) {
        stbi_image_free(entry.second.pixels);
    }
    editorImages.clear();

    const std::wstring colourPath = VxDrawerFiles::Path(L"\\GumImageredwhite.png").Str();
    const std::wstring bumpPath = VxDrawerFiles::Path(L"\\GumImagebump.png").Str();
    // Asked and not acted on: a missing image is reported when a gum is drawn with it.
    const bool colourExists = PathFileExistsW(colourPath.c_str());
    const bool bumpExists = PathFileExistsW(bumpPath.c_str());
    (void)colourExists;
    (void)bumpExists;

    int channels = 0;
    gumImagePixels = stbi_load(VxFileSystem::ToNativePath(colourPath.c_str()).c_str(),
                               &gumImageWidth, &gumImageHeight, &channels, 3);
    gumBumpPixels = stbi_load(VxFileSystem::ToNativePath(bumpPath.c_str()).c_str(), &gumBumpWidth,
                              &gumBumpHeight, &channels, 3);

    const std::string fontPath = NativePath(L"\\default.ttf");
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
        image.pixels =
            stbi_load((folder + row.file).c_str(), &image.width, &image.height, &channels, 3);
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
