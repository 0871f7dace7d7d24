// VxAuxTestScene: host-side bring-up for the aux tests.
#include "VxAuxTestScene.h"

#include "VxTestPaths.h"

#include <GL/glew.h>

#include <aux/VxAuxRender.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxXForm.h>
#include <mesh/VxVBOHandleMgr.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include "VxTestBmp.h"
#include "VxTestPaths.h"

#include <interfaces/CString.h>

#include <algorithm>
#include <string>
#include <memory>

namespace {

std::unique_ptr<VxNativeWindow> g_window;
bool g_open = false;
int g_width = 0;
int g_height = 0;

void Box(VxJaw& m, const VxPoint& a, const VxPoint& b) {
    std::vector<VxPoint> p;
    for (int i = 0; i < 8; ++i) {
        p.emplace_back(i & 1 ? b[0] : a[0], i & 2 ? b[1] : a[1], i & 4 ? b[2] : a[2]);
    }
    // Outward-facing quads of a box, two triangles each.
    const int q[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                         {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    std::vector<int> t;
    for (const auto& f : q) {
        t.insert(t.end(), {f[0], f[1], f[2], f[0], f[2], f[3]});
    }
    m.SetMeshData(p, t);
}

} // namespace

bool VxAuxTestScene::Open(int width, int height, bool whitePage) {
    if (g_open) {
        return width == g_width && height == g_height;
    }
    g_bDIBShowMessage = false;
    g_window = VxNativeWindow::CreateOffscreen(width, height);
    VxOpenGLRender* render = Render();
    // The pixel checks tell the objects from a plain white page; without a picture the window
    // would be black.
    const std::string white = VxTestOutputDir() + "/aux_scene_white.bmp";
    if (whitePage && VxWriteBmp24(white, 4, 4, VxTestRgb{255, 255, 255})) {
        render->SetBkGround(CString::FromUtf8(white));
    }
    if (!g_window || !render->Create(g_window.get(), 24, 8) || !render->GetGLContext()) {
        return false;
    }
    render->ResizeViewport(width, height);
    OpenGLVersion::GetInstance()->Set_btestversion(false);
    g_width = width;
    g_height = height;
    g_open = true;
    return true;
}

int VxAuxTestScene::Width() {
    return g_width;
}
int VxAuxTestScene::Height() {
    return g_height;
}

VxOpenGLRender* VxAuxTestScene::Render() {
    return VxRenderStatus::GetInstance()->GetRender();
}

VxAuxRender* VxAuxTestScene::Aux() {
    return VxRenderStatus::GetInstance()->GetAuxRender();
}

VxAuxTestScene::VxAuxTestScene(double pxPerMm, bool withSlab, double slabTop) : m_pxPerMm(pxPerMm) {
    Render()->GetGLContext()->MakeCurrent();
    if (withSlab) {
        Box(slab, VxPoint(-20, -20, -1), VxPoint(0, 20, slabTop));
    } else {
        Box(slab, VxPoint(0, 0, -60), VxPoint(0.001, 0.001, -59.999));
    }
    model.AddEntity(&slab);
    Render()->SetModel(&model);
    VxViewManager* views = VxViewManager::GetInstance();
    views->Clear();
    views->SetTotalViewSize(g_width, g_height);
    views->CreateSingleView();
    VxXForm xf;
    // The shorter side spans -1 to 1 at scale 1.
    xf.SetScale(pxPerMm * 2.0 / std::min(g_width, g_height));
    views->GetView(0)->SetXForm(xf);
    Frame();
}

VxAuxTestScene::~VxAuxTestScene() {
    Aux()->Clear();
    VxTransformMatrix::GetInstance()->Clear();
    VxViewManager::GetInstance()->Clear();
    Render()->SetModel(nullptr);
    VxVBOHandleMgr::GetInstance()->Clear();
}

void VxAuxTestScene::Frame() {
    Render()->RenderScene(true);
}

VxTestImage VxAuxTestScene::Read() {
    glFinish();
    VxTestImage img(g_width, g_height);
    glReadPixels(0, 0, g_width, g_height, GL_RGBA, GL_UNSIGNED_BYTE, img.rgba.data());
    img.FlipRows();
    for (size_t i = 3; i < img.rgba.size(); i += 4) {
        img.rgba[i] = 255;
    }
    return img;
}

VxTestImage VxAuxTestScene::FrameWithAux() {
    Frame();
    Aux()->Render();
    return Read();
}

CPoint VxAuxTestScene::ToScreen(const VxPoint& p) const {
    return Render()->MapModelPointToScreen(VxViewManager::GetInstance()->GetView(0), p, nullptr);
}

void VxAuxTestScene::Save(const VxTestImage& image, const std::string& name) {
    VxWritePng(VxTestOutputDir() + "/" + name + ".png", image);
}
