// VxOpenGLRender: context creation, the frame and its passes, coordinate mapping, stencil
// feedback and the frame furniture (background, layout lines, zoom rectangle, corner icons).
#include <frame/VxOpenGLRender.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <aux/VxAuxText.h>
#include <frame/NuCameraSnapshot.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CImage.h>
#include <interfaces/CRect.h>
#include <interfaces/CWnd.h>
#include <interfaces/VxEntity.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTolerance.h>
#include <interfaces/VxXForm.h>
#include <mesh/NuDrawerMgr.h>
#include <mesh/VxDrawer.h>
#include <mesh/VxDrawerMgr.h>
#include <platform/VxGLContext.h>
#include <shader/RenderV1.h>
#include <views/VxCamera.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <vector>

namespace {

// Attribute masks as the frame pushes them; spelled as numbers where the combination matters.
constexpr GLbitfield kDrawModelAttribs = 0x501; // current, depth, stencil
constexpr GLbitfield kBackgroundAttribs = 0x41; // current, lighting
constexpr GLbitfield kZoomAreaAttribs = 0x6141; // colour, enable, depth, lighting, current
// Depth, lighting, current, and the scissor that keeps the letters' bitmaps, which the viewport
// does not clip, inside the corner.
constexpr GLbitfield kAxisAttribs = 0x141 | GL_SCISSOR_BIT;
constexpr GLbitfield kLeftDownAttribs = 0x2141; // enable, depth, lighting, current
constexpr int kFeedbackNoScore = 0x10000;
// A window-depth difference below this counts as the same surface.
constexpr double kVisibleDepthTolerance = 0.002;

// Every context Create has made. None is ever released, not even at exit, since a host may still
// draw from its own teardown; the list keeps each one owned and reachable rather than dropped.
std::vector<std::unique_ptr<VxGLContext>>& MadeContexts() {
    static auto* contexts = new std::vector<std::unique_ptr<VxGLContext>>();
    return *contexts;
}

// One walk over the entity list in list order: every undeleted, visible entity that the filter
// accepts goes to the drawer its manager has for its type, view first, then the entity. An
// entity whose type has no drawer is skipped without a word.
void PipelinePass(const std::vector<VxEntity*>& entities, VxViewRegion* view,
                  const std::function<bool(ObjectType_e)>& accept,
                  const std::function<VxDrawer*(ObjectType_e)>& drawerOf) {
    for (VxEntity* entity : entities) {
        if (entity == nullptr || entity->IsDeleted() || !entity->IsVisible()) {
            continue;
        }
        const ObjectType_e type = entity->GetObjectType();
        if (!accept(type)) {
            continue;
        }
        VxDrawer* drawer = drawerOf(type);
        if (drawer == nullptr) {
            continue;
        }
        drawer->SetViewRegion(view);
        drawer->Draw(entity);
    }
}

VxDrawer* PathDrawer(ObjectType_e type) {
    if (OpenGLVersion::GetInstance()->Get_btestversion()) {
        return NuDrawerMgr::GetInstance()->GetDrawer(type);
    }
    return VxDrawerMgr::GetInstance()->GetDrawer(type);
}

void LoadCameraProjection(VxCamera* camera) {
    double l, r, b, t, n, f;
    camera->GetFrustum(l, r, b, t, n, f);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    if (camera->IsOrtho()) {
        glOrtho(l, r, b, t, n, f);
    } else {
        glFrustum(l, r, b, t, n, f);
    }
}

void LoadCameraLookAt(VxCamera* camera) {
    VxPoint eye, centre;
    VxVector up;
    camera->GetFrame(eye, centre, up);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluLookAt(eye[0], eye[1], eye[2], centre[0], centre[1], centre[2], up[0], up[1], up[2]);
}

} // namespace

VxOpenGLRender::VxOpenGLRender() : m_camera(new VxCamera()) {}

VxOpenGLRender::~VxOpenGLRender() {
    delete m_camera;
    m_camera = nullptr;
    DeleteAxisText();
    // Runs at process exit with whatever context is then current; the corner icon textures and
    // the context itself are deliberately left alone.
    if (m_bkTexture != 0) {
        glDeleteTextures(1, &m_bkTexture);
    }
}

// ---------------------------------------------------------------------------------------------
// Context

bool VxOpenGLRender::Create(HWND window, int depthBits, int stencilBits) {
    // Stored before anything can fail: IsValid answers true even after a failed Create, and the
    // host relies on that.
    m_window = window;
    // A context from an earlier Create is not released; nothing in the library releases one.
    MadeContexts().push_back(std::make_unique<VxGLContext>());
    m_glContext = MadeContexts().back().get();
    if (!m_glContext->GetDC(window)) {
        return false;
    }
    m_deviceContext = m_glContext->GetDisplay();
    // Colour 32 bits, double buffered, drawn to the window: the config's own defaults; depth and
    // stencil as asked.
    const int pixelFormat = m_glContext->ChoosePixelFormat(depthBits, stencilBits);
    if (pixelFormat == 0) {
        return false;
    }
    if (!m_glContext->SetPixelFormat(pixelFormat)) {
        return false;
    }
    if (!m_glContext->CreateContext()) {
        return false;
    }
    if (!m_glContext->MakeCurrent()) {
        return false;
    }
    CreateAxisText();
    return Initialize();
}

