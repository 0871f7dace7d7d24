// VxViewManager: layouts, synchronised view operations and view lookup.
#include <views/VxViewManager.h>

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTolerance.h>
#include <interfaces/VxXForm.h>
#include <views/VxViewRegion.h>

namespace {

VxMatrix Upper3x3(const VxMatrix& m) {
    VxMatrix r(3, 3);
    if (m.Rows() < 3 || m.Cols() < 3) {
        r.SetIdentity();
        return r;
    }
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            r[i][j] = m[i][j];
        }
    }
    return r;
}

VxMatrix To4x4(const VxMatrix& rotation3) {
    VxMatrix m = VxMatrix::Identity(4);
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            m[i][j] = rotation3[i][j];
        }
    }
    return m;
}

// The frame of the first jaw of the model, whether or not it is the reference jaw. The layouts
// that look into the arches read it without a test; an empty jaw list gives no frame here.
bool FirstJawFrame(VxModel& model, VxFrame& frame) {
    std::vector<VxJaw*> jaws = model.GetJaws();
    if (jaws.empty() || jaws[0] == nullptr) {
        return false;
    }
    frame = jaws[0]->GetFrame();
    return true;
}

} // namespace

VxViewManager* VxViewManager::GetInstance() {
    static VxViewManager instance;
    return &instance;
}

VxViewManager::~VxViewManager() {
    Clear();
}

void VxViewManager::SetTotalViewSize(int width, int height) {
    m_totalWidth = width;
    m_totalHeight = height;
}

void VxViewManager::GetTotalViewSize(int& width, int& height) const {
    width = m_totalWidth;
    height = m_totalHeight;
}

VxViewRegion* VxViewManager::NewView(CPoint origin, int width, int height, int id) {
    VxViewRegion* view = new VxViewRegion(origin, width, height);
    view->SetViewId(id);
    return view;
}

void VxViewManager::CreateSingleView() {
    VxViewRegion* view = NewView(CPoint(0, 0), m_totalWidth, m_totalHeight, 0);
    view->SetActive(true);
    m_views.push_back(view);
}

void VxViewManager::Clear() {
    for (VxViewRegion* view : m_views) {
        delete view;
    }
    m_views.clear();
}

void VxViewManager::AdjustSingleView() {
    VxViewRegion* view = GetView(0);
    if (view != nullptr) {
        view->Set(CPoint(0, 0), m_totalWidth, m_totalHeight);
    }
}

void VxViewManager::AdjustMultiView() {
    const int W = m_totalWidth;
    const int H = m_totalHeight;
    switch (m_views.size()) {
    case 4:
        m_views[0]->Set(CPoint(0, H / 2), W / 2, H / 2);
        m_views[1]->Set(CPoint(W / 2 + 1, H / 2), W / 2, H / 2);
        m_views[2]->Set(CPoint(0, 0), W / 2, H / 2);
        m_views[3]->Set(CPoint(W / 2 + 1, 0), W / 2, H / 2);
        break;
    case 2:
        m_views[0]->Set(CPoint(0, 0), W / 2, H);
        m_views[1]->Set(CPoint(W / 2, 0), W / 2, H);
        break;
    case 5:
        // Remembered for nobody in particular; a collapsed view 0 keeps the last good size.
        if (m_views[0]->Height() != 0) {
            m_previousWidth = m_views[0]->Width();
            m_previousHeight = m_views[0]->Height();
        }
        m_views[0]->Set(CPoint(0, 3 * H / 5), W / 3 - 1, 2 * H / 5 - 1);
        m_views[1]->Set(CPoint(W / 3 + 1, 3 * H / 5), W / 3 - 1, 2 * H / 5 - 1);
        m_views[2]->Set(CPoint(2 * W / 3 + 1, 3 * H / 5), W / 3 - 1, 2 * H / 5 - 1);
        m_views[3]->Set(CPoint(0, 0), W / 2 - 1, 3 * H / 5 - 1);
        m_views[4]->Set(CPoint(W / 2 + 1, 0), W / 2 - 1, 3 * H / 5 - 1);
        break;
    default:
        break;
    }
}

