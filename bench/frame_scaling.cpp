// How the fixed frame's cost grows with the triangle count, and which part of its GL state the
// growth comes from. The scene is the synthetic patient's tooth meshes, copied side by side as
// plain meshes until about 86k, 344k, 688k and 1.4M triangles, seen from the front at
// 1280 x 800 off screen:
//   BM_ScaleFrame/N            RenderScene + Flush + glFinish, the library's frame;
//   BM_ScaleBare/N/S           the same triangles from static VBOs, one glDrawArrays each, with
//                              the state set S: 0 GL's defaults (depth test only), 31 everything
//                              the library sets (the "same state" floor), and 31 less one bit:
//                              1 two-sided lighting, 2 GL_NORMALIZE, 4 the light at the eye
//                              (positional) instead of a directional one, 8 the jaw material's
//                              specular and shininess, 16 the stencil test that writes the
//                              pick value; 63 is 31 plus the frame's own fixed steps (a second
//                              clear and the background quad), the floor of a whole frame.
// scripts/bench.sh prints the ratios frame / bare(31) and frame / bare(0) per size, and each
// bit's share of bare(31) - bare(0).
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
#include <interfaces/VxModel.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxXForm.h>
#include <mesh/VxFixedMaterial.h>
#include <platform/VxNativeWindow.h>
#include <views/VxCamera.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int kW = 1280;
constexpr int kH = 800;

enum StateBits {
    kTwoSide = 1,
    kNormalize = 2,
    kPositional = 4,
    kSpecular = 8,
    kStencil = 16,
    kAll = 31,
    // Not GL state: the fixed steps every frame of the library takes whatever the scene, a
    // second full clear and the full-window background quad (black without a picture).
    kFurniture = 32,
};

struct ScaledScene {
    std::vector<std::unique_ptr<VxMesh>> meshes;
    VxModel model;
    std::vector<GLuint> buffers;
    std::vector<GLsizei> counts;
    long long triangles = 0;
};

struct Context {
    std::unique_ptr<VxNativeWindow> window;
    VxOpenGLRender* render = nullptr;
    std::unique_ptr<VxCase> patient;
    std::map<long, std::unique_ptr<ScaledScene>> scenes;
    std::string error;
};

Context& Ctx() {
    static Context* c = [] {
        auto* ctx = new Context;
        ctx->window = VxNativeWindow::CreateOffscreen(kW, kH);
        ctx->render = VxRenderStatus::GetInstance()->GetRender();
        g_bDIBShowMessage = false;
        if (!ctx->window || !ctx->render->Create(ctx->window.get(), 24, 8)) {
            ctx->error = "no GL context";
            return ctx;
        }
        OpenGLVersion::GetInstance()->Set_btestversion(false);
        ctx->patient = VxSyntheticPatient::Generate(1);
        return ctx;
    }();
    return *c;
}

// Copies of the patient's teeth on a grid, one plain mesh each, until `target` triangles.
ScaledScene& SceneOf(long target) {
    Context& c = Ctx();
    auto& slot = c.scenes[target];
    if (slot) {
        return *slot;
    }
    slot = std::make_unique<ScaledScene>();
    ScaledScene& s = *slot;
    const auto& teeth = c.patient->teeth;
    const int perRow = 12;
    for (size_t i = 0; s.triangles < target; ++i) {
        const VxTooth& t = *teeth[i % teeth.size()];
        const double dx = 12.0 * static_cast<double>(i % perRow);
        const double dy = 14.0 * static_cast<double>(i / perRow);
        std::vector<VxPoint> points;
        for (const VxVertex& v : t.GetVertices()) {
            const VxPoint& p = v.GetPos();
            points.emplace_back(p[0] + dx, p[1] + dy, p[2]);
        }
        std::vector<int> tris;
        for (const VxFace& f : t.GetFaces()) {
            tris.insert(tris.end(), {f.GetVtxId(0), f.GetVtxId(1), f.GetVtxId(2)});
        }
        auto mesh = std::make_unique<VxMesh>();
        mesh->SetMeshData(points, tris);
        s.triangles += mesh->GetFaceCount();
        s.model.AddEntity(mesh.get());
        // Interleaved position and vertex normal per corner, as the library's buffers hold them.
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
        GLuint b = 0;
        glGenBuffers(1, &b);
        glBindBuffer(GL_ARRAY_BUFFER, b);
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(data.size() * sizeof(float)),
                     data.data(), GL_STATIC_DRAW);
        s.buffers.push_back(b);
        s.counts.push_back(static_cast<GLsizei>(data.size() / 6));
        s.meshes.push_back(std::move(mesh));
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return s;
}