// GL defaults of the whole library, in an order that matters: the version test needs the
// context, and the background load comes last because it also starts the glyph font.
//   1 version test   2 glewInit      3 material, light   4 depth     5 stencil
//   6 clear colour, winding, normalise, smooth           7 fixed-function switches off
//   8 client arrays off   9 unpack alignment, polygon offset   10 background texture
bool VxOpenGLRender::Initialize() {
    OpenGLVersion::GetInstance()->SetOpenGLInfomation();
    // Its result is not examined: the context's own MakeCurrent already loaded the entry points,
    // and a GLX-flavoured GLEW reports an error under EGL that means nothing here.
    glewInit();
    SetUpMaterial();
    SetupLight();

    glDepthFunc(GL_LEQUAL);
    glDisable(GL_DEPTH_TEST);
    glClearDepth(1.0);
    glDepthMask(GL_TRUE);

    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
    glDisable(GL_STENCIL_TEST);
    glClearStencil(0);

    glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
    glFrontFace(GL_CCW);
    glEnable(GL_NORMALIZE);
    glShadeModel(GL_SMOOTH);

    glDisable(GL_FOG);
    glDisable(GL_BLEND);
    glDisable(GL_CULL_FACE);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_LINE_STIPPLE);

    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);

    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    // Set here, enabled by the drawers that need it.
    glPolygonOffset(1.0f, 1.0f);

    // A missing background only means a black background (and no glyph font).
    LoadBkTexture();
    return true;
}

void VxOpenGLRender::MakeCurrent(CWnd* wnd) {
    if (wnd == nullptr) {
        return;
    }
    m_window = wnd->GetSafeHwnd();
    if (m_glContext == nullptr) {
        return;
    }
    // The earlier device context is not released; the result of the bind is ignored.
    m_glContext->MakeCurrent(m_window);
    m_deviceContext = m_glContext->GetDisplay();
}

void VxOpenGLRender::ResizeViewport(int width, int height) {
    m_width = width;
    m_height = height;
    SetupCamera();
}

void VxOpenGLRender::SetUpMaterial() {
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
}

void VxOpenGLRender::SetupLight() {
    // Positioned under whatever model-view matrix is current now and never moved again, so the
    // light travels with the eye.
    const GLfloat position[4] = {0.0f, 0.0f, 0.0f, 1.0f};
    const GLfloat ambient[4] = {0.1f, 0.1f, 0.1f, 1.0f};
    const GLfloat diffuse[4] = {0.8f, 0.8f, 0.8f, 1.0f};
    const GLfloat specular[4] = {0.8f, 0.8f, 0.8f, 1.0f};
    glLightfv(GL_LIGHT0, GL_POSITION, position);
    glLightfv(GL_LIGHT0, GL_AMBIENT, ambient);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, diffuse);
    glLightfv(GL_LIGHT0, GL_SPECULAR, specular);
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
}

void VxOpenGLRender::Flush() {
    glFlush();
    if (m_glContext != nullptr) {
        m_glContext->SwapBuffers();
    }
}

// ---------------------------------------------------------------------------------------------
// Cameras

void VxOpenGLRender::SetupCamera() {
    // A frame before SetModel is the host's fault; without a model the box is empty (diagonal 0,
    // centre at the origin) rather than a crash.
    const VxBBox box = m_model != nullptr ? m_model->GetBBox() : VxBBox();
    const double diagonal = box.Diagonal();
    const VxVector centre = box.Center();

    const double shorter = static_cast<double>(std::min(m_width, m_height));
    const double halfWidth = m_width / shorter;
    const double halfHeight = m_height / shorter * m_yExtRat;

    // The eye distance only grows, for the life of the process: zooming out and back in leaves
    // the far plane where it got to.
    for (VxViewRegion* view : VxViewManager::GetInstance()->GetAllViews()) {
        const VxXForm& xf = view->GetXForm();
        const double d = (xf.GetTranslation() + centre).Magnitude();
        const double candidate = (d + diagonal) * xf.GetScale() + 2.0;
        if (candidate > m_eyeDistance) {
            m_eyeDistance = candidate;
        }
    }

    m_camera->SetViewPort(0, 0, m_width, m_height);
    m_camera->SetLocationZ(m_eyeDistance);
    m_camera->SetFrustum(-halfWidth, halfWidth, -halfHeight, halfHeight, 1.0,
                         2.0 * m_eyeDistance + 1.0);
}

