// VxCacheStuff: the arch wire, the reference and occlusal planes and the tooth arch lines.
#include <overlays/VxCacheStuff.h>

#include <aux/VxAuxPipeLine.h>
#include <aux/VxAuxPlane.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxArchForm.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxBeautyPlane.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxJawRef.h>
#include <interfaces/VxOcclusalPlane.h>
#include <interfaces/VxReferenceMgr.h>
#include <interfaces/VxScheme.h>
#include <interfaces/VxSchemeMgr.h>
#include <interfaces/VxToothRef.h>

#include <memory>

namespace {

VxAuxRender* AuxRender() {
    return VxRenderStatus::GetInstance()->GetAuxRender();
}

// A rectangle from the frame's origin growing along L X and L Y: not centred.
VxAuxPlane* MakePlane(const VxFrame& frame, double length, const VxColor& colour) {
    auto* plane = new VxAuxPlane();
    plane->Set(frame.GetOrigin(), frame.DirX() * length, frame.DirY() * length);
    plane->SetColor(colour);
    AuxRender()->AddAuxObject(plane);
    return plane;
}

template <typename T> void RemoveOne(T*& object) {
    if (object == nullptr)
        return;
    AuxRender()->RemoveAuxObject(object, true);
    object = nullptr;
}

VxScheme* CurScheme() {
    return VxSchemeMgr::GetInstance()->GetCurScheme();
}

VxAuxPipeLine* MakeToothLine(const VxArchForm* arch, const VxColor& colour) {
    if (arch == nullptr || arch->GetCurve() == nullptr)
        return nullptr;
    auto* pipe = new VxAuxPipeLine();
    pipe->SetStyle(AuxPipeLineStyle_Thick);
    pipe->SetDrawHidden(true);
    pipe->SetColor(colour);
    pipe->SetBSplineCurve(arch->GetCurve());
    AuxRender()->AddAuxObject(pipe);
    return pipe;
}

} // namespace

// --- arch wire -----------------------------------------------------------------------------

void VxCacheStuff::PreparArchWire() {
    RemoveArchWire();
    // Keyed as the reference collection, so each wire runs in the order of its keys.
    std::map<int, VxPoint> upper;
    std::map<int, VxPoint> lower;
    for (const auto& entry : VxReferenceMgr::GetInstance()->GetAll()) {
        VxToothRef* ref = entry.second;
        if (ref == nullptr || ref->GetToothKind() == ToothKind_Missing)
            continue;
        const VxBSplineCurve* curve = ref->GetFacc().GetCurve();
        if (curve == nullptr)
            continue;
        VxPoint point;
        double t = 0.0;
        if (!curve->GetMiddlePoint(point, t))
            continue;
        const VxJaw* jaw = ref->GetOwnJaw();
        const bool up = jaw != nullptr ? jaw->IsUp() : VxFDI(ref->GetFDI()).IsUpper();
        (up ? upper : lower)[entry.first] = point;
    }
    for (const auto* side : {&upper, &lower}) {
        std::vector<VxPoint> points;
        for (const auto& entry : *side)
            points.push_back(entry.second);
        if (points.empty())
            continue;
        std::unique_ptr<VxBSplineCurve> curve(VxBSplineCurve::CreateInterpolateCurve(points, 0));
        if (!curve)
            continue;
        auto* pipe = new VxAuxPipeLine();
        pipe->SetStyle(AuxPipeLineStyle_Thick);
        pipe->SetColor(VxColor(255, 255, 0, 100));
        pipe->SetBSplineCurve(curve.get());
        AuxRender()->AddAuxObject(pipe);
        m_archWire.push_back(pipe);
    }
}

void VxCacheStuff::RemoveArchWire() {
    for (VxAuxObject* pipe : m_archWire) {
        if (pipe == nullptr)
            return; // the list stays as it stands
        AuxRender()->RemoveAuxObject(pipe, true);
    }
    m_archWire.clear();
}

// --- planes --------------------------------------------------------------------------------