// The library's bring-up for a scene: model, size, one view fitted to it, a first frame that
// builds the library's own buffers.
void ShowScene(ScaledScene& s) {
    Context& c = Ctx();
    c.render->SetModel(&s.model);
    c.render->ResizeViewport(kW, kH);
    VxViewManager* views = VxViewManager::GetInstance();
    views->Clear();
    views->SetTotalViewSize(kW, kH);
    views->CreateSingleView();
    const VxBBox box = s.model.GetBBox();
    VxXForm xf;
    xf.SetScale(1.9 / box.Diagonal());
    const VxPoint centre = box.Center();
    xf.SetTranslation(VxVector(-centre[0], -centre[1], -centre[2]));
    views->GetView(0)->SetXForm(xf);
    c.render->RenderScene(true);
    c.render->Flush();
    glFinish();
}

void BareFrame(const ScaledScene& s, int bits) {
    VxViewRegion* view = VxViewManager::GetInstance()->GetView(0);
    double l, r, b, t, n, f;
    view->GetCamera()->GetFrustum(l, r, b, t, n, f);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glViewport(0, 0, kW, kH);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    if (bits & kFurniture) {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        glOrtho(0, kW, 0, kH, -1, 1);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glLoadIdentity();
        glDisable(GL_LIGHTING);
        glDisable(GL_DEPTH_TEST);
        glColor3f(0.0f, 0.0f, 0.0f);
        glBegin(GL_QUADS);
        glVertex2i(0, 0);
        glVertex2i(0, kH);
        glVertex2i(kW, kH);
        glVertex2i(kW, 0);
        glEnd();
        glPopMatrix();
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
    }
    glOrtho(l, r, b, t, n, f);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    // GL's start-up light, or the library's: at the eye, weak ambient, specular.
    const GLfloat directional[4] = {0, 0, 1, 0}, atEye[4] = {0, 0, 0, 1};
    glLightfv(GL_LIGHT0, GL_POSITION, (bits & kPositional) ? atEye : directional);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, (bits & kTwoSide) ? 1 : 0);
    glLoadMatrixd(view->GetModelViewMatrix());
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_DEPTH_TEST);
    if (bits & kNormalize) {
        glEnable(GL_NORMALIZE);
    } else {
        glDisable(GL_NORMALIZE);
    }
    glDisable(GL_COLOR_MATERIAL);
    if (bits & kSpecular) {
        VxFixedMaterial::Jaw().Apply();
    } else {
        const GLfloat diffuse[4] = {0.8f, 0.8f, 0.8f, 1}, none[4] = {0, 0, 0, 1};
        glMaterialfv(GL_FRONT, GL_DIFFUSE, diffuse);
        glMaterialfv(GL_FRONT, GL_SPECULAR, none);
        glMaterialf(GL_FRONT, GL_SHININESS, 0);
    }
    if (bits & kStencil) {
        glEnable(GL_STENCIL_TEST);
        glStencilFunc(GL_ALWAYS, 1, 0xFF);
        glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    } else {
        glDisable(GL_STENCIL_TEST);
    }
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    for (size_t i = 0; i < s.buffers.size(); ++i) {
        glBindBuffer(GL_ARRAY_BUFFER, s.buffers[i]);
        glVertexPointer(3, GL_FLOAT, 6 * sizeof(float), nullptr);
        glNormalPointer(GL_FLOAT, 6 * sizeof(float), reinterpret_cast<void*>(3 * sizeof(float)));
        glDrawArrays(GL_TRIANGLES, 0, s.counts[i]);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopAttrib();
    glFinish();
}

void BM_ScaleFrame(benchmark::State& state) {
    Context& c = Ctx();
    if (!c.error.empty()) {
        state.SkipWithError(c.error.c_str());
        return;
    }
    ScaledScene& s = SceneOf(state.range(0));
    ShowScene(s);
    for (auto _ : state) {
        c.render->RenderScene(true);
        c.render->Flush();
        glFinish();
    }
    state.counters["triangles"] = static_cast<double>(s.triangles);
}

void BM_ScaleBare(benchmark::State& state) {
    Context& c = Ctx();
    if (!c.error.empty()) {
        state.SkipWithError(c.error.c_str());
        return;
    }
    ScaledScene& s = SceneOf(state.range(0));
    ShowScene(s);
    for (auto _ : state) {
        BareFrame(s, static_cast<int>(state.range(1)));
    }
    state.counters["triangles"] = static_cast<double>(s.triangles);
}

const std::vector<long> kSizes = {86000, 344000, 688000, 1400000};

void FrameArgs(benchmark::internal::Benchmark* b) {
    for (long n : kSizes) {
        b->Arg(n);
    }
}

void BareArgs(benchmark::internal::Benchmark* b) {
    for (long n : kSizes) {
        for (int bits : {0, int(kAll), kAll | kFurniture, kAll & ~kTwoSide, kAll & ~kNormalize, kAll & ~kPositional,
                         kAll & ~kSpecular, kAll & ~kStencil}) {
            b->Args({n, bits});
        }
    }
}

BENCHMARK(BM_ScaleFrame)->Apply(FrameArgs)->Unit(benchmark::kMillisecond)->MinTime(0.5);
BENCHMARK(BM_ScaleBare)->Apply(BareArgs)->Unit(benchmark::kMillisecond)->MinTime(0.5);

} // namespace

BENCHMARK_MAIN();