void VxOpenGLRender::SetupCamera(VxViewRegion* view) {
    if (view == nullptr) {
        return;
    }
    const VxBBox box = m_model != nullptr ? m_model->GetBBox() : VxBBox();
    const double diagonal = box.Diagonal();
    const VxVector centre = box.Center();

    const int width = view->Width();
    const int height = view->Height();
    const double shorter = static_cast<double>(std::min(width, height));
    const double halfWidth = width / shorter;
    const double halfHeight = height / shorter * m_yExtRat;

    for (VxViewRegion* other : VxViewManager::GetInstance()->GetAllViews()) {
        const VxXForm& xf = other->GetXForm();
        const double d = (xf.GetTranslation() + centre).Magnitude();
        const double candidate = (d + diagonal) * xf.GetScale() + 2.0;
        if (candidate > m_eyeDistance) {
            m_eyeDistance = candidate;
        }
    }

    VxCamera* camera = view->GetCamera();
    camera->SetViewPort(view->Origin().x, view->Origin().y, width, height);
    camera->SetLocationZ(m_eyeDistance);
    camera->SetFrustum(-halfWidth, halfWidth, -halfHeight, halfHeight, 1.0,
                       2.0 * m_eyeDistance + 1.0);

    NuCameraSnapshot* snapshot = NuCameraSnapshot::GetInstance();
    LoadCameraProjection(camera);
    double projection[16];
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    snapshot->SetProjection(projection);
    LoadCameraLookAt(camera);
    // Every view's camera shares Prepare's look-at but for the eye distance.
    snapshot->SetEyeZ(m_eyeDistance);
}

void VxOpenGLRender::Prepare() {
    SetupCamera();
    NuCameraSnapshot* snapshot = NuCameraSnapshot::GetInstance();
    LoadCameraProjection(m_camera);
    double projection[16];
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
    snapshot->SetProjection(projection);
    LoadCameraLookAt(m_camera);
    VxPoint eye, centre;
    VxVector up;
    m_camera->GetFrame(eye, centre, up);
    snapshot->SetEye(eye[0], eye[1], eye[2]);
    snapshot->SetCenter(centre[0], centre[1], centre[2]);
    snapshot->SetUp(up[0], up[1], up[2]);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

// ---------------------------------------------------------------------------------------------
// The frame

// One frame, without flush or swap (the host draws its overlays into the same back buffer):
//   1 clear   2 Prepare (whole-window camera, second clear)   3 background and layout lines
//   4 stop here when drawModel is false
//   5 per view in list order: SetupCamera(view), DrawModel(view), then the pixel ratio, which
//     reads the model-view matrix DrawModel just stored
bool VxOpenGLRender::RenderScene(bool drawModel) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    Prepare();
    DrawBackgroud();
    if (!drawModel) {
        return true;
    }
    const std::vector<VxViewRegion*> views = VxViewManager::GetInstance()->GetAllViews();
    for (VxViewRegion* view : views) {
        SetupCamera(view);
        DrawModel(view);
        view->SetpixelmodelRatio(GetpixelmodelRatio(view));
    }
    return true;
}

// One view. The model-view matrix is (look-at) x rotation x scale x translation.
//   1 version test again (a host toggle cannot override a context below the test)
//   2 push current/depth/stencil, stencil and depth test on, push model-view
//   3 view transform into the snapshot; rotation, viewport, scale, translation
//   4 entities   5 passes: teeth, [shader batch], attachments, the rest
//   6 model-view matrix read back into the snapshot and the view (every mapping reads it)
//   7 pop   8 shader path: the gap editor, outside the view's matrix and attribute scope
bool VxOpenGLRender::DrawModel(VxViewRegion* view) {
    OpenGLVersion* version = OpenGLVersion::GetInstance();
    version->SetOpenGLInfomation();

    glPushAttrib(kDrawModelAttribs);
    glEnable(GL_STENCIL_TEST);
    glEnable(GL_DEPTH_TEST);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();

    const VxXForm& xf = view->GetXForm();
    NuCameraSnapshot::GetInstance()->SetViewTransform(&xf);
    double rotation[16];
    xf.GetRotation(rotation);
    glMultMatrixd(rotation);
    glViewport(view->Origin().x, view->Origin().y, view->Width(), view->Height());
    const double scale = xf.GetScale();
    glScaled(scale, scale, scale);
    const VxVector t = xf.GetTranslation();
    glTranslated(t[0], t[1], t[2]);

    std::vector<VxEntity*> entities;
    if (m_model != nullptr) {
        m_model->GetEntities(entities);
    }

    // Teeth first, so the shader path can send its queued teeth as one batch before anything
    // else is drawn.
    PipelinePass(
        entities, view, [](ObjectType_e type) { return type == ObjectType_Tooth; }, PathDrawer);
    // The shader renderer's queued teeth go out here as one batch.
    RenderV1* renderer = RenderV1::GetInstance();
    if (!renderer->GraphicObjectsEmpty()) {
        renderer->DrawGraphicObjects();
        renderer->objectQueue.clear();
    }
    // Attachments stay on the fixed-function drawer on both paths, on purpose.
    PipelinePass(
        entities, view, [](ObjectType_e type) { return type == ObjectType_Attachment; },
        [](ObjectType_e type) { return VxDrawerMgr::GetInstance()->GetDrawer(type); });
    PipelinePass(
        entities, view,
        [](ObjectType_e type) { return type != ObjectType_Tooth && type != ObjectType_Attachment; },
        PathDrawer);

    double modelView[16];
    glGetDoublev(GL_MODELVIEW_MATRIX, modelView);
    NuCameraSnapshot::GetInstance()->SetModelView(modelView);
    view->SetModelViewMatrix(modelView);

    glPopMatrix();
    glPopAttrib();

    if (version->Get_btestversion()) {
        renderer->Setthemodel(m_model);
        // The in-view gap editor, last in the view, over the model.
        renderer->Drawcreatemodify(view);
    }
    return true;
}

