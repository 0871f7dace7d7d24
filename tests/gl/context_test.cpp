// The platform layer under GL: the context has what was asked for (bits, version, compatibility
// features, loaded entry points), off-screen targets resize without losing the context, contexts
// stay apart, and the step-by-step creation fails where it should. Also the files-beside-library
// helpers, checked against what the dynamic loader reports in /proc/self/maps.
#include "VxGLTest.h"
#include "VxTestPaths.h"

#include <platform/VxDriverQuirks.h>
#include <platform/VxFileSystem.h>
#include <platform/VxGLCheck.h>
#include <platform/VxGLContext.h>
#include <platform/VxModulePath.h>
#include <platform/VxNativeWindow.h>

#include <dlfcn.h>

#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <sys/stat.h>

namespace {

// GLEW and EGL are private dependencies of the library, so this test does not link them; both
// are loaded in the process with the library, and their symbols are looked up at run time.
template <typename T> T ProcessSymbol(const char* name) {
    return reinterpret_cast<T>(dlsym(RTLD_DEFAULT, name));
}

using EglQuerySurfaceFn = unsigned (*)(void*, void*, int, int*);
constexpr int kEglWidth = 0x3057;
constexpr int kEglHeight = 0x3056;

bool SurfaceSize(VxGLContext* context, int* width, int* height) {
    auto query = ProcessSymbol<EglQuerySurfaceFn>("eglQuerySurface");
    return query && query(context->GetDisplay(), context->GetSurface(), kEglWidth, width) &&
           query(context->GetDisplay(), context->GetSurface(), kEglHeight, height);
}

void DrawRectFixedFunction(int x0, int y0, int x1, int y1, int width, int height) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, width, 0, height, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glRecti(x0, y0, x1, y1);
}

} // namespace

// ---------------------------------------------------------------------------------------------
using ContextGLTest = VxGLTest;