void VxViewManager::SwitchToSingleView() {
    if (m_views.size() <= 1) {
        return;
    }
    VxViewRegion* keep = nullptr;
    for (VxViewRegion* view : m_views) {
        if (keep == nullptr && view->GetViewId() == 0) {
            keep = view;
        } else {
            delete view;
        }
    }
    m_views.clear();
    if (keep != nullptr) {
        keep->Set(CPoint(0, 0), m_totalWidth, m_totalHeight);
        keep->SetActive(true);
        keep->SelectJawShow(Display_Selec_All);
        m_views.push_back(keep);
    }
    SetDisplayMode(Display_Mode_Normal);
    // The rotation view 0 got in the layout stays with it; only the frustum's Y extent resets.
    VxRenderStatus::GetInstance()->GetRender()->SetYExtRat(1.0);
}

void VxViewManager::SwitchToMultiView(VxModel& model) {
    if (IsMultiView()) {
        return;
    }
    VxViewRegion* view0 = GetView(0);
    if (view0 == nullptr) {
        return;
    }
    const int W = m_totalWidth;
    const int H = m_totalHeight;
    const VxMatrix R = GetReferenceRotation(model);
    const double scale = view0->GetXForm().GetScale();
    const VxVector translation = view0->GetXForm().GetTranslation();

    view0->Set(CPoint(0, H / 2), W / 2, H / 2);

    struct NewViewPlan {
        CPoint origin;
        FixedView rotation;
    };
    const NewViewPlan plans[3] = {{CPoint(W / 2 + 1, H / 2), View_Front},
                                  {CPoint(0, 0), View_Left},
                                  {CPoint(W / 2 + 1, 0), View_Right}};
    for (int i = 0; i < 3; ++i) {
        VxViewRegion* view = NewView(plans[i].origin, W / 2, H / 2, i + 1);
        VxXForm& xf = view->GetXForm();
        xf.SetRotation(GetFixedMatrix(plans[i].rotation) * R);
        xf.SetScale(scale);
        xf.SetTranslation(translation);
        view->SelectJawShow(Display_Selec_All);
        m_views.push_back(view);
    }
    SetDisplayMode(Display_Mode_Normal);
    SetActiveView(0);
}

void VxViewManager::SwitchTo5View(VxModel& model) {
    if (IsMultiView()) {
        return;
    }
    VxViewRegion* view0 = GetView(0);
    if (view0 == nullptr) {
        return;
    }
    const int W = m_totalWidth;
    const int H = m_totalHeight;
    // The bottom row takes its height from view 0 as it was before the change, not from H.
    const int h0 = view0->Height();
    const VxMatrix R = GetReferenceRotation(model);
    const double scale = view0->GetXForm().GetScale();
    const VxVector translation = view0->GetXForm().GetTranslation();
    VxFrame F;
    const bool hasJaw = FirstJawFrame(model, F);

    view0->Set(CPoint(0, 3 * H / 5), W / 3 - 1, 2 * H / 5 - 1);
    view0->GetXForm().SetRotation(GetFixedMatrix(View_Left) * R);
    view0->SelectJawShow(Display_Selec_All);

    struct NewViewPlan {
        CPoint origin;
        int width;
        int height;
        FixedView rotation;
        Display_Selec show;
    };
    const NewViewPlan plans[4] = {
        {CPoint(W / 3 + 1, 3 * H / 5), W / 3 - 1, 2 * H / 5 - 1, View_Front, Display_Selec_All},
        {CPoint(2 * W / 3 + 1, 3 * H / 5), W / 3 - 1, 2 * H / 5 - 1, View_Right, Display_Selec_All},
        {CPoint(0, 0), W / 2 - 1, 3 * h0 / 5 - 1, View_OcclusalUpper, Display_Selec_Upper},
        {CPoint(W / 2 + 1, 0), W / 2 - 1, 3 * h0 / 5 - 1, View_OcclusalLower, Display_Selec_Lower}};
    for (int i = 0; i < 4; ++i) {
        const int id = i + 1;
        VxViewRegion* view = NewView(plans[i].origin, plans[i].width, plans[i].height, id);
        VxXForm& xf = view->GetXForm();
        xf.SetRotation(GetFixedMatrix(plans[i].rotation) * R);
        xf.SetScale(scale);
        xf.SetTranslation(translation);
        view->SelectJawShow(plans[i].show);
        // The occlusal views are squared on the arch before they join the list, while view 0 is
        // still the active view whose matrices the look-at maps through.
        if (hasJaw && id == 3) {
            ViewLookAt(view, F.GetOrigin(), F.DirY(), F.DirX());
        } else if (hasJaw && id == 4) {
            ViewLookAt(view, F.GetOrigin(), F.DirY(), -F.DirX());
        }
        m_views.push_back(view);
    }
    SetDisplayMode(Display_Mode_Normal);
    SetActiveView(0);
}