// The older whole-layout form, kept for compatibility; nothing calls it and it is not for a
// frame: one walk, no view given to the drawers, fixed-function drawers only.
bool VxOpenGLRender::DrawModel() {
    VxViewManager* manager = VxViewManager::GetInstance();
    const bool multi = manager->IsMultiView();
    std::vector<VxEntity*> entities;
    if (m_model != nullptr) {
        m_model->GetEntities(entities);
    }
    for (VxViewRegion* view : manager->GetAllViews()) {
        glMatrixMode(GL_MODELVIEW);
        if (multi) {
            glPushMatrix();
        }
        const VxXForm& xf = view->GetXForm();
        double rotation[16];
        xf.GetRotation(rotation);
        glMultMatrixd(rotation);
        glViewport(view->Origin().x, view->Origin().y, view->Width(), view->Height());
        glScaled(xf.GetScale(), xf.GetScale(), xf.GetScale());
        const VxVector t = xf.GetTranslation();
        glTranslated(t[0], t[1], t[2]);
        for (VxEntity* entity : entities) {
            if (entity == nullptr || entity->IsDeleted() || !entity->IsVisible()) {
                continue;
            }
            IsShowEntity(entity, static_cast<Display_Selec>(view->GetUpDownSelec()));
            VxDrawer* drawer = VxDrawerMgr::GetInstance()->GetDrawer(entity->GetObjectType());
            if (drawer != nullptr) {
                drawer->Draw(entity);
            }
        }
        double modelView[16];
        glGetDoublev(GL_MODELVIEW_MATRIX, modelView);
        view->SetModelViewMatrix(modelView);
        if (multi) {
            glPopMatrix();
        }
    }
    return true;
}

bool VxOpenGLRender::IsShowEntity(VxEntity* /*entity*/, Display_Selec /*selec*/) {
    return false;
}

// ---------------------------------------------------------------------------------------------
// Stencil feedback

// True when stencil value v may be picked. The lists differ on purpose: gum and jaw do not
// answer to faces.
bool VxOpenGLRender::SkipBySelType(int stencil) {
    const VxRenderStatus* status = VxRenderStatus::GetInstance();
    switch (stencil) {
    case FeedbackType_Mesh:
        return status->ExistSelectType(
            {ObjectType_Mesh, ObjectType_Vertex, ObjectType_Edge, ObjectType_Face});
    case FeedbackType_Tooth:
        return status->ExistSelectType(
            {ObjectType_Tooth, ObjectType_Vertex, ObjectType_Edge, ObjectType_Face});
    case FeedbackType_Gum:
        return status->ExistSelectType({ObjectType_Gum, ObjectType_Vertex, ObjectType_Edge});
    case FeedbackType_UpperJaw:
    case FeedbackType_LowerJaw:
        return status->ExistSelectType({ObjectType_Jaw, ObjectType_Vertex, ObjectType_Edge});
    case FeedbackType_Attachment:
        return status->ExistSelectType(
            {ObjectType_Attachment, ObjectType_Vertex, ObjectType_Edge, ObjectType_Face});
    default:
        return false;
    }
}

// Reads the 2 x 2 stencil block at the cursor and keeps the pickable value with the lowest
// score |column - 1| + |row - 1| + value: the smaller stencil value wins, and an earlier pixel
// keeps a tie.
void VxOpenGLRender::ProcessFeedback(CPoint point) {
    GLint values[4] = {0, 0, 0, 0};
    glReadPixels(point.x - 1, m_height - point.y - 1, 2, 2, GL_STENCIL_INDEX, GL_INT, values);
    int bestScore = kFeedbackNoScore;
    int best = -1;
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < 2; ++column) {
            const int v = values[row * 2 + column];
            if (v > 0 && SkipBySelType(v)) {
                const int score = std::abs(column - 1) + std::abs(row - 1) + v;
                if (score < bestScore) {
                    bestScore = score;
                    best = row * 2 + column;
                }
            }
        }
    }
    VxRenderStatus::GetInstance()->SetFeedbackType(
        static_cast<FeedbackType_e>(best < 0 ? 0 : values[best]));
}

// ---------------------------------------------------------------------------------------------
// Coordinate mapping

void VxOpenGLRender::GetViewportAndProjection(VxViewRegion* view, int viewport[4],
                                              double projection[16]) {
    viewport[0] = view->Origin().x;
    viewport[1] = view->Origin().y;
    viewport[2] = view->Width();
    viewport[3] = view->Height();
    glGetDoublev(GL_PROJECTION_MATRIX, projection);
}