TEST_F(ContextGLTest, HasTheAskedDepthAndStencilBits) {
    GLint depthBits = 0, stencilBits = 0;
    glGetIntegerv(GL_DEPTH_BITS, &depthBits);
    glGetIntegerv(GL_STENCIL_BITS, &stencilBits);
    EXPECT_EQ(depthBits, 24);
    EXPECT_EQ(stencilBits, 8);
    // A 32-bit pixel format: eglChooseConfig alone would hand out 10-bit colour without alpha.
    GLint red = 0, alpha = 0;
    glGetIntegerv(GL_RED_BITS, &red);
    glGetIntegerv(GL_ALPHA_BITS, &alpha);
    EXPECT_EQ(red, 8);
    EXPECT_EQ(alpha, 8);

    // The bits must also behave: an 8-bit stencil keeps 0xA5 and 0xFF unmasked, and a 24-bit
    // depth buffer returns 0.3 to within 2^-24 (a 16-bit one would be off by up to 7.6e-6).
    glDisable(GL_SCISSOR_TEST);
    glStencilMask(0xFF);
    glClearStencil(0xA5);
    glClearDepth(0.3);
    glClear(GL_STENCIL_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    EXPECT_EQ(ReadStencil(10, 20, 4, 3), std::vector<int>(12, 0xA5));
    EXPECT_NEAR(ReadDepth(100, 100), 0.3f, 1e-6f);

    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, 8, 8);
    glClearStencil(0xFF);
    glClear(GL_STENCIL_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    EXPECT_EQ(ReadStencil(7, 7, 1, 1).at(0), 0xFF);
    EXPECT_EQ(ReadStencil(8, 8, 1, 1).at(0), 0xA5);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ContextGLTest, VersionIsAtLeast33WithCompatibilityProfile) {
    const char* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    ASSERT_NE(version, nullptr);
    int major = 0, minor = 0;
    ASSERT_EQ(std::sscanf(version, "%d.%d", &major, &minor), 2) << version;
    EXPECT_GE(major * 10 + minor, 33) << version;
    GLint mask = 0;
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &mask);
    EXPECT_TRUE(mask & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT) << "profile mask " << mask;
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ContextGLTest, FixedFunctionQuadDisplayListAndSelectionWork) {
    // The fixed-function path depends on immediate mode, display lists and the selection
    // buffer; a core profile would reject every one of them.
    glDisable(GL_DEPTH_TEST);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glColor3ub(255, 0, 0);
    DrawRectFixedFunction(64, 64, 192, 128, Width(), Height());
    EXPECT_EQ(CountColour(255, 0, 0), 128 * 64);
    // Top-down reading puts GL row 64 at image row height - 1 - 64.
    const VxTestImage topDown = ReadAllRGBA();
    EXPECT_EQ(topDown.Pixel(64, Height() - 1 - 64)[0], 255);
    EXPECT_EQ(topDown.Pixel(63, Height() - 1 - 64)[0], 0);
    EXPECT_EQ(topDown.Pixel(64, 64)[0], 0);

    const GLuint list = glGenLists(1);
    ASSERT_NE(list, 0u);
    glNewList(list, GL_COMPILE);
    glColor3ub(0, 255, 0);
    DrawRectFixedFunction(0, 0, 16, 16, Width(), Height());
    glEndList();
    glCallList(list);
    EXPECT_EQ(CountColour(0, 255, 0), 16 * 16);
    glDeleteLists(list, 1);

    GLuint hits[64] = {};
    glSelectBuffer(64, hits);
    glRenderMode(GL_SELECT);
    glInitNames();
    glPushName(7);
    DrawRectFixedFunction(10, 10, 20, 20, Width(), Height());
    glLoadName(9);
    DrawRectFixedFunction(-40, -40, -20, -20, Width(), Height()); // outside: no hit
    const GLint hitCount = glRenderMode(GL_RENDER);
    ASSERT_EQ(hitCount, 1);
    EXPECT_EQ(hits[0], 1u); // one name on the stack
    EXPECT_EQ(hits[3], 7u);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ContextGLTest, GlewLoadedTheEntryPointsUnderEGL) {
    EXPECT_TRUE(Context()->EntryPointsLoaded());
    const int status = Context()->GetGlewStatus();
    EXPECT_TRUE(status == GLEW_OK || (status == GLEW_ERROR_NO_GLX_DISPLAY &&
                                      VxDriverQuirks::Applies("glew-glx-error-under-egl")))
        << "glewInit returned " << status;

    // GLEW's own pointer variables, read without going through the library.
    auto* genBuffers = ProcessSymbol<PFNGLGENBUFFERSPROC*>("__glewGenBuffers");
    auto* bindBuffer = ProcessSymbol<PFNGLBINDBUFFERPROC*>("__glewBindBuffer");
    auto* isBuffer = ProcessSymbol<PFNGLISBUFFERPROC*>("__glewIsBuffer");
    auto* deleteBuffers = ProcessSymbol<PFNGLDELETEBUFFERSPROC*>("__glewDeleteBuffers");
    ASSERT_TRUE(genBuffers && bindBuffer && isBuffer && deleteBuffers);
    ASSERT_TRUE(*genBuffers && *bindBuffer);
    GLuint buffer = 0;
    (*genBuffers)(1, &buffer);
    ASSERT_NE(buffer, 0u);
    (*bindBuffer)(GL_ARRAY_BUFFER, buffer);
    EXPECT_TRUE((*isBuffer)(buffer));
    (*bindBuffer)(GL_ARRAY_BUFFER, 0);
    (*deleteBuffers)(1, &buffer);
    EXPECT_FALSE((*isBuffer)(buffer));
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ContextGLTest, ErrorCheckNamesAndDrainsErrors) {
    EXPECT_STREQ(VxGLErrorString(GL_INVALID_ENUM), "GL_INVALID_ENUM");
    EXPECT_STREQ(VxGLErrorString(GL_NO_ERROR), "GL_NO_ERROR");
    EXPECT_STREQ(VxGLErrorString(0x1234), "unknown GL error");
    glEnable(0x1234); // not a capability: GL_INVALID_ENUM
    // Without VX_GL_DEBUG the macro is compiled out and leaves the error pending.
    VX_CHECK_GL();
    testing::internal::CaptureStderr();
    const int reported = VxGLCheckErrors("here.cpp", 12);
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(reported, 1);
    EXPECT_NE(printed.find("here.cpp:12"), std::string::npos) << printed;
    EXPECT_NE(printed.find("GL_INVALID_ENUM"), std::string::npos) << printed;
    EXPECT_EQ(VxGLCheckErrors("here.cpp", 13), 0);
}

