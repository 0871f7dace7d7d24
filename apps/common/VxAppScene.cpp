// VxAppScene: the host's side of the library for the two programs.
//
// Bring-up, in the order the library needs it:
//   1. SetBkGround before Create, because Create loads the background at once.
//   2. Create on the window; then the fixed path is chosen (Mesa reports 4.5, which would leave
//      the shader path on, and that path does not draw yet).
//   3. ResizeViewport, SetTotalViewSize, CreateSingleView.
//   4. SetModel on the renderer and the selecter.
// A layout that turns views with ViewLookAt reads the matrices of the last frame, so a frame is
// drawn before every layout switch.
#include "VxAppScene.h"

#include "VxAppOverlays.h"

#include "VxAppAuxDemo.h"

#include <VxCase.h>

#include <aux/VxAuxObject.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxTexture.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CImage.h>
#include <interfaces/CRect.h>
#include <interfaces/CString.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxEdge.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxVertex.h>
#include <interfaces/VxXForm.h>
#include <mesh/VxFixedDrawSteps.h>
#include <platform/VxGLContext.h>
#include <platform/VxMessageSink.h>
#include <select/VxOpenGLSelect.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <GL/gl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// Share of the shorter side of a view that the model's box diagonal takes at the start. The
// diagonal is longer than the arch seen from any side, so the teeth keep a margin.
constexpr double kFill = 1.15;

VxViewManager* Views() {
    return VxViewManager::GetInstance();
}

unsigned int JawsMask(VxAppJaws jaws) {
    switch (jaws) {
    case VxAppJaws::Upper:
        return Display_Selec_Upper;
    case VxAppJaws::Lower:
        return Display_Selec_Lower;
    case VxAppJaws::Both:
        break;
    }
    return Display_Selec_All;
}

// The reason the BMP reader gives, or "" when the file reads.
std::string CheckBackground(const std::string& path) {
    std::string reason;
    VxMessageSink::SetHandler([&reason](const std::string& text, const std::string&) {
        if (reason.empty()) {
            reason = text;
        }
    });
    VxDIBImage* image = LoadDIB(CString::FromUtf8(path).GetString());
    VxMessageSink::Reset();
    if (image != nullptr) {
        FreeDIB(image);
        return "";
    }
    while (!reason.empty() && (reason.back() == '\n' || reason.back() == '.')) {
        reason.pop_back();
    }
    return reason.empty() ? "not a readable BMP picture" : reason;
}

// A 4 x 4 white 24-bit BMP in the temporary folder; its path, or "" when it cannot be written.
std::string WriteWhiteBackground() {
    const char* dir = std::getenv("TMPDIR");
    const std::string path = std::string(dir && *dir ? dir : "/tmp") + "/vxrender-white-" +
                             std::to_string(static_cast<long>(getpid())) + ".bmp";
    const int side = 4, row = side * 3, size = 54 + row * side;
    std::vector<unsigned char> bmp(static_cast<size_t>(size), 0xFF);
    std::fill(bmp.begin(), bmp.begin() + 54, 0);
    auto put32 = [&bmp](int at, int v) {
        for (int i = 0; i < 4; ++i) {
            bmp[static_cast<size_t>(at + i)] = static_cast<unsigned char>(v >> (8 * i));
        }
    };
    bmp[0] = 'B';
    bmp[1] = 'M';
    put32(2, size);
    put32(10, 54);
    put32(14, 40);
    put32(18, side);
    put32(22, side);
    bmp[26] = 1;
    bmp[28] = 24;
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) {
        return "";
    }
    const bool ok = std::fwrite(bmp.data(), 1, bmp.size(), f) == bmp.size();
    return std::fclose(f) == 0 && ok ? path : "";
}

// The case's picture of a kind, or null (no case, no such picture).
const CImage* PictureOf(const VxCase* c, VxAppPictureKind kind) {
    if (c == nullptr) {
        return nullptr;
    }
    const VxPatientInfo& info = c->patientInfo;
    const CImage* image = nullptr;
    switch (kind) {
    case VxAppPictureKind::Front:
        image = info.GetFrontalSmileImg();
        break;
    case VxAppPictureKind::Profile:
        image = info.GetProfileImg();
        break;
    case VxAppPictureKind::Xray:
        image = info.GetCephalometricImg();
        break;
    case VxAppPictureKind::Panoramic:
        image = info.GetPanoramicImg();
        break;
    case VxAppPictureKind::None:
        break;
    }
    return image != nullptr && !image->IsNull() ? image : nullptr;
}

} // namespace

