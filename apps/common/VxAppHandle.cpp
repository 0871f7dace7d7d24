// VxAppHandle: a frame or position handle on a tooth, and the host's side of a drag.
#include "VxAppHandle.h"

#include "VxAppScene.h"

#include <VxCase.h>

#include <aux/VxAuxFrame.h>
#include <aux/VxAuxPosition.h>
#include <aux/VxAuxRender.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxXForm.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <set>

namespace {

const char* const kModeNames[8] = {"move along X",
                                   "move along Y",
                                   "move along Z",
                                   "turn about Z",
                                   "turn about Y (wide arc)",
                                   "turn about X",
                                   "turn about X from below",
                                   "every move"};

VxAuxRender* Aux() {
    return VxRenderStatus::GetInstance()->GetAuxRender();
}

// The tooth's placement at the shown step: the first one that is not a limit position.
VxMatrix Placement(VxTooth* t) {
    for (const DrawInfo_s& info : VxTransformMatrix::GetInstance()->GetDrawInfos(t)) {
        if (!info.limited) {
            return info.matrix;
        }
    }
    return VxMatrix::Identity();
}

// The tooth's own frame carried by its placement.
VxFrame PlacedFrame(VxTooth* t) {
    const VxMatrix m = Placement(t);
    VxFrame f = t->GetFrame();
    if (!f.IsValid()) {
        f = VxFrame(t->GetBBox().Center(), VxVector(1, 0, 0), VxVector(0, 1, 0));
    }
    return VxFrame(m.Transform(f.GetOrigin()), m.Transform(f.DirX()), m.Transform(f.DirY()));
}

} // namespace

bool VxAppParseHandle(const std::string& text, VxAppHandleChoice& out) {
    VxAppHandleChoice c;
    if (text == "frame") {
        c.kind = VxAppHandleChoice::Kind::Frame;
    } else if (text == "rotate") {
        c.kind = VxAppHandleChoice::Kind::Rotate;
    } else if (text == "position") {
        c.kind = VxAppHandleChoice::Kind::Position;
    } else if (text.size() == 10 && text.compare(0, 9, "position:") == 0 && text[9] >= '0' &&
               text[9] <= '7') {
        c.kind = VxAppHandleChoice::Kind::Position;
        c.moveMode = text[9] - '0';
    } else {
        return false;
    }
    out = c;
    return true;
}

std::string VxAppHandleName(const VxAppHandleChoice& choice) {
    switch (choice.kind) {
    case VxAppHandleChoice::Kind::Frame:
        return "frame handle";
    case VxAppHandleChoice::Kind::Rotate:
        return "frame handle, turning";
    case VxAppHandleChoice::Kind::Position:
        return "position handle, mode " + std::to_string(choice.moveMode) + " (" +
               kModeNames[std::clamp(choice.moveMode, 0, 7)] + ")";
    default:
        return "no handle";
    }
}

VxAppHandle::~VxAppHandle() {
    // The registry owns the handle and frees it with everything else.
    m_frame = nullptr;
    m_position = nullptr;
}

VxAuxFrame* VxAppHandle::Live() const {
    if (m_frame == nullptr) {
        return nullptr;
    }
    // Clearing the registry frees the handle, and a later object may take its address: the
    // object found must still be a handle.
    // The registry is asked by address only: the handle may already be freed.
    return Aux()->Holds(m_frame) &&
                   dynamic_cast<VxAuxFrame*>(static_cast<VxAuxObject*>(m_frame)) == m_frame
               ? m_frame
               : nullptr;
}

void VxAppHandle::Detach() {
    if (VxAuxFrame* h = Live()) {
        Aux()->RemoveAuxObject(h, true);
    }
    m_frame = nullptr;
    m_position = nullptr;
    m_tooth = nullptr;
    m_fdi = 0;
    m_choice = VxAppHandleChoice();
}

int VxAppHandle::DefaultTooth(VxAppScene& scene) {
    VxCase* c = scene.GetCase();
    if (c == nullptr || c->teeth.empty()) {
        return 0;
    }
    for (const auto& t : c->teeth) {
        if (t->IsSelected()) {
            return t->GetFDI();
        }
    }
    for (int fdi : {46, 36, 16, 26}) {
        if (c->FindTooth(fdi) != nullptr) {
            return fdi;
        }
    }
    return c->teeth.front()->GetFDI();
}

bool VxAppHandle::Attach(VxAppScene& scene, int fdi, const VxAppHandleChoice& choice,
                         std::string& error) {
    Detach();
    if (choice.kind == VxAppHandleChoice::Kind::Off) {
        return true;
    }
    VxCase* c = scene.GetCase();
    VxTooth* tooth = c ? c->FindTooth(fdi) : nullptr;
    if (tooth == nullptr) {
        error = "the case has no tooth " + std::to_string(fdi);
        return false;
    }
    const VxFrame frame = PlacedFrame(tooth);
    // Sized by the tooth: the balls sit just outside a molar's crown.
    const VxBBox box = tooth->GetBBox();
    const double size = std::clamp(0.45 * box.Diagonal(), 4.0, 12.0);
    if (choice.kind == VxAppHandleChoice::Kind::Position) {
        m_position = new VxAuxPosition;
        m_position->SetRefDist(size);
        m_position->SetMoveMode(static_cast<HandleMovMode_e>(choice.moveMode));
        m_position->SetDisplayPoint(frame.GetOrigin());
        m_position->SetGeometry(frame);
        m_frame = m_position;
    } else {
        m_frame = new VxAuxFrame;
        m_frame->SetRefDist(size);
        m_frame->SetGeometry(frame);
    }
    // Handles are grabbed before anything else under the cursor.
    m_frame->SetHitPriority(AuxHitPriority_Highest);
    Aux()->AddAuxObject(m_frame);
    m_scene = &scene;
    m_tooth = tooth;
    m_fdi = fdi;
    m_choice = choice;
    if (choice.kind == VxAppHandleChoice::Kind::Rotate) {
        StartTurning();
    }
    return true;
}

