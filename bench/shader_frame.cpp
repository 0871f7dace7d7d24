// Shader-path frame benchmarks on the synthetic patient at 1280 x 800 off screen:
//   BM_Frame/path/views  RenderScene + Flush + glFinish on the fixed (0) or shader (1) path, in
//                        the single (1) or five-view (5) layout;
//   BM_BareLoop/views    the same triangles as one glDrawArrays per mesh placement from static
//                        VBOs per view, fixed-function lit, in the same context: the floor;
//   BM_JawImmediateDraw  one jaw through DrawWithMaterialWithMatrix, its per-call program compile
//                        included (run with MESA_SHADER_CACHE_DISABLE=true for cold compiles);
//   BM_TexturedGumDraw/textured  one gum through DrawGumWithMaterialWithMatrix: textured (1),
//                        both images uploaded and mip-mapped as at every draw, or with the
//                        textured flag off (0), the plain mesh program over the same buffer;
//   BM_ShaderBufferBuild every tooth's shader buffer made anew (grades and curvature included),
//                        and every gum's.
// Google Benchmark reports wall and CPU time; on llvmpipe the GPU work is CPU work on the
// driver's threads, so wall is the figure to compare.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>

#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <frame/NuRenderStatus.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxXForm.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <shader/NuRenderMaterial.h>
#include <shader/RenderV1.h>
#include <views/VxCamera.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

struct BareMesh {
    GLuint buffer = 0;
    GLsizei vertices = 0;
    std::vector<VxMatrix> placements;
};

struct Scene {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxCase> patient;
    VxOpenGLRender* render = nullptr;
    std::string error;
    std::vector<BareMesh> bare;
    int layout = 0; // views of the layout in force
};

Scene* MakeScene() {
    auto* s = new Scene;
    s->window = VxNativeWindow::CreateOffscreen(kW, kH);
    s->render = VxRenderStatus::GetInstance()->GetRender();
    g_bDIBShowMessage = false;
    if (!s->render->Create(s->window.get(), 24, 8)) {
        s->error = "no GL context: " + s->render->GetGLContext()->GetLastError();
        return s;
    }
    s->render->ResizeViewport(kW, kH);
    s->patient = VxSyntheticPatient::Generate(1);
    s->patient->Install();
    s->render->SetModel(&s->patient->model);
    return s;
}

Scene& GetScene() {
    static Scene* scene = MakeScene();
    return *scene;
}

// The front view filling the window, then the five-view layout when asked.
void Layout(Scene& s, int views) {
    if (s.layout == views) {
        return;
    }
    VxViewManager* mgr = VxViewManager::GetInstance();
    mgr->Clear();
    mgr->SetTotalViewSize(kW, kH);
    mgr->CreateSingleView();
    const VxBBox box = s.patient->model.GetBBox();
    VxXForm xf;
    xf.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                   VxViewManager::GetReferenceRotation(s.patient->model));
    xf.SetScale(2.3 / box.Diagonal());
    const VxPoint c = box.Center();
    xf.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
    mgr->GetView(0)->SetXForm(xf);
    s.render->RenderScene(true);
    if (views == 5) {
        mgr->SwitchTo5View(s.patient->model);
    }
    s.layout = views;
}

std::vector<VxMesh*> VisibleMeshes(VxCase& c) {
    std::vector<VxEntity*> entities;
    c.model.GetEntities(entities);
    std::vector<VxMesh*> meshes;
    for (VxEntity* e : entities) {
        if (e->IsVisible() && !e->IsDeleted() && e->IsKindOf(ObjectType_Mesh)) {
            meshes.push_back(static_cast<VxMesh*>(e));
        }
    }
    return meshes;
}

void BuildBare(Scene& s) {
    if (!s.bare.empty()) {
        return;
    }
    for (VxMesh* mesh : VisibleMeshes(*s.patient)) {
        std::vector<float> data;
        for (const VxFace& f : mesh->GetFaces()) {
            for (int k = 0; k < 3; ++k) {
                const int v = f.GetVtxId(k);
                const VxPoint& p = mesh->GetVertices()[static_cast<size_t>(v)].GetPos();
                const VxVector n = mesh->GetVertexNormal(v);
                data.insert(data.end(), {float(p[0]), float(p[1]), float(p[2]), float(n[0]),
                                         float(n[1]), float(n[2])});
            }
        }
        BareMesh m;
        m.vertices = static_cast<GLsizei>(data.size() / 6);
        glGenBuffers(1, &m.buffer);
        glBindBuffer(GL_ARRAY_BUFFER, m.buffer);
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(data.size() * sizeof(float)),
                     data.data(), GL_STATIC_DRAW);
        for (const DrawInfo_s& d : VxTransformMatrix::GetInstance()->GetDrawInfos(mesh)) {
            m.placements.push_back(d.matrix);
        }
        s.bare.push_back(m);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

// Every view with its own camera and stored model-view matrix (from the last library frame).
void BareFrame(Scene& s) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_ALWAYS, 2, 0xFF);
    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    glColor4f(0.9f, 0.88f, 0.82f, 1.0f);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    for (VxViewRegion* view : VxViewManager::GetInstance()->GetAllViews()) {
        double l, r, b, t, n, f;
        view->GetCamera()->GetFrustum(l, r, b, t, n, f);
        glViewport(view->Origin().x, view->Origin().y, view->Width(), view->Height());
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(l, r, b, t, n, f);
        glMatrixMode(GL_MODELVIEW);
        glLoadMatrixd(view->GetModelViewMatrix());
        for (const BareMesh& m : s.bare) {
            glBindBuffer(GL_ARRAY_BUFFER, m.buffer);
            glVertexPointer(3, GL_FLOAT, 6 * sizeof(float), nullptr);
            glNormalPointer(GL_FLOAT, 6 * sizeof(float),
                            reinterpret_cast<void*>(3 * sizeof(float)));
            if (m.placements.empty()) {
                glDrawArrays(GL_TRIANGLES, 0, m.vertices);
                continue;
            }
            for (const VxMatrix& p : m.placements) {
                double a[16];
                p.ToArray(a);
                glPushMatrix();
                glMultMatrixd(a);
                glDrawArrays(GL_TRIANGLES, 0, m.vertices);
                glPopMatrix();
            }
        }
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisable(GL_STENCIL_TEST);
    glDisable(GL_DEPTH_TEST);
    glFinish();
}