VxOpenGLRender* VxAppScene::Render() const {
    return VxRenderStatus::GetInstance()->GetRender();
}

bool VxAppScene::Open(HWND window, int width, int height, const std::string& background,
                      std::string& error) {
    VxOpenGLRender* render = Render();
    std::string white;
    if (!background.empty()) {
        const std::string reason = CheckBackground(background);
        if (!reason.empty()) {
            error = "background '" + background + "': " + reason;
            return false;
        }
        render->SetBkGround(CString::FromUtf8(background));
    } else {
        // The library paints a window without a background picture black; the programs want a
        // plain white page behind the model, so they hand it a white picture of their own.
        white = WriteWhiteBackground();
        render->SetBkGround(CString::FromUtf8(white));
    }
    // A missing white picture (no writable temporary folder) only means a black background; the
    // reader's complaint about it is no news to the user.
    const bool showMessages = g_bDIBShowMessage;
    g_bDIBShowMessage = !background.empty();
    const bool created = render->Create(window, 24, 8);
    g_bDIBShowMessage = showMessages;
    if (!white.empty()) {
        std::remove(white.c_str()); // Create has read it into a texture
    }
    if (!created || render->GetGLContext() == nullptr || !render->GetGLContext()->IsValid()) {
        const std::string why =
            render->GetGLContext() ? render->GetGLContext()->GetLastError() : std::string();
        error = "could not make an OpenGL context" + (why.empty() ? "" : ": " + why);
        return false;
    }
    // The path stays as chosen before (the shader path unless told otherwise); the context's own
    // version test, run by Create and again at every view, may have forced the fixed one.
    m_width = width;
    m_height = height;
    render->ResizeViewport(width, height);
    Views()->Clear();
    Views()->SetTotalViewSize(width, height);
    Views()->CreateSingleView();
    m_layout = VxAppLayout::Single;
    m_layoutMasks.assign(1, Display_Selec_All);
    return true;
}

void VxAppScene::SetCase(VxCase* c) {
    // The overlays go before the registry is emptied, and come back on the new case.
    VxAppOverlays::Attach(nullptr);
    // Aux objects stand on the old case's teeth; the picture is the old case's too.
    VxRenderStatus::GetInstance()->GetAuxRender()->Clear();
    m_auxDemo = false;
    m_case = c;
    VxModel* model = c ? &c->model : nullptr;
    if (c) {
        c->Install();
    }
    VxAppOverlays::Attach(c);
    Render()->SetModel(model);
    VxRenderStatus::GetInstance()->GetSelecter()->SetModel(model);
    if (Views()->IsMultiView()) {
        Views()->SwitchToSingleView();
    }
    m_layout = VxAppLayout::Single;
    m_layoutMasks.assign(Views()->GetAllViews().size(), Display_Selec_All);
    ResetView();
    ApplyJaws();
}

void VxAppScene::ResetView() {
    const VxAppOverlaysPause pause; // pictures fit the views they are made in
    if (!m_case) {
        return;
    }
    const VxAppLayout layout = m_layout;
    if (Views()->IsMultiView()) {
        Views()->SwitchToSingleView();
        m_layout = VxAppLayout::Single;
    }
    VxViewRegion* view = Views()->GetView(0);
    if (!view) {
        return;
    }
    const VxBBox box = m_case->model.GetBBox();
    const double diagonal = box.IsEmpty() ? 0.0 : box.Diagonal();
    VxXForm xf;
    xf.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                   VxViewManager::GetReferenceRotation(m_case->model));
    // The shorter side of a view spans two view units.
    xf.SetScale(diagonal > 0.0 ? 2.0 * kFill / diagonal : 1.0);
    const VxPoint c = box.IsEmpty() ? VxPoint() : box.Center();
    xf.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
    view->SetXForm(xf);
    if (layout != VxAppLayout::Single) {
        SetLayout(layout);
    }
}

void VxAppScene::SetLayout(VxAppLayout layout) {
    const VxAppOverlaysPause pause;
    if (!m_case) {
        return;
    }
    VxViewManager* views = Views();
    // A multi-view layout is built from one view only.
    if (views->IsMultiView()) {
        views->SwitchToSingleView();
    }
    m_layout = VxAppLayout::Single;
    VxModel& model = m_case->model;
    // The two-jaw, compare and five-view layouts read the first jaw; without one they would
    // fault, so such a case stays in one view.
    const bool hasJaw = !model.GetJaws().empty();
    if (layout != VxAppLayout::Single && (hasJaw || layout == VxAppLayout::Four)) {
        // ViewLookAt maps through the matrices of the last frame.
        views->SetActiveView(0);
        Render()->RenderScene(true);
        switch (layout) {
        case VxAppLayout::Jaws:
            views->SwitchTo2View(model);
            break;
        case VxAppLayout::Compare:
            views->SwitchTo2View(model, model);
            break;
        case VxAppLayout::Four:
            views->SwitchToMultiView(model);
            break;
        case VxAppLayout::Five:
            views->SwitchTo5View(model);
            break;
        case VxAppLayout::Single:
            break;
        }
        m_layout = layout;
    }
    ApplyComparePlacements(m_layout == VxAppLayout::Compare);
    m_layoutMasks.clear();
    for (VxViewRegion* v : views->GetAllViews()) {
        m_layoutMasks.push_back(v->GetUpDownSelec());
    }
    ApplyJaws();
}

