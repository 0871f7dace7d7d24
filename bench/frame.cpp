// Frame benchmarks on the synthetic patient at 1280 x 800 off screen, fixed-function path:
//   BM_FullFrame      RenderScene + Flush + glFinish, what a host pays per frame;
//   BM_BareLoop       the same triangles as one glDrawArrays per mesh placement from static VBOs,
//                     with the same light, depth and stencil tests, in the same context: the floor
//                     the library's overhead is measured against;
//   BM_Pick*          ProcessFeedback + DoSelect on a tooth pixel for a whole tooth, a vertex and
//                     an edge (the frame they read is drawn before the timing);
//   BM_BuildMeshBuffers  every mesh's buffers made anew through VxVBOHandleMgr.
// scripts/bench.sh turns the figures into ratios. Nothing here is checked for correctness beyond
// a pick that must hit; the tests do that.
#define GL_GLEXT_PROTOTYPES 1
#include <GL/gl.h>
#include <GL/glext.h>

#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxXForm.h>
#include <mesh/VxVBOHandleMgr.h>
#include <platform/VxGLContext.h>
#include <platform/VxNativeWindow.h>
#include <select/VxOpenGLSelect.h>
#include <views/VxCamera.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

struct BareMesh {
    GLuint buffer = 0;
    GLsizei vertices = 0;
    std::vector<VxMatrix> placements; // empty: drawn where it is
};

struct Scene {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxCase> patient;
    VxOpenGLRender* render = nullptr;
    std::string error;
    std::vector<BareMesh> bare;
    long long triangles = 0;
};

// The host's bring-up, in the library's order: background (none), Create, size, one view,
// models. The view shows the patient from the front, as the programs start.
Scene* MakeScene() {
    auto* s = new Scene;
    s->window = VxNativeWindow::CreateOffscreen(kW, kH);
    s->render = VxRenderStatus::GetInstance()->GetRender();
    g_bDIBShowMessage = false; // no background picture, and no need to hear about it
    if (!s->render->Create(s->window.get(), 24, 8)) {
        s->error = "no GL context: " + s->render->GetGLContext()->GetLastError();
        return s;
    }
    OpenGLVersion::GetInstance()->Set_btestversion(false);
    s->render->ResizeViewport(kW, kH);
    VxViewManager* views = VxViewManager::GetInstance();
    views->Clear();
    views->SetTotalViewSize(kW, kH);
    views->CreateSingleView();
    s->patient = VxSyntheticPatient::Generate(1);
    s->patient->Install();
    s->render->SetModel(&s->patient->model);
    VxRenderStatus::GetInstance()->GetSelecter()->SetModel(&s->patient->model);
    const VxBBox box = s->patient->model.GetBBox();
    VxXForm xf;
    xf.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                   VxViewManager::GetReferenceRotation(s->patient->model));
    xf.SetScale(2.3 / box.Diagonal());
    const VxPoint c = box.Center();
    xf.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
    views->GetView(0)->SetXForm(xf);
    // The first frame builds the buffers and lists; the timings are of frames after it.
    s->render->RenderScene(true);
    s->render->Flush();
    glFinish();
    return s;
}