void BM_Frame(benchmark::State& state) {
    Scene& s = GetScene();
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return;
    }
    OpenGLVersion::GetInstance()->Set_btestversion(state.range(0) == 1);
    Layout(s, static_cast<int>(state.range(1)));
    s.render->RenderScene(true); // buffers built before the timing
    glFinish();
    for (auto _ : state) {
        s.render->RenderScene(true);
        s.render->Flush();
        glFinish();
    }
}
BENCHMARK(BM_Frame)
    ->ArgNames({"path", "views"})
    ->Args({0, 1})
    ->Args({1, 1})
    ->Args({0, 5})
    ->Args({1, 5})
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->UseRealTime();

void BM_BareLoop(benchmark::State& state) {
    Scene& s = GetScene();
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return;
    }
    OpenGLVersion::GetInstance()->Set_btestversion(false);
    Layout(s, static_cast<int>(state.range(0)));
    s.render->RenderScene(true); // the views' model-view matrices
    BuildBare(s);
    for (auto _ : state) {
        BareFrame(s);
    }
}
BENCHMARK(BM_BareLoop)
    ->ArgName("views")
    ->Arg(1)
    ->Arg(5)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->UseRealTime();

template <typename T> T* First(Scene& s) {
    for (VxMesh* m : VisibleMeshes(*s.patient)) {
        if (auto* t = dynamic_cast<T*>(m)) {
            return t;
        }
    }
    return nullptr;
}

// The camera of the single view's last frame is the one the draws read.
void DrawSetUp(Scene& s) {
    OpenGLVersion::GetInstance()->Set_btestversion(true);
    Layout(s, 1);
    s.render->RenderScene(true);
    glViewport(0, 0, kW, kH);
}

void BM_JawImmediateDraw(benchmark::State& state) {
    Scene& s = GetScene();
    VxJaw* jaw = s.error.empty() ? First<VxJaw>(s) : nullptr;
    if (jaw == nullptr) {
        state.SkipWithError("no jaw");
        return;
    }
    DrawSetUp(s);
    NuRenderMaterial m;
    m.SetJawDefault();
    m.SetBackAndFront(true);
    for (auto _ : state) {
        RenderV1::GetInstance()->DrawWithMaterialWithMatrix(jaw, m, glm::mat4(1.0f));
        glFinish();
    }
    state.counters["faces"] = jaw->GetFaceCount();
}
BENCHMARK(BM_JawImmediateDraw)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

void BM_TexturedGumDraw(benchmark::State& state) {
    Scene& s = GetScene();
    VxGum* gum = s.error.empty() ? First<VxGum>(s) : nullptr;
    if (gum == nullptr) {
        state.SkipWithError("no gum");
        return;
    }
    DrawSetUp(s);
    NuRenderMaterial m;
    m.SetGumDefault();
    OpenGLVersion::GetInstance()->Set_textured(state.range(0) == 1);
    for (auto _ : state) {
        RenderV1::GetInstance()->DrawGumWithMaterialWithMatrix(gum, m, glm::mat4(1.0f));
        glFinish();
    }
    OpenGLVersion::GetInstance()->Set_textured(true);
    state.counters["faces"] = gum->GetFaceCount();
}
BENCHMARK(BM_TexturedGumDraw)
    ->ArgName("textured")
    ->Arg(1)
    ->Arg(0)
    ->Unit(benchmark::kMillisecond)
    ->MinTime(2.0)
    ->UseRealTime();

void BM_ShaderBufferBuild(benchmark::State& state) {
    Scene& s = GetScene();
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return;
    }
    DrawSetUp(s);
    RenderV1* r = RenderV1::GetInstance();
    std::vector<VxMesh*> teeth;
    for (VxMesh* m : VisibleMeshes(*s.patient)) {
        if (m->GetObjectType() == ObjectType_Tooth) {
            teeth.push_back(m);
        }
    }
    NuRenderMaterial m;
    m.SetToothDefault();
    for (auto _ : state) {
        for (VxMesh* tooth : teeth) {
            NuRenderStatus::GetInstance()->Set_bIsUpdateVBO(true);
            r->SendMaterialMatrix(tooth, m, glm::mat4(1.0f), false, nullptr);
        }
        r->objectQueue.clear();
        glFinish();
    }
    state.counters["teeth"] = static_cast<double>(teeth.size());
}
BENCHMARK(BM_ShaderBufferBuild)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