float VxOpenGLRender::ReadDepth(int x, int y) {
    // Outside the window nothing is written, and the cleared value stands.
    GLfloat depth = 1.0f;
    glReadPixels(x, y, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    return depth;
}

CPoint VxOpenGLRender::MapModelPointToScreen(VxViewRegion* view, const VxPoint& p, double* depth) {
    if (view == nullptr) {
        return CPoint(0, 0);
    }
    GLint viewport[4];
    double projection[16];
    GetViewportAndProjection(view, viewport, projection);
    double wx = 0.0, wy = 0.0, wz = 0.0;
    gluProject(p[0], p[1], p[2], view->GetModelViewMatrix(), projection, viewport, &wx, &wy, &wz);
    const CPoint screen(static_cast<int>(wx + 0.5), static_cast<int>(m_height - wy + 0.5));
    if (depth != nullptr) {
        *depth = wz;
    }
    return screen;
}

CPoint VxOpenGLRender::MapModelPointToScreen(const VxPoint& p) {
    return MapModelPointToScreen(VxViewManager::GetInstance()->GetActiveView(), p, nullptr);
}

CPoint VxOpenGLRender::MapModelPointToScreen(const VxPoint& p, bool* visible) {
    double wz = 1.0;
    const CPoint screen =
        MapModelPointToScreen(VxViewManager::GetInstance()->GetActiveView(), p, &wz);
    // Read even when nobody asks for the answer.
    const float buffer = ReadDepth(screen.x, m_height - screen.y);
    if (visible != nullptr) {
        *visible = kVisibleDepthTolerance > std::fabs(wz - buffer);
    }
    return screen;
}

VxPoint VxOpenGLRender::MapModelPointToWorld(const VxPoint& p) {
    VxViewRegion* view = VxViewManager::GetInstance()->GetActiveView();
    if (view == nullptr) {
        return VxPoint();
    }
    GLint viewport[4];
    double projection[16];
    GetViewportAndProjection(view, viewport, projection);
    double wx = 0.0, wy = 0.0, wz = 0.0;
    gluProject(p[0], p[1], p[2], view->GetModelViewMatrix(), projection, viewport, &wx, &wy, &wz);
    return VxPoint(wx, wy, wz);
}

// The inverse of MapModelPointToWorld for a moment when the stored matrix is stale (right after
// a rotation inside ViewLookAt): the model-view matrix is rebuilt from the owned camera and the
// active view's transform as it is now, L x ((S x R) x T).
VxPoint VxOpenGLRender::MapScreenPoint(VxPoint& w) {
    VxViewRegion* view = VxViewManager::GetInstance()->GetActiveView();
    if (view == nullptr) {
        return VxPoint();
    }
    VxPoint eye, centre;
    VxVector up;
    m_camera->GetFrame(eye, centre, up);
    VxVector f = centre - eye;
    f.Normalize();
    VxVector s = f * VxVector(up);
    s.Normalize();
    VxVector u = s * f;
    u.Normalize();

    VxMatrix A = VxMatrix::Identity(4);
    for (int i = 0; i < 3; ++i) {
        A[i][0] = s[i];
        A[i][1] = u[i];
        A[i][2] = -f[i];
    }
    A.Inverse();
    VxMatrix B = VxMatrix::Identity(4);
    for (int i = 0; i < 3; ++i) {
        B[i][3] = -eye[i];
    }
    const VxMatrix L = A * B;

    const VxXForm& xf = view->GetXForm();
    double rotation[16];
    xf.GetRotation(rotation);
    const VxMatrix R = VxMatrix::FromArray(rotation);
    const double k = xf.GetScale();
    const VxVector v = xf.GetTranslation();
    const VxMatrix T = VxMatrix::Translation(v);
    VxMatrix S = VxMatrix::Identity(4);
    S[0][0] = S[1][1] = S[2][2] = k;
    const VxMatrix C = L * ((S * R) * T);

    double modelView[16];
    C.ToArray(modelView);
    GLint viewport[4];
    double projection[16];
    GetViewportAndProjection(view, viewport, projection);
    double mx = 0.0, my = 0.0, mz = 0.0;
    gluUnProject(w[0], w[1], w[2], modelView, projection, viewport, &mx, &my, &mz);
    return VxPoint(mx, my, mz);
}

VxPoint VxOpenGLRender::MapScreenPointToModel(VxViewRegion* view, const CPoint& pixel,
                                              double depth) {
    if (view == nullptr) {
        return VxPoint();
    }
    GLint viewport[4];
    double projection[16];
    GetViewportAndProjection(view, viewport, projection);
    double mx = 0.0, my = 0.0, mz = 0.0;
    gluUnProject(pixel.x, m_height - pixel.y, depth, view->GetModelViewMatrix(), projection,
                 viewport, &mx, &my, &mz);
    return VxPoint(mx, my, mz);
}

VxPoint VxOpenGLRender::MapScreenPointToModel(const CPoint& pixel, double depth) {
    return MapScreenPointToModel(VxViewManager::GetInstance()->GetActiveView(), pixel, depth);
}

VxPoint VxOpenGLRender::MapScreenPointToModel(const CPoint& pixel) {
    const float depth = ReadDepth(pixel.x, m_height - pixel.y);
    return MapScreenPointToModel(VxViewManager::GetInstance()->GetActiveView(), pixel, depth);
}

// Text is drawn while some view's matrix is in GL, and that view need not be the active one:
// the view is found by the matrix itself.
VxPoint VxOpenGLRender::MapScreenPointToModelForText(const CPoint& pixel, double depth) {
    double modelView[16];
    glGetDoublev(GL_MODELVIEW_MATRIX, modelView);
    return MapScreenPointToModel(VxViewManager::GetInstance()->GetView(modelView), pixel, depth);
}

VxPoint VxOpenGLRender::MapScreenCoordToSphere(const CPoint& pixel) {
    const double x = pixel.x * (2.0 / (m_width - 1)) - 1.0;
    const double y = 1.0 - pixel.y * (2.0 / (m_height - 1));
    const double d = x * x + y * y;
    // Inside the sphere's rim the arcball point is on the sphere, from d = 0.5 on it is on the
    // hyperbolic sheet that meets it there.
    const double z = 0.5 > d ? std::sqrt(1.0 - d) : 1.0 / (2.0 * std::sqrt(d));
    return VxPoint(x, y, z);
}

VxLine VxOpenGLRender::GetCursorRay(const CPoint& pixel) {
    const VxPoint nearPoint = MapScreenPointToModel(pixel, 0.0);
    const VxPoint farPoint = MapScreenPointToModel(pixel, 1.0);
    return VxLine(nearPoint, farPoint - nearPoint);
}

// The corner pixels are used as screen pixels although the origin counts from the bottom; only
// their distance matters.
double VxOpenGLRender::GetpixelmodelRatio(VxViewRegion* view) {
    if (view == nullptr) {
        return 0.0;
    }
    const CPoint origin = view->Origin();
    const CPoint q(origin.x + view->Width(), origin.y);
    const VxPoint a = MapScreenPointToModel(view, origin, 0.0);
    const VxPoint b = MapScreenPointToModel(view, q, 0.0);
    const int dx = q.x - origin.x;
    const int dy = q.y - origin.y;
    return std::sqrt(static_cast<double>(dx * dx + dy * dy)) / a.DistanceToPoint(b);
}

void VxOpenGLRender::Get1mmModelPointIndex(VxViewRegion* view, std::vector<int> first,
                                           std::vector<int> second) {
    if (view == nullptr) {
        return;
    }
    const CPoint origin = view->Origin();
    VxPoint a = MapScreenPointToModel(view, origin, 0.0);
    VxPoint b = MapScreenPointToModel(view, CPoint(origin.x + view->Width(), origin.y), 0.0);
    double d = a.DistanceToPoint(b);
    VxVector v = b - a;
    if (std::isfinite(d)) {
        for (int i = 0; i < std::lround(d); ++i) {
            second.push_back(MapModelPointToScreen(view, a + v * i, nullptr).x);
        }
    }
    b = MapScreenPointToModel(view, CPoint(origin.x, origin.y + view->Height()), 0.0);
    d = a.DistanceToPoint(b);
    v = b - a;
    if (std::isfinite(d)) {
        for (int i = 0; i < std::lround(d); ++i) {
            first.push_back(MapModelPointToScreen(view, a + v * i, nullptr).y);
        }
    }
}

bool VxOpenGLRender::IsMouseOnModel(const CPoint& pixel) {
    const float depth = ReadDepth(pixel.x, m_height - pixel.y);
    return !VxTolerance::IsZero(depth - 1.0);
}

// ---------------------------------------------------------------------------------------------
// Frame furniture

bool VxOpenGLRender::LoadBkTexture() {
    VxDIBImage* image = LoadDIB(m_bkPath.GetString());
    if (image == nullptr) {
        return false;
    }
    glGenTextures(1, &m_bkTexture);
    glBindTexture(GL_TEXTURE_2D, m_bkTexture);
    glTexImage2D(GL_TEXTURE_2D, 0, 3, image->width, image->height, 0, GL_RGB, GL_UNSIGNED_BYTE,
                 image->pixels);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    FreeDIB(image);
    // The glyph textures of the shader path are generated here and only here, so glyph text
    // works only where a background loaded; that coupling is kept.
    RenderV1::GetInstance()->GenTextureFont();
    return true;
}

// Whole-window textured quad, then the lines of a multi-view layout. Depth and stencil are left
// as they are: the depth test is off here, as Initialize left it and DrawModel restores it.
// The lines are drawn with the background texture still on, so the texel under the last texture
// coordinate tints them.
void VxOpenGLRender::DrawBackgroud() const {
    glPushAttrib(kBackgroundAttribs);
    glViewport(0, 0, m_width, m_height);
    glEnable(GL_TEXTURE_2D);
    glDisable(GL_LIGHTING);
    glBindTexture(GL_TEXTURE_2D, m_bkTexture);
    if (m_bkTexture == 0) {
        // No background loaded: texture 0 is incomplete, which fixed-function GL treats as no
        // texture at all, so the quad would take the current colour (white after start-up). A
        // window without a background picture is black, whatever colour was current.
        glColor3f(0.0f, 0.0f, 0.0f);
    }

    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, m_width, 0, m_height);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();

    glBegin(GL_QUADS);
    glTexCoord2f(0.0f, 0.0f);
    glVertex2i(0, 0);
    glTexCoord2f(0.0f, 1.0f);
    glVertex2i(0, m_height);
    glTexCoord2f(1.0f, 1.0f);
    glVertex2i(m_width, m_height);
    glTexCoord2f(1.0f, 0.0f);
    glVertex2i(m_width, 0);
    glEnd();

    VxViewManager* manager = VxViewManager::GetInstance();
    if (manager->IsMultiView()) {
        const int W = m_width;
        const int H = m_height;
        glColor4f(0.67f, 0.75f, 0.84f, 0.5f);
        glLineWidth(2.0f);
        glBegin(GL_LINES);
        switch (manager->GetAllViews().size()) {
        case 2:
            glVertex2i(W / 2 - 1, H);
            glVertex2i(W / 2 - 1, 0);
            break;
        case 4:
            glVertex2i(W / 2 - 1, H);
            glVertex2i(W / 2 - 1, 0);
            glVertex2i(0, H / 2 - 1);
            glVertex2i(W, H / 2 - 1);
            break;
        case 5:
            glVertex2i(0, 3 * H / 5);
            glVertex2i(W, 3 * H / 5);
            glVertex2i(W / 2 - 1, 3 * H / 5 - 1);
            glVertex2i(W / 2 - 1, 0);
            glVertex2i(W / 3 - 1, 3 * H / 5);
            glVertex2i(W / 3 - 1, H);
            glVertex2i(2 * W / 3 - 1, 3 * H / 5);
            glVertex2i(2 * W / 3 - 1, H);
            break;
        default:
            break;
        }
        glEnd();
    }

    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glDisable(GL_TEXTURE_2D);
    glPopAttrib();
}