void VxViewManager::SwitchTo2View(VxModel& model) {
    VxViewRegion* view0 = GetView(0);
    if (view0 == nullptr) {
        return;
    }
    const int W = m_totalWidth;
    const int H = m_totalHeight;
    const VxXForm saved = view0->GetXForm();
    double savedMatrix[16];
    for (int i = 0; i < 16; ++i) {
        savedMatrix[i] = view0->GetModelViewMatrix()[i];
    }
    VxFrame F;
    const bool hasJaw = FirstJawFrame(model, F);

    view0->Set(CPoint(0, 0), W / 2, H);
    view0->SetModelViewMatrix(savedMatrix);
    view0->SetViewId(0);
    view0->SelectJawShow(Display_Selec_Upper);
    view0->SetXForm(saved);
    if (hasJaw) {
        ViewLookAt(view0, F.GetOrigin(), F.DirY(), F.DirX());
    }

    // No one-pixel gap here, unlike the four- and five-view layouts.
    VxViewRegion* view1 = NewView(CPoint(W / 2, 0), W / 2, H, 1);
    VxXForm xf1;
    xf1.SetRotation(GetFixedMatrix(View_Back) * GetReferenceRotation(model));
    xf1.SetScale(saved.GetScale());
    xf1.SetTranslation(saved.GetTranslation());
    view1->SetXForm(xf1);
    view1->SetModelViewMatrix(savedMatrix);
    view1->SelectJawShow(Display_Selec_Lower);
    m_views.push_back(view1);
    if (hasJaw) {
        ViewLookAt(view1, F.GetOrigin(), F.DirY(), -F.DirX());
    }
    SetDisplayMode(Display_Mode_Normal);
    SetActiveView(0);
}

void VxViewManager::SwitchTo2View(VxModel& model, VxModel& /*secondModel*/) {
    VxViewRegion* view0 = GetView(0);
    if (view0 == nullptr) {
        return;
    }
    const int W = m_totalWidth;
    const int H = m_totalHeight;
    const VxXForm saved = view0->GetXForm();
    double savedMatrix[16];
    for (int i = 0; i < 16; ++i) {
        savedMatrix[i] = view0->GetModelViewMatrix()[i];
    }
    VxFrame F;
    const bool hasJaw = FirstJawFrame(model, F);

    view0->Set(CPoint(0, 0), W / 2, H);
    view0->SetModelViewMatrix(savedMatrix);
    view0->SetXForm(saved);
    view0->SetViewId(0);
    view0->SelectJawShow(Display_Selec_All);
    view0->SetDisplayStep(Display_Step_Initial);
    view0->SetTitle(CString(L"初始状态"));
    if (hasJaw) {
        ViewLookAt(view0, F.GetOrigin(), F.DirY(), F.DirZ());
    }

    VxViewRegion* view1 = NewView(CPoint(W / 2, 0), W / 2, H, 1);
    view1->SetModelViewMatrix(savedMatrix);
    view1->SetXForm(saved);
    view1->SelectJawShow(Display_Selec_All);
    view1->SetDisplayStep(Display_Step_Final);
    view1->SetTitle(CString(L"最终状态"));
    m_views.push_back(view1);
    if (hasJaw) {
        ViewLookAt(view1, F.GetOrigin(), F.DirY(), F.DirZ());
    }
    SetDisplayMode(Display_Mode_Compare);
    SetActiveView(0);
}

VxViewRegion* VxViewManager::GetView(CPoint point) const {
    for (VxViewRegion* view : m_views) {
        if (view->IsContain(point)) {
            return view;
        }
    }
    return nullptr;
}

VxViewRegion* VxViewManager::GetView(int id) const {
    for (VxViewRegion* view : m_views) {
        if (view->GetViewId() == id) {
            return view;
        }
    }
    return nullptr;
}

VxViewRegion* VxViewManager::GetView(const double* modelView) const {
    if (modelView == nullptr) {
        return nullptr;
    }
    for (VxViewRegion* view : m_views) {
        const double* m = view->GetModelViewMatrix();
        bool same = true;
        // The 16th number is left out on purpose: equal in the other fifteen is the same view.
        for (int i = 0; i < 15 && same; ++i) {
            same = VxTolerance::IsZero(m[i] - modelView[i]);
        }
        if (same) {
            return view;
        }
    }
    return nullptr;
}