// ---------------------------------------------------------------------------------------------
// Resizing changes the shared surface, so it gets a suite of its own.
using ResizeGLTest = VxGLTestSized<64, 48>;

TEST_F(ResizeGLTest, ResizeRemakesThePbufferAndKeepsTheContext) {
    void* const context = Context()->GetContext();
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glEndList();
    int w = 0, h = 0;
    ASSERT_TRUE(SurfaceSize(Context(), &w, &h));
    EXPECT_EQ(w, 64);
    EXPECT_EQ(h, 48);

    void* const oldSurface = Context()->GetSurface();
    ASSERT_TRUE(ResizeSurface(300, 200));
    EXPECT_NE(Context()->GetSurface(), oldSurface);
    EXPECT_EQ(Context()->GetContext(), context);
    EXPECT_TRUE(Context()->IsCurrent());
    EXPECT_TRUE(glIsList(list)) << "the context's objects did not survive the resize";
    ASSERT_TRUE(SurfaceSize(Context(), &w, &h));
    EXPECT_EQ(w, 300);
    EXPECT_EQ(h, 200);

    glDisable(GL_SCISSOR_TEST);
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(CountColour(0, 255, 0), 300 * 200);

    // Same size again is a no-op; a degenerate size becomes one pixel, not an error.
    void* const surface = Context()->GetSurface();
    EXPECT_TRUE(ResizeSurface(300, 200));
    EXPECT_EQ(Context()->GetSurface(), surface);
    EXPECT_TRUE(ResizeSurface(0, -5));
    ASSERT_TRUE(SurfaceSize(Context(), &w, &h));
    EXPECT_EQ(w + h, 2);
    ASSERT_TRUE(ResizeSurface(64, 48));
    glDeleteLists(list, 1);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(ResizeGLTest, AnX11WindowCannotBeResizedAsOffscreen) {
    auto window = VxNativeWindow::FromX11(reinterpret_cast<void*>(0x1), 42);
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(window->SetOffscreenSize(10, 10));
    EXPECT_EQ(VxNativeWindow::FromX11(nullptr, 42), nullptr);
    EXPECT_EQ(VxNativeWindow::FromX11(reinterpret_cast<void*>(0x1), 0), nullptr);
}

// ---------------------------------------------------------------------------------------------
using TwoContextsGLTest = VxGLTest;

TEST_F(TwoContextsGLTest, ContextsCoexistAndShareNothing) {
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    glEndList();

    auto window = VxNativeWindow::CreateOffscreen(32, 16);
    VxGLContext second;
    ASSERT_TRUE(second.Create(window.get(), 16, 0)) << second.GetLastError();
    EXPECT_TRUE(second.IsCurrent());
    EXPECT_FALSE(Context()->IsCurrent());
    EXPECT_NE(second.GetContext(), Context()->GetContext());
    EXPECT_FALSE(glIsList(list)) << "a display list of one context is visible in another";
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);

    ASSERT_TRUE(Context()->MakeCurrent());
    EXPECT_TRUE(glIsList(list));
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(CountColour(255, 0, 0), Width() * Height());

    ASSERT_TRUE(second.MakeCurrent());
    const VxTestImage image = ReadRGBA(0, 0, 32, 16);
    EXPECT_EQ(image.CountColour(0, 0, 255), 32 * 16) << "the second target lost its pixels";

    ASSERT_TRUE(Context()->MakeCurrent());
    glDeleteLists(list, 1);
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(TwoContextsGLTest, OneContextMovesBetweenOffscreenWindows) {
    auto other = VxNativeWindow::CreateOffscreen(20, 10);
    ASSERT_TRUE(Context()->MakeCurrent(other.get())) << Context()->GetLastError();
    EXPECT_TRUE(other->HasPixelFormat());
    EXPECT_EQ(Context()->GetSurface(), other->GetEGLSurface());
    glViewport(0, 0, 20, 10);
    glClearColor(1, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(ReadRGBA(0, 0, 20, 10).CountColour(255, 255, 0), 200);

    ASSERT_TRUE(Context()->MakeCurrent(Window()));
    // Destroying the other window while the context is elsewhere leaves the context working.
    other.reset();
    glViewport(0, 0, Width(), Height());
    glClearColor(0, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(CountColour(0, 255, 255), Width() * Height());
    EXPECT_FALSE(Context()->MakeCurrent(nullptr));
    EXPECT_EQ(GLErrors(), "");
}

TEST_F(TwoContextsGLTest, ASecondContextOnTheSameWindowDrawsIntoTheSamePixels) {
    // As with a desktop window, the pixels belong to the window, not to the context.
    VxGLContext second;
    ASSERT_TRUE(second.Create(Window(), Config().depthBits, Config().stencilBits))
        << second.GetLastError();
    EXPECT_EQ(second.GetSurface(), Context()->GetSurface());
    EXPECT_EQ(second.GetPixelFormat(), Context()->GetPixelFormat());
    glClearColor(1, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glFinish();
    ASSERT_TRUE(Context()->MakeCurrent());
    EXPECT_EQ(CountColour(255, 0, 255), Width() * Height());

    // Another format on a window that has one is refused, at SetPixelFormat.
    VxGLContext other;
    ASSERT_TRUE(other.GetDC(Window()));
    const int format = other.ChoosePixelFormat(16, 0);
    ASSERT_GT(format, 0);
    EXPECT_NE(format, Context()->GetPixelFormat());
    EXPECT_FALSE(other.SetPixelFormat(format));
    EXPECT_TRUE(Context()->IsCurrent());
}

TEST_F(TwoContextsGLTest, StepsFailInOrderAndAWindowKeepsItsFormat) {
    VxGLContext context;
    EXPECT_FALSE(context.GetDC(nullptr));
    EXPECT_EQ(context.ChoosePixelFormat(24, 8), 0);
    EXPECT_FALSE(context.SetPixelFormat(1));
    EXPECT_FALSE(context.CreateContext());
    EXPECT_FALSE(context.MakeCurrent());
    EXPECT_FALSE(context.SwapBuffers());

    auto window = VxNativeWindow::CreateOffscreen(8, 8);
    ASSERT_TRUE(context.GetDC(window.get())) << context.GetLastError();
    EXPECT_FALSE(context.SetPixelFormat(-3));
    const int deep = context.ChoosePixelFormat(24, 8);
    ASSERT_GT(deep, 0) << context.GetLastError();
    ASSERT_TRUE(context.SetPixelFormat(deep));
    EXPECT_TRUE(context.SetPixelFormat(deep)) << "setting the same format again must succeed";
    const int shallow = context.ChoosePixelFormat(0, 0);
    ASSERT_GT(shallow, 0);
    if (shallow != deep) {
        EXPECT_FALSE(context.SetPixelFormat(shallow)) << "a window takes one format for its life";
    }
    // Absurd requests find nothing and say what was on offer.
    EXPECT_EQ(context.ChoosePixelFormat(99, 99), 0);
    EXPECT_NE(context.GetLastError().find("id "), std::string::npos) << context.GetLastError();

    ASSERT_TRUE(context.SetPixelFormat(deep));
    ASSERT_TRUE(context.CreateContext()) << context.GetLastError();
    ASSERT_TRUE(context.MakeCurrent());
    EXPECT_TRUE(context.SwapBuffers()); // a pbuffer swap is a harmless no-op
    EXPECT_FALSE(context.GetDC(window.get())) << "GetDC on a made context must refuse";
    context.DoneCurrent();
    EXPECT_FALSE(context.IsCurrent());
    ASSERT_TRUE(Context()->MakeCurrent());
}

TEST_F(TwoContextsGLTest, EveryOffscreenPlatformThatExistsGivesAContext) {
    struct Case {
        VxGLContext::OffscreenPlatform platform;
        const char* name;
    };
    const Case cases[] = {{VxGLContext::OffscreenPlatform::Surfaceless, "surfaceless"},
                          {VxGLContext::OffscreenPlatform::Device, "device"},
                          {VxGLContext::OffscreenPlatform::Default, "default"}};
    int made = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        VxGLContext::SetOffscreenPlatform(c.platform);
        auto window = VxNativeWindow::CreateOffscreen(16, 16);
        VxGLContext context;
        const bool ok = context.Create(window.get(), 24, 8);
        VxGLContext::SetOffscreenPlatform(VxGLContext::OffscreenPlatform::Auto);
        if (!ok) {
            continue; // not every platform exists on every machine; one must
        }
        ++made;
        EXPECT_STREQ(context.GetPlatformName(), c.name);
        glClearColor(1, 0, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        EXPECT_EQ(ReadRGBA(0, 0, 16, 16).CountColour(255, 0, 255), 256);
        EXPECT_TRUE(context.EntryPointsLoaded());
    }
    EXPECT_GE(made, 1);
    ASSERT_TRUE(Context()->MakeCurrent());
}

// ---------------------------------------------------------------------------------------------
// Files beside the library. The reference is the loader's own record of what it mapped.
namespace {

std::string MappedLibraryPath() {
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line)) {
        const size_t slash = line.find('/');
        if (slash != std::string::npos &&
            line.find("/libvxrender.so", slash) != std::string::npos) {
            return line.substr(slash);
        }
    }
    return std::string();
}

std::string DirectoryOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
}

} // namespace

TEST(ModulePathTest, PointsAtTheLoadedLibrary) {
    const std::string mapped = MappedLibraryPath();
    ASSERT_FALSE(mapped.empty()) << "libvxrender.so is not in /proc/self/maps";
    const std::string path = VxModulePath::LibraryPath().ToUtf8();
    EXPECT_EQ(path, mapped);
    EXPECT_EQ(VxModulePath::Directory().ToUtf8(), DirectoryOf(mapped));
    EXPECT_TRUE(PathFileExistsW(VxModulePath::LibraryPath()));

    const std::string dir = DirectoryOf(mapped);
    EXPECT_EQ(VxModulePath::FileBesideLibrary(L"\\teeth.bmp").ToUtf8(), dir + "/teeth.bmp");
    EXPECT_EQ(VxModulePath::FileBesideLibrary(L"/gum.bmp").ToUtf8(), dir + "/gum.bmp");
    EXPECT_EQ(VxModulePath::FileBesideLibrary(L"\\pngofcreatemodify\\a.png").ToUtf8(),
              dir + "/pngofcreatemodify/a.png");
    EXPECT_EQ(VxModulePath::FileBesideLibrary(nullptr).ToUtf8(), dir + "/");
}

TEST(ModulePathTest, GetModuleFileNameWTruncatesLikeTheDesktopCall) {
    const std::wstring full = VxModulePath::LibraryPath().Str();
    wchar_t buffer[4096];
    EXPECT_EQ(GetModuleFileNameW(nullptr, buffer, 4096), full.size());
    EXPECT_EQ(std::wstring(buffer), full);
    wchar_t small[5] = {L'x', L'x', L'x', L'x', L'x'};
    EXPECT_EQ(GetModuleFileNameW(nullptr, small, 5), 4u);
    EXPECT_EQ(std::wstring(small), full.substr(0, 4));
    EXPECT_EQ(GetModuleFileNameW(nullptr, nullptr, 10), 0u);
}

TEST(FileSystemTest, ExistenceSizeAndStampFollowTheFile) {
    const std::string dir = VxTestOutputDir() + "/platform_fs";
    ::mkdir(dir.c_str(), 0755);
    const std::string file = dir + "/probe.txt";
    WriteFile(file, "12345");
    const CString slashes = CString::FromUtf8(file);
    std::wstring back = slashes.Str();
    for (wchar_t& c : back) {
        if (c == L'/') {
            c = L'\\';
        }
    }
    EXPECT_TRUE(PathFileExistsW(slashes));
    EXPECT_TRUE(PathFileExistsW(back.c_str()));
    EXPECT_TRUE(PathFileExistsW(CString::FromUtf8(dir)));
    EXPECT_TRUE(VxFileSystem::IsDirectory(CString::FromUtf8(dir)));
    EXPECT_FALSE(VxFileSystem::IsDirectory(slashes));
    EXPECT_FALSE(PathFileExistsW(CString::FromUtf8(dir + "/missing.txt")));
    EXPECT_FALSE(PathFileExistsW(nullptr));
    EXPECT_FALSE(PathFileExistsW(L""));

    // Size and stamp follow the file.
    const std::string stamped = dir + "/stamp.ini";
    std::remove(stamped.c_str());
    const CString path = CString::FromUtf8(stamped);
    const VxFileStamp missing = VxFileSystem::Stamp(path);
    EXPECT_FALSE(missing.exists);
    std::uint64_t size = 77;
    EXPECT_FALSE(VxFileSystem::FileSize(path, &size));
    EXPECT_EQ(size, 77u);

    WriteFile(stamped, "[A]\nx=1\n");
    const VxFileStamp first = VxFileSystem::Stamp(path);
    EXPECT_EQ(first.size, 8u);
    EXPECT_NE(first, missing);
    EXPECT_EQ(VxFileSystem::Stamp(path), first) << "an unchanged file must keep its stamp";
    ASSERT_TRUE(VxFileSystem::FileSize(path, &size));
    EXPECT_EQ(size, 8u);

    // Same size, new content: only the time tells. Set it explicitly so a coarse file-system
    // clock cannot hide the change.
    WriteFile(stamped, "[A]\nx=2\n");
    struct timespec times[2] = {{0, UTIME_OMIT}, {first.modifiedNs / 1000000000 + 5, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, stamped.c_str(), times, 0), 0);
    const VxFileStamp second = VxFileSystem::Stamp(path);
    EXPECT_EQ(second.size, first.size);
    EXPECT_NE(second, first);
    EXPECT_FALSE(VxFileSystem::FileSize(CString::FromUtf8(dir), &size))
        << "a directory has no size";
}

TEST(DriverQuirksTest, RegistryIsConsistentAndMatchesByDriverStrings) {
    std::set<std::string> names;
    for (const VxDriverQuirk& q : VxDriverQuirks::All()) {
        EXPECT_TRUE(names.insert(q.name).second) << "duplicate quirk " << q.name;
        EXPECT_GT(std::string(q.why).size(), 20u) << q.name << " needs its reason";
        EXPECT_TRUE(VxDriverQuirks::IsKnown(q.name));
    }
    EXPECT_FALSE(VxDriverQuirks::Applies("no-such-quirk", "llvmpipe", "Mesa"));
    EXPECT_FALSE(VxDriverQuirks::Applies(nullptr, "llvmpipe", "Mesa"));
    EXPECT_TRUE(VxDriverQuirks::Applies("glew-glx-error-under-egl", nullptr, nullptr));
}