void VxOpenGLRender::DeleteAxisText() {
    for (VxAuxText*& text : m_axisText) {
        delete text;
        text = nullptr;
    }
}

// Bitmap letters, 15 pixels, placed at each arrow's tip through the axis viewport's own matrices:
// the cones are a few pixels long there, and glyph outlines at any model size would either
// swamp the cross or vanish, while a bitmap stays legible at every turn.
void VxOpenGLRender::CreateAxisText() {
    DeleteAxisText();
    struct Letter {
        const wchar_t* text;
        VxPoint pos;
        VxColor color;
    };
    const Letter letters[3] = {
        {L"X", VxPoint(1, 0, 0), VxColor(200, 0, 0, 100)},
        {L"Y", VxPoint(0, 1, 0), VxColor(0, 200, 0, 100)},
        {L"Z", VxPoint(0, 0, 1), VxColor(0, 0, 200, 100)},
    };
    for (int i = 0; i < 3; ++i) {
        m_axisText[i] = new VxAuxText();
        m_axisText[i]->SetTextType(Text_OnScreen);
        m_axisText[i]->SetSize(15);
        m_axisText[i]->SetColor(letters[i].color);
        m_axisText[i]->SetTextPos(letters[i].pos);
        m_axisText[i]->SetText(CString(letters[i].text));
    }
}