void VxAppScene::SetJaws(VxAppJaws jaws) {
    m_jaws = jaws;
    ApplyJaws();
}

void VxAppScene::ApplyJaws() {
    // A picture stands at the depth the library gives it (behind the front of the teeth) with
    // its landmarks over it: the view that shows one leaves the patient out so it can be read.
    std::vector<const VxViewRegion*> pictureViews;
    if (GetPicture() != VxAppPictureKind::None) {
        for (VxAuxObject* o : VxRenderStatus::GetInstance()->GetAuxRender()->GetTexture()) {
            if (auto* t = dynamic_cast<VxAuxTexture*>(o); t != nullptr && t->IsVisible()) {
                pictureViews.push_back(t->GetRelatedView());
            }
        }
    }
    const std::vector<VxViewRegion*>& views = Views()->GetAllViews();
    for (std::size_t i = 0; i < views.size(); ++i) {
        const unsigned int layoutMask = i < m_layoutMasks.size() ? m_layoutMasks[i] : 63u;
        const bool picture =
            std::find(pictureViews.begin(), pictureViews.end(), views[i]) != pictureViews.end();
        const unsigned int mask = picture ? 0u : layoutMask & JawsMask(m_jaws);
        views[i]->SelectJawShow(static_cast<Display_Selec>(mask));
    }
}

void VxAppScene::SetDisplay(VxAppDisplay display) {
    m_display = display;
    DisplayMode_e mode = DisplayMode_Solid;
    switch (display) {
    case VxAppDisplay::Solid:
        mode = DisplayMode_Solid;
        break;
    case VxAppDisplay::SolidEdges:
        mode = DisplayMode_SolidEdges;
        break;
    case VxAppDisplay::Edges:
        mode = DisplayMode_Edges;
        break;
    case VxAppDisplay::Points:
        mode = DisplayMode_Points;
        break;
    }
    VxRenderStatus::GetInstance()->SetDisplayMode(mode);
}

bool VxAppScene::SetRenderPath(VxAppRenderPath path, std::string& error) {
    OpenGLVersion* version = OpenGLVersion::GetInstance();
    if (path == VxAppRenderPath::Fixed) {
        version->Set_btestversion(false);
        return true;
    }
    // Before a context exists nothing is known yet; the frame repeats the test at every view.
    const char* reported = version->GetVersion();
    if (reported != nullptr && !OpenGLVersion::VersionPassesTest(reported)) {
        error = std::string("the context reports OpenGL ") + reported +
                ", below the 4.3 the shader path needs; drawing with the fixed path";
        version->Set_btestversion(false);
        return false;
    }
    version->Set_btestversion(true);
    return true;
}

VxAppRenderPath VxAppScene::GetRenderPath() const {
    return OpenGLVersion::GetInstance()->Get_btestversion() ? VxAppRenderPath::Shader
                                                            : VxAppRenderPath::Fixed;
}

int VxAppScene::StepCount() const {
    return m_case ? std::max(1, m_case->stepCount) : 1;
}

int VxAppScene::GetStep() const {
    return m_case ? m_case->currentStep : 0;
}

void VxAppScene::SetStep(int step) {
    if (m_case) {
        m_case->SetCurrentStep(std::clamp(step, 0, StepCount() - 1));
    }
}

void VxAppScene::Resize(int width, int height) {
    if (width <= 0 || height <= 0) {
        return; // minimised
    }
    m_width = width;
    m_height = height;
    // The order a host follows on every size change.
    Render()->ResizeViewport(width, height);
    Views()->SetTotalViewSize(width, height);
    if (Views()->IsMultiView()) {
        Views()->AdjustMultiView();
    } else {
        Views()->AdjustSingleView();
    }
}