Scene& GetScene() {
    static Scene* scene = MakeScene();
    return *scene;
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

// Static VBOs of every visible mesh: position and vertex normal per corner, no indices.
void BuildBare(Scene& s) {
    if (!s.bare.empty()) {
        return;
    }
    for (VxMesh* mesh : VisibleMeshes(*s.patient)) {
        std::vector<float> data;
        data.reserve(static_cast<size_t>(mesh->GetFaceCount()) * 18);
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
        s.triangles += static_cast<long long>(m.vertices / 3) *
                       static_cast<long long>(std::max<size_t>(1, m.placements.size()));
        s.bare.push_back(m);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void BareFrame(Scene& s) {
    VxViewRegion* view = VxViewManager::GetInstance()->GetView(0);
    double l, r, b, t, n, f;
    view->GetCamera()->GetFrustum(l, r, b, t, n, f);
    glViewport(0, 0, kW, kH);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(l, r, b, t, n, f);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(view->GetModelViewMatrix());
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
    for (const BareMesh& m : s.bare) {
        glBindBuffer(GL_ARRAY_BUFFER, m.buffer);
        glVertexPointer(3, GL_FLOAT, 6 * sizeof(float), nullptr);
        glNormalPointer(GL_FLOAT, 6 * sizeof(float), reinterpret_cast<void*>(3 * sizeof(float)));
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
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisable(GL_STENCIL_TEST);
    glDisable(GL_DEPTH_TEST);
    glFinish();
}

void BM_FullFrame(benchmark::State& state) {
    Scene& s = GetScene();
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return;
    }
    for (auto _ : state) {
        s.render->RenderScene(true);
        s.render->Flush();
        glFinish();
    }
    BuildBare(s);
    state.counters["triangles"] = static_cast<double>(s.triangles);
}
BENCHMARK(BM_FullFrame)->Unit(benchmark::kMillisecond)->MinTime(1.0);

void BM_BareLoop(benchmark::State& state) {
    Scene& s = GetScene();
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return;
    }
    // One full frame first, so the view's stored model-view matrix is the one the loop uses.
    s.render->RenderScene(true);
    BuildBare(s);
    for (auto _ : state) {
        BareFrame(s);
    }
    state.counters["triangles"] = static_cast<double>(s.triangles);
    state.counters["meshes"] = static_cast<double>(s.bare.size());
}
BENCHMARK(BM_BareLoop)->Unit(benchmark::kMillisecond)->MinTime(1.0);

// A screen pixel (y from the top) deep inside a tooth, from the stencil of a frame: the one
// nearest the window's centre whose 3 x 3 neighbourhood is all tooth.
bool FindToothPixel(CPoint& pixel) {
    std::vector<GLubyte> stencil(static_cast<size_t>(kW) * kH);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kW, kH, GL_STENCIL_INDEX, GL_UNSIGNED_BYTE, stencil.data());
    long best = -1;
    for (int y = 1; y < kH - 1; ++y) {
        for (int x = 1; x < kW - 1; ++x) {
            bool tooth = true;
            for (int dy = -1; dy <= 1 && tooth; ++dy) {
                for (int dx = -1; dx <= 1 && tooth; ++dx) {
                    tooth = stencil[static_cast<size_t>(y + dy) * kW + (x + dx)] == 2;
                }
            }
            const long d = std::labs(x - kW / 2) + std::labs(y - kH / 2);
            if (tooth && (best < 0 || d < best)) {
                best = d;
                pixel = CPoint(x, kH - 1 - y);
            }
        }
    }
    return best >= 0;
}

void Pick(benchmark::State& state, std::vector<ObjectType_e> types) {
    Scene& s = GetScene();
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return;
    }
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    status->SetSelectType(types);
    s.render->RenderScene(true);
    CPoint pixel;
    if (!FindToothPixel(pixel)) {
        state.SkipWithError("no tooth on screen");
        return;
    }
    VxOpenGLSelect* selecter = status->GetSelecter();
    s.render->ProcessFeedback(pixel);
    if (selecter->DoSelect(pixel) == nullptr) {
        state.SkipWithError("the pick found nothing");
        return;
    }
    for (auto _ : state) {
        s.render->ProcessFeedback(pixel);
        benchmark::DoNotOptimize(selecter->DoSelect(pixel));
    }
}

void BM_PickTooth(benchmark::State& state) {
    Pick(state, {ObjectType_Tooth});
}
BENCHMARK(BM_PickTooth)->Unit(benchmark::kMillisecond);

void BM_PickVertex(benchmark::State& state) {
    Pick(state, {ObjectType_Vertex});
}
BENCHMARK(BM_PickVertex)->Unit(benchmark::kMillisecond);

void BM_PickEdge(benchmark::State& state) {
    Pick(state, {ObjectType_Edge});
}
BENCHMARK(BM_PickEdge)->Unit(benchmark::kMillisecond);

void BM_BuildMeshBuffers(benchmark::State& state) {
    Scene& s = GetScene();
    if (!s.error.empty()) {
        state.SkipWithError(s.error.c_str());
        return;
    }
    const std::vector<VxMesh*> meshes = VisibleMeshes(*s.patient);
    VxVBOHandleMgr* mgr = VxVBOHandleMgr::GetInstance();
    for (auto _ : state) {
        mgr->Clear();
        for (VxMesh* m : meshes) {
            m->SetUpdateVBO(true);
            mgr->BuildVBO(m);
        }
        glFinish();
    }
    state.counters["meshes"] = static_cast<double>(meshes.size());
}
BENCHMARK(BM_BuildMeshBuffers)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