void VxOpenGLRender::DrawCoordinateSystem() {
    int W = 0;
    int H = 0;
    VxViewManager::GetInstance()->GetTotalViewSize(W, H);
    if (H <= 0) {
        return;
    }
    constexpr int kAxisHeight = 100;
    const int axisWidth = int(double(kAxisHeight) * W / H);
    glPushAttrib(kAxisAttribs);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_SCISSOR_TEST);
    glMatrixMode(GL_MODELVIEW);
    const double z = m_camera->GetLocationZ();
    for (VxViewRegion* view : VxViewManager::GetInstance()->GetAllViews()) {
        glPushMatrix();
        glTranslated(0.0, 0.0, z - 2.0);
        const int left = view->Origin().x + view->Width() - axisWidth;
        glViewport(left, view->Origin().y, axisWidth, kAxisHeight);
        glScissor(left, view->Origin().y, axisWidth, kAxisHeight);
        double rotation[16];
        view->GetXForm().GetRotation(rotation);
        glMultMatrixd(rotation);
        // Z, Y, X: the order the letters and arrows are listed in.
        for (int i = 2; i >= 0; --i) {
            if (m_axisText[i] != nullptr) {
                m_axisText[i]->Draw();
            }
        }
        GLUquadric* quadric = gluNewQuadric();
        if (quadric != nullptr) {
            gluQuadricOrientation(quadric, GLU_OUTSIDE);
            gluQuadricDrawStyle(quadric, GLU_FILL);
            auto arrow = [quadric]() {
                gluCylinder(quadric, 0.05, 0.05, 0.6, 32, 32);
                glTranslated(0.0, 0.0, 0.6);
                gluCylinder(quadric, 0.1, 0.0, 0.2, 32, 32);
                glTranslated(0.0, 0.0, -0.6);
            };
            glColor3f(0.125f, 0.125f, 0.5f);
            arrow();
            glColor3f(0.125f, 0.5f, 0.125f);
            glRotated(-90.0, 1.0, 0.0, 0.0);
            arrow();
            glRotated(90.0, 1.0, 0.0, 0.0);
            glColor3f(0.5f, 0.125f, 0.125f);
            glRotated(90.0, 0.0, 1.0, 0.0);
            arrow();
            glRotated(-90.0, 0.0, 1.0, 0.0);
            gluDeleteQuadric(quadric);
        }
        glPopMatrix();
    }
    glPopAttrib();
}

