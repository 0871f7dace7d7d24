// The picture decoder and encoder the library calls are its own compiled-in copy of stb, not a
// copy some other package in the process exports. This program exports the stb entry points
// itself, as such a package would, and they refuse everything: a library that bound to any
// dynamic stb symbol would reach these and fail to load or save.
#include <interfaces/CImage.h>
#include <interfaces/CString.h>
#include <interfaces/VxGdi.h>

#include "VxTestPaths.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>

namespace {
int g_foreignCalls = 0;
} // namespace

extern "C" {
__attribute__((visibility("default"))) unsigned char*
stbi_load_from_memory(const unsigned char*, int, int*, int*, int*, int) {
    ++g_foreignCalls;
    return nullptr;
}
__attribute__((visibility("default"))) int stbi_info_from_memory(const unsigned char*, int, int*,
                                                                 int*, int*) {
    ++g_foreignCalls;
    return 0;
}
__attribute__((visibility("default"))) int stbi_write_png(const char*, int, int, int, const void*,
                                                          int) {
    ++g_foreignCalls;
    return 0;
}
__attribute__((visibility("default"))) int stbi_write_jpg(const char*, int, int, int, const void*,
                                                          int) {
    ++g_foreignCalls;
    return 0;
}
}

TEST(ImageDecoderTest, LibraryUsesItsOwnDecoderAndEncoder) {
    for (const char* ext : {"png", "jpg"}) {
        CImage out;
        ASSERT_TRUE(out.Create(8, 4, 24));
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 8; ++x) {
                out.SetPixel(x, y, RGB(x * 30, y * 60, 200));
            }
        }
        const std::string path = VxTestOutputDir() + "/image_decoder_test." + ext;
        ASSERT_EQ(out.Save(CString::FromUtf8(path)), S_OK) << ext;
        CImage in;
        ASSERT_EQ(in.Load(CString::FromUtf8(path)), S_OK) << ext;
        EXPECT_EQ(in.GetWidth(), 8);
        EXPECT_EQ(in.GetHeight(), 4);
        if (std::string(ext) == "png") {
            EXPECT_EQ(in.GetPixel(7, 3), RGB(210, 180, 200));
        }
    }
    EXPECT_EQ(g_foreignCalls, 0);
}

TEST(ImageDecoderTest, LibraryNeitherExportsNorImportsStb) {
    // The library's own file, found through one of its exported functions.
    Dl_info info{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&GetDIBits), &info), 0);
    ASSERT_NE(info.dli_fname, nullptr);
    void* lib = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_NE(lib, nullptr) << info.dli_fname;
    // Looked up in the library and everything it depends on: none of them provides stb.
    for (const char* name : {"stbi_load_from_memory", "stbi_info_from_memory", "stbi_write_png",
                             "stbi_load", "stbi_image_free"}) {
        EXPECT_EQ(dlsym(lib, name), nullptr) << name;
    }
    dlclose(lib);
}