VxViewRegion* VxViewManager::GetActiveView() const {
    for (VxViewRegion* view : m_views) {
        if (view->IsActive()) {
            return view;
        }
    }
    return nullptr;
}

void VxViewManager::SetActiveView(int id) {
    for (VxViewRegion* view : m_views) {
        view->SetActive(view->GetViewId() == id);
    }
}

void VxViewManager::SetActiveView(VxViewRegion* active) {
    for (VxViewRegion* view : m_views) {
        view->SetActive(view == active);
    }
}

void VxViewManager::RotateView(VxViewRegion* view, const VxMatrix& m) {
    if (view == nullptr) {
        return;
    }
    const VxMatrix T = view->GetXForm().GetRotation();
    const VxMatrix mT = Upper3x3(m) * T;
    if (m_synchronised) {
        VxMatrix I = T;
        I.Inverse();
        for (VxViewRegion* other : m_views) {
            if (other != view) {
                // (m T)(T^-1 O): the other view keeps its rotation relative to this one.
                other->GetXForm().SetRotation(mT * (I * other->GetXForm().GetRotation()));
            }
        }
    }
    view->GetXForm().SetRotation(mT);
}

void VxViewManager::ScaleView(VxViewRegion* view, double factor) {
    if (view == nullptr) {
        return;
    }
    view->GetXForm().SetScale(view->GetXForm().GetScale() * factor);
    if (m_synchronised) {
        for (VxViewRegion* other : m_views) {
            if (other != view) {
                other->GetXForm().SetScale(other->GetXForm().GetScale() * factor);
            }
        }
    }
}

void VxViewManager::TranslateView(VxViewRegion* view, const VxVector& v) {
    if (view == nullptr) {
        return;
    }
    view->GetXForm().SetTranslation(view->GetXForm().GetTranslation() + v);
    if (m_synchronised) {
        // The same model-space vector for every view, not turned into the other views' axes.
        for (VxViewRegion* other : m_views) {
            if (other != view) {
                other->GetXForm().SetTranslation(other->GetXForm().GetTranslation() + v);
            }
        }
    }
}

void VxViewManager::ViewLookAt(VxViewRegion* view, const VxPoint& p, const VxVector& a,
                               const VxVector& b) {
    if (view == nullptr) {
        return;
    }
    // Screen position of p is taken through the active view's stored matrices, not this view's.
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    VxPoint w = render->MapModelPointToWorld(p);

    VxFrame A(VxPoint(0, 0, 0), a, b);
    A.Transform(To4x4(view->GetXForm().GetRotation()));
    const VxFrame S(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0));
    RotateView(view, A.TransformToFrame(S).GetRotation());

    const VxPoint t = render->MapScreenPoint(w);
    TranslateView(view, t - p);
}

VxMatrix VxViewManager::GetReferenceRotation(VxModel& model) {
    VxMatrix M = VxMatrix::Identity(4);
    std::vector<VxJaw*> jaws = model.GetJaws();
    for (size_t k = 0; k < jaws.size(); ++k) {
        VxJaw* jaw = jaws[k];
        if (jaw == nullptr || jaw->IsEmpty() || !jaw->GetFrame().IsValid()) {
            continue;
        }
        const VxFrame target(VxPoint(0, 0, 0), VxVector(0, 0, 1),
                             k == 0 ? VxVector(1, 0, 0) : VxVector(-1, 0, 0));
        M = jaw->GetFrame().GetTransformToNewFrame(target);
        break;
    }
    return Upper3x3(M);
}

VxMatrix VxViewManager::GetFixedMatrix(FixedView which) {
    VxMatrix P(3, 3);
    switch (which) {
    case View_Front:
        P[0][0] = 1;
        P[1][1] = 1;
        P[2][2] = 1;
        break;
    case View_Left:
        P[0][2] = 1;
        P[1][1] = 1;
        P[2][0] = -1;
        break;
    case View_Right:
        P[0][2] = -1;
        P[1][1] = 1;
        P[2][0] = 1;
        break;
    case View_Back:
        P[0][0] = -1;
        P[1][1] = 1;
        P[2][2] = -1;
        break;
    case View_OcclusalUpper:
        P[0][2] = -1;
        P[1][1] = 1;
        P[2][0] = -1;
        break;
    case View_OcclusalLower:
        P[0][2] = 1;
        P[1][1] = -1;
        P[2][0] = 1;
        break;
    }
    return P;
}