void VxOpenGLRender::DrawZoomArea() {
    const CRect& zoom = VxRenderStatus::GetInstance()->GetZoomArea();
    // Only the all-zero rectangle is skipped; equal corners elsewhere still draw.
    if (zoom.left == 0 && zoom.top == 0 && zoom.right == 0 && zoom.bottom == 0) {
        return;
    }
    int W = 0;
    int H = 0;
    VxViewManager::GetInstance()->GetTotalViewSize(W, H);
    glViewport(0, 0, W, H);
    glPushAttrib(kZoomAreaAttribs);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);

    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, W, 0, H);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();

    glColor4f(0.0f, 0.0f, 1.0f, 0.25f);
    glBegin(GL_QUADS);
    glVertex2i(zoom.left, H - zoom.top);
    glVertex2i(zoom.right, H - zoom.top);
    glVertex2i(zoom.right, H - zoom.bottom);
    glVertex2i(zoom.left, H - zoom.bottom);
    glEnd();

    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopAttrib();
}

// Nothing in the library calls the two corner-icon operations; they are kept as they are.
bool VxOpenGLRender::LoadLeftInfoImage() {
    for (const CString& path : m_leftDownPaths) {
        VxDIBImage* image = LoadDIB(path.GetString());
        if (image == nullptr) {
            return false;
        }
        // The first pixel's colour is the transparent key.
        const unsigned char* px = image->pixels;
        const unsigned char key[3] = {px[0], px[1], px[2]};
        const size_t count = static_cast<size_t>(image->width) * image->height;
        std::vector<unsigned char> rgba(count * 4);
        for (size_t i = 0; i < count; ++i) {
            const unsigned char* src = px + i * 3;
            rgba[i * 4 + 0] = src[0];
            rgba[i * 4 + 1] = src[1];
            rgba[i * 4 + 2] = src[2];
            const bool isKey = src[0] == key[0] && src[1] == key[1] && src[2] == key[2];
            rgba[i * 4 + 3] = isKey ? 0 : 255;
        }
        GLuint texture = 0;
        glGenTextures(1, &texture);
        m_leftDownTextures.push_back(texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, 4, image->width, image->height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     rgba.data());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        FreeDIB(image);
    }
    return true;
}

// A row of 36-pixel icons along the bottom-left, in front of everything (depth range 0, 0).
void VxOpenGLRender::DrawLeftDownInfo() {
    glPushAttrib(kLeftDownAttribs);
    GLdouble depthRange[2] = {0.0, 1.0};
    glGetDoublev(GL_DEPTH_RANGE, depthRange);
    glDepthRange(0.0, 0.0);

    glViewport(0, 0, m_width, m_height);
    glDisable(GL_LIGHTING);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, m_width, 0, m_height);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glEnable(GL_ALPHA_TEST);
    glEnable(GL_DEPTH_TEST);
    glAlphaFunc(GL_GREATER, 0.5f);

    for (size_t i = 0; i < m_leftDownTextures.size(); ++i) {
        const int x = 100 * static_cast<int>(i);
        glBindTexture(GL_TEXTURE_2D, m_leftDownTextures[i]);
        glBegin(GL_QUADS);
        glTexCoord2f(0.0f, 0.0f);
        glVertex2i(x + 8, 8);
        glTexCoord2f(0.0f, 1.0f);
        glVertex2i(x + 8, 44);
        glTexCoord2f(1.0f, 1.0f);
        glVertex2i(x + 44, 44);
        glTexCoord2f(1.0f, 0.0f);
        glVertex2i(x + 44, 8);
        glEnd();
    }

    glDisable(GL_TEXTURE_2D);
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glDepthRange(depthRange[0], depthRange[1]);
    glPopAttrib();
}

// ---------------------------------------------------------------------------------------------
// Off-screen capture

// Read as floats on purpose, so that each channel is rounded (255 x value + 0.5) rather than
// truncated by the driver. A per-pixel loop, for occasional use.
CImage* VxOpenGLRender::CreateSnapshot(const CRect& rect) {
    const int w = rect.Width();
    const int h = rect.Height();
    if (w <= 0 || h <= 0) {
        return nullptr;
    }
    std::vector<float> pixels(static_cast<size_t>(w) * h * 3, 0.0f);
    glReadBuffer(GL_BACK);
    glReadPixels(rect.left, m_height - rect.bottom, w, h, GL_RGB, GL_FLOAT, pixels.data());

    CImage* image = new CImage();
    image->Create(w, h, 24, 0);
    auto channel = [](float value) { return static_cast<int>(255.0 * value + 0.5) & 0xFF; };
    // Array rows run from the bottom of the picture, image rows from the top.
    for (int i = 0; i < h; ++i) {
        const float* row = pixels.data() + static_cast<size_t>(i) * w * 3;
        for (int x = 0; x < w; ++x) {
            const float* px = row + x * 3;
            image->SetPixel(x, h - i - 1, RGB(channel(px[0]), channel(px[1]), channel(px[2])));
        }
    }
    return image;
}