void VxAppScene::RenderFrame() {
    // Pictures come and go with the overlays (the programs' keys and options, a layout
    // change): the views' jaw choice follows them at every frame.
    ApplyJaws();
    Render()->RenderScene(m_case != nullptr);
    // The host's part of a frame: aux objects after the scene, so their depth passes see it,
    // and the axis cross last, in each view's lower-right corner.
    VxRenderStatus::GetInstance()->GetAuxRender()->Render();
    if (m_axisCross) {
        Render()->DrawCoordinateSystem();
    }
}

bool VxAppScene::SetAuxDemo(bool on, std::string& error) {
    const VxAppOverlaysPause pause; // the overlays stay out of the registry's clearing
    VxAuxRender* aux = VxRenderStatus::GetInstance()->GetAuxRender();
    aux->Clear();
    m_auxDemo = false;
    if (!on) {
        return true;
    }
    if (m_case == nullptr) {
        error = "the aux sample needs a case";
        return false;
    }
    VxPoint focus;
    m_auxDemo = VxAppAddAuxDemo(*m_case, aux, focus, error) > 0;
    // The sample's objects are a few millimetres across: in one view, zoom onto the front
    // teeth where they stand.
    VxViewRegion* view = Views()->GetView(0);
    if (m_auxDemo && view != nullptr && !Views()->IsMultiView()) {
        VxXForm xf = view->GetXForm();
        xf.SetScale(xf.GetScale() * 2.2);
        xf.SetTranslation(VxVector(-focus[0], -focus[1], -focus[2]));
        view->SetXForm(xf);
    }
    return m_auxDemo;
}

bool VxAppScene::SetPicture(VxAppPictureKind kind, std::string& error) {
    if (kind != VxAppPictureKind::None && PictureOf(m_case, kind) == nullptr) {
        error = std::string("the case has no ") + VxAppNameOf(kVxAppPictures, kind) + " picture";
        return false;
    }
    for (const auto& p : kVxAppPictures) {
        if (p.value != VxAppPictureKind::None && p.value != kind) {
            VxAppOverlays::Show(p.word, false);
        }
    }
    if (kind == VxAppPictureKind::None) {
        return true;
    }
    // The cache fits a picture to the active view: the first one.
    Views()->SetActiveView(0);
    VxAppOverlays::Show(VxAppNameOf(kVxAppPictures, kind), true);
    return true;
}

VxAppPictureKind VxAppScene::GetPicture() const {
    for (const auto& p : kVxAppPictures) {
        if (p.value != VxAppPictureKind::None && VxAppOverlays::IsShown(p.word)) {
            return p.value;
        }
    }
    return VxAppPictureKind::None;
}

VxAppPictureKind VxAppScene::NextPicture(VxAppPictureKind kind) {
    for (std::size_t i = 0; i < kVxAppPictures.size(); ++i) {
        if (kVxAppPictures[i].value == kind) {
            return kVxAppPictures[(i + 1) % kVxAppPictures.size()].value;
        }
    }
    return VxAppPictureKind::None;
}

std::string VxAppScene::AuxHit(const CPoint& pixel, bool toggle) {
    VxViewManager* views = Views();
    if (VxViewRegion* view = views->GetView(pixel)) {
        views->SetActiveView(view);
    }
    RenderFrame();
    VxAuxRender* aux = VxRenderStatus::GetInstance()->GetAuxRender();
    aux->HitTest(pixel);
    VxAuxObject* hit = aux->GetHitObject();
    if (hit == nullptr) {
        return std::string();
    }
    if (toggle) {
        aux->DoSelect(pixel);
    }
    return VxAppDescribeAux(hit) + (hit->IsSelected() ? " (selected)" : "");
}

void VxAppScene::Present() {
    Render()->Flush();
}

bool VxAppScene::SaveSnapshot(const std::string& path, std::string& error) {
    CImage* image = Render()->CreateSnapshot(CRect(0, 0, m_width, m_height));
    if (image == nullptr) {
        error = "no picture could be taken of the window";
        return false;
    }
    const bool saved = SUCCEEDED(image->Save(CString::FromUtf8(path).GetString()));
    delete image;
    if (!saved) {
        error = "cannot write '" + path + "'";
        return false;
    }
    return true;
}

VxViewRegion* VxAppScene::ViewAt(const CPoint& pixel) const {
    VxViewRegion* view = Views()->GetView(pixel);
    return view ? view : Views()->GetActiveView();
}