std::string VxAppHandle::Cycle(VxAppScene& scene, int fdi) {
    VxAppHandleChoice next;
    if (!IsAttached()) {
        next.kind = VxAppHandleChoice::Kind::Frame;
    } else if (m_choice.kind != VxAppHandleChoice::Kind::Position) {
        next.kind = VxAppHandleChoice::Kind::Position;
        next.moveMode = 0;
    } else if (m_choice.moveMode < 7) {
        next.kind = VxAppHandleChoice::Kind::Position;
        next.moveMode = m_choice.moveMode + 1;
    }
    std::string error;
    if (fdi == 0 || !Attach(scene, fdi, next, error)) {
        Detach();
        return error.empty() ? "handle: off" : "handle: " + error;
    }
    if (next.kind == VxAppHandleChoice::Kind::Off) {
        return "handle: off";
    }
    return "handle: " + VxAppHandleName(next) + " on tooth " + std::to_string(fdi);
}

void VxAppHandle::StartTurning() {
    VxAuxFrame* h = Live();
    if (h == nullptr || m_scene == nullptr) {
        return;
    }
    m_scene->RenderFrame();
    VxOpenGLRender* render = m_scene->Render();
    const VxVector view = render->GetCursorRay(CPoint(0, 0)).Direction();
    const auto angle = [&view](const VxVector& v) {
        const double a = v.AngleWith(view) * 180.0 / 3.141592653589793;
        return a > 90.0 ? 180.0 - a : a;
    };
    // Ball 0 turns about Z; ball 2 about X, or about Y when Y looks at the viewer. The one whose
    // ring faces the viewer best is taken.
    const VxFrame& f = h->GetFrame();
    const VxVector zBallAxis =
        angle(f.DirY()) > 60.0 ? f.DirX() : (angle(f.DirX()) > 60.0 ? f.DirY() : f.DirX());
    const int ball = angle(f.DirZ()) <= angle(zBallAxis) ? 0 : 2;
    // Only the turn balls answer, whatever lies in front of them on the screen.
    h->SetSupportTranslate(false);
    const CPoint at = render->MapModelPointToScreen(h->TurnBall(ball).GetPos());
    h->HitTest(at.x, at.y);
    h->SetSupportTranslate(true);
    // The ring counts as shown from the frame after the hit.
    m_scene->RenderFrame();
}

void VxAppHandle::FocusView(double zoom) {
    VxAuxFrame* h = Live();
    VxViewManager* views = VxViewManager::GetInstance();
    VxViewRegion* view = views->GetView(0);
    if (h == nullptr || view == nullptr || views->IsMultiView()) {
        return;
    }
    const VxPoint o = h->GetFrame().GetOrigin();
    VxXForm xf = view->GetXForm();
    xf.SetScale(xf.GetScale() * zoom);
    xf.SetTranslation(VxVector(-o[0], -o[1], -o[2]));
    view->SetXForm(xf);
    // Seen a little from above and from the side, so that the axes along the arch and across
    // it both show.
    views->RotateView(view, VxMatrix::s_GetRotationMatrix(VxVector(1, 0, 0), 0.2));
    views->RotateView(view, VxMatrix::s_GetRotationMatrix(VxVector(0, 1, 0), 1.0));
    if (m_choice.kind == VxAppHandleChoice::Kind::Rotate) {
        StartTurning();
    }
}

bool VxAppHandle::Grab(const CPoint& pixel) {
    VxAuxFrame* h = Live();
    if (h == nullptr) {
        return false;
    }
    return h->HitTest(pixel.x, pixel.y);
}

void VxAppHandle::Drag(const CPoint& from, const CPoint& to, bool slow) {
    VxAuxFrame* h = Live();
    if (h == nullptr || m_tooth == nullptr) {
        return;
    }
    const VxPoint o = h->GetFrame().GetOrigin();
    const VxMatrix step = m_position != nullptr ? m_position->Transform(from, to, slow, false)
                                                : h->Transform(from, to, slow, false);
    if (step.IsIdentity()) {
        return;
    }
    // A turn comes about the coordinate origin: the host puts it about the handle's origin.
    const VxVector ov(o[0], o[1], o[2]);
    const VxMatrix about = VxMatrix::Translation(ov) * step * VxMatrix::Translation(-ov);
    VxTransformMatrix* placements = VxTransformMatrix::GetInstance();
    const int shown = placements->GetCurrentStep();
    std::set<DrawInfo_s> infos = placements->GetDrawInfos(m_tooth);
    std::set<DrawInfo_s> moved;
    bool any = false;
    for (const DrawInfo_s& info : infos) {
        if (info.limited) {
            moved.insert(info);
        } else {
            moved.insert(DrawInfo_s(false, about * info.matrix));
            any = true;
        }
    }
    if (!any) {
        moved.insert(DrawInfo_s(false, about));
    }
    placements->SetDrawInfos(m_tooth, shown, moved);
    // The case keeps the plan: the step shown again later shows the moved tooth.
    if (VxCase* c = m_scene ? m_scene->GetCase() : nullptr) {
        c->placements[m_tooth][shown] = moved;
    }
}