void VxCacheStuff::PrepareMiddlePlane() {
    RemoveMiddlePlane();
    const VxJawRef* ref = VxReferenceMgr::GetInstance()->GetJawRef();
    VxFrame frame;
    double length = 0.0;
    if (ref == nullptr || !ref->GetMiddlePlane(frame, length))
        return;
    m_middlePlane = MakePlane(frame, length, VxColor(100, 200, 100, 100));
}

void VxCacheStuff::RemoveMiddlePlane() {
    RemoveOne(m_middlePlane);
}

void VxCacheStuff::PrepareBackBoundaryPlane() {
    RemoveBackBoundaryPlane();
    const VxJawRef* ref = VxReferenceMgr::GetInstance()->GetJawRef();
    VxFrame frame;
    double length = 0.0;
    if (ref == nullptr || !ref->GetBackBoundaryPlane(frame, length))
        return;
    m_backBoundaryPlane = MakePlane(frame, length, VxColor(100, 200, 100, 100));
}

void VxCacheStuff::RemoveBackBoundaryPlane() {
    RemoveOne(m_backBoundaryPlane);
}

void VxCacheStuff::PrepareBeautyPlane() {
    RemoveBeautyPlane();
    const VxJawRef* ref = VxReferenceMgr::GetInstance()->GetJawRef();
    const VxBeautyPlane* beauty = ref != nullptr ? ref->GetBeautyPlane() : nullptr;
    if (beauty == nullptr)
        return;
    m_beautyPlane =
        MakePlane(beauty->GetPlaneFrame(), beauty->GetLength(), VxColor(100, 200, 100, 100));
    std::vector<VxPoint> points;
    beauty->GetBeauPt(points);
    for (const VxPoint& p : points) {
        auto* point = new VxAuxPoint();
        point->SetStyle(AuxPointStyle_Large);
        point->SetHitable(false);
        point->SetColor(VxColor(0, 255, 0, 100));
        point->SetPos(p);
        AuxRender()->AddAuxObject(point);
        m_beautyPoints.push_back(point);
    }
}

void VxCacheStuff::RemoveBeautyPlane() {
    if (m_beautyPlane == nullptr)
        return;
    RemoveOne(m_beautyPlane);
    for (VxAuxObject* point : m_beautyPoints) {
        if (point != nullptr)
            AuxRender()->RemoveAuxObject(point, true);
    }
    m_beautyPoints.clear();
}

void VxCacheStuff::PrepareUpJawPlane() {
    RemoveUpJawPlane();
    const VxScheme* scheme = CurScheme();
    const VxOcclusalPlane* occ = scheme != nullptr ? scheme->GetUpOccPlane() : nullptr;
    if (occ == nullptr)
        return;
    m_upJawPlane = MakePlane(occ->GetPlaneFrame(), occ->GetLength(), VxColor(0, 255, 0, 100));
}

void VxCacheStuff::RemoveUpJawPlane() {
    RemoveOne(m_upJawPlane);
}

void VxCacheStuff::PrepareDownJawPlane() {
    RemoveDownJawPlane();
    const VxScheme* scheme = CurScheme();
    const VxOcclusalPlane* occ = scheme != nullptr ? scheme->GetLowOccPlane() : nullptr;
    if (occ == nullptr)
        return;
    m_downJawPlane = MakePlane(occ->GetPlaneFrame(), occ->GetLength(), VxColor(0, 0, 255, 100));
}

void VxCacheStuff::RemoveDownJawPlane() {
    RemoveOne(m_downJawPlane);
}

// --- tooth arch lines ----------------------------------------------------------------------

void VxCacheStuff::PrepareUpToothLine() {
    RemoveUpToothLine();
    const VxScheme* scheme = CurScheme();
    if (scheme != nullptr)
        m_upToothLine = MakeToothLine(scheme->GetUpArch(), VxColor(0, 255, 0, 100));
}

void VxCacheStuff::RemoveUpToothLine() {
    RemoveOne(m_upToothLine);
}

void VxCacheStuff::PrepareDownToothLine() {
    RemoveDownToothLine();
    const VxScheme* scheme = CurScheme();
    if (scheme != nullptr)
        m_downToothLine = MakeToothLine(scheme->GetLowArch(), VxColor(0, 0, 255, 100));
}

void VxCacheStuff::RemoveDownToothLine() {
    RemoveOne(m_downToothLine);
}