VxObject* VxAppScene::Pick(const CPoint& pixel, PickKind kind) {
    if (!m_case) {
        return nullptr;
    }
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    switch (kind) {
    case PickKind::Entity:
        status->SetSelectType({ObjectType_Tooth, ObjectType_Gum, ObjectType_Jaw,
                               ObjectType_Attachment, ObjectType_Mesh});
        break;
    case PickKind::Vertex:
        status->SetSelectType({ObjectType_Vertex});
        break;
    case PickKind::Edge:
        status->SetSelectType({ObjectType_Edge});
        break;
    }
    if (VxViewRegion* view = Views()->GetView(pixel)) {
        Views()->SetActiveView(view);
    }
    // The stencil and depth the pick reads are those of a frame just drawn. A pick follows the
    // jaws that the last drawn view showed, so the clicked view's are put in their place.
    Render()->RenderScene(true);
    VxFixedDrawSteps::ShelterAsShownIn(&m_case->model, Views()->GetActiveView());
    Render()->ProcessFeedback(pixel);
    return status->GetSelecter()->DoSelect(pixel);
}

std::string VxAppScene::Describe(const VxObject* object) const {
    if (object == nullptr) {
        return "nothing";
    }
    auto meshName = [](const VxObject* mesh) -> std::string {
        if (mesh == nullptr) {
            return "a mesh";
        }
        if (mesh->IsKindOf(ObjectType_Tooth)) {
            return "tooth " + std::to_string(static_cast<const VxTooth*>(mesh)->GetFDI());
        }
        if (mesh->IsKindOf(ObjectType_Attachment)) {
            const VxTooth* t = static_cast<const VxAttachment*>(mesh)->GetTooth();
            return t ? "the attachment on tooth " + std::to_string(t->GetFDI())
                     : std::string("an attachment");
        }
        if (mesh->IsKindOf(ObjectType_Gum)) {
            return static_cast<const VxGum*>(mesh)->IsUp() ? "the upper gum" : "the lower gum";
        }
        if (mesh->IsKindOf(ObjectType_Jaw)) {
            return static_cast<const VxJaw*>(mesh)->IsUp() ? "the upper jaw" : "the lower jaw";
        }
        if (mesh->IsKindOf(ObjectType_Skull)) {
            return "the skull";
        }
        return "a mesh";
    };
    const VxModel* model = m_case ? &m_case->model : nullptr;
    if (object->IsKindOf(ObjectType_Vertex)) {
        const auto* v = static_cast<const VxVertex*>(object);
        return "vertex " + std::to_string(v->GetVtxId()) + " of " +
               meshName(model ? model->GetParentMesh(v) : nullptr);
    }
    if (object->IsKindOf(ObjectType_Edge)) {
        const auto* e = static_cast<const VxEdge*>(object);
        return "edge " + std::to_string(e->GetEdgeId()) + " of " +
               meshName(model ? model->GetParentMesh(e) : nullptr);
    }
    return meshName(object);
}

bool VxAppScene::SelectTooth(int fdi, bool selected) {
    VxTooth* tooth = m_case ? m_case->model.GetTooth(fdi) : nullptr;
    if (!tooth) {
        return false;
    }
    tooth->SetSelected(selected ? 1 : 0);
    return true;
}

bool VxAppScene::HighlightTooth(int fdi, bool highlighted) {
    VxTooth* tooth = m_case ? m_case->model.GetTooth(fdi) : nullptr;
    if (!tooth) {
        return false;
    }
    tooth->SetHighLight(highlighted ? 1 : 0);
    return true;
}

void VxAppScene::ClearSelection() {
    if (!m_case) {
        return;
    }
    std::vector<VxEntity*> entities;
    m_case->model.GetEntities(entities);
    for (VxEntity* e : entities) {
        e->SetSelected(0);
        e->SetHighLight(0);
    }
}

void VxAppScene::ApplyComparePlacements(bool compare) {
    if (!m_case) {
        return;
    }
    // The compare layout's right view draws only the placements flagged as limit positions, and
    // draws them opaque: the host says what "final" means by flagging it. Here it is the plan's
    // last step, added to every step's placements while the layout is up; leaving the layout
    // puts the case's own placements back.
    VxTransformMatrix* tm = VxTransformMatrix::GetInstance();
    for (const auto& [entity, steps] : m_case->placements) {
        if (steps.empty()) {
            continue;
        }
        const std::set<DrawInfo_s>& last = steps.rbegin()->second;
        for (const auto& [step, infos] : steps) {
            std::set<DrawInfo_s> shown = infos;
            if (compare) {
                for (const DrawInfo_s& d : last) {
                    if (!d.limited) {
                        shown.insert(DrawInfo_s(true, d.matrix));
                    }
                }
            }
            tm->SetDrawInfos(const_cast<VxEntity*>(entity), step, shown);
        }
    }
}
