// VxCacheStuff: tooth numbers, movement marks, Facc curves, the reference overlay, the key point
// and the FA and see-centre queries.
#include <overlays/VxCacheStuff.h>

#include <aux/VxAuxPipeLine.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxTexture.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CBitmap.h>
#include <interfaces/CephalometricPt.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxBeautyPlane.h>
#include <interfaces/VxCepMeasure.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxJawRef.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxMoveDiffDataMgr.h>
#include <interfaces/VxOcclusalPlane.h>
#include <interfaces/VxPlane.h>
#include <interfaces/VxReferenceMgr.h>
#include <interfaces/VxScheme.h>
#include <interfaces/VxSchemeMgr.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxToothRef.h>
#include <interfaces/VxTreatStep.h>
#include <interfaces/VxVertex.h>

#include <cmath>
#include <memory>

namespace {

// The reference overlay's three colours: curves, reference points and the middle vertex. They
// share one value today but are kept apart so that each can change on its own.
const VxColor kRefCurveColor(64, 64, 64, 100);
const VxColor kRefPointColor(64, 64, 64, 100);
const VxColor kRefMidVertexColor(64, 64, 64, 100);

constexpr double kPi = 3.14159265358979323846;

VxAuxRender* AuxRender() {
    return VxRenderStatus::GetInstance()->GetAuxRender();
}

// Deletes every object of a tooth-keyed map and empties it.
void DeleteAll(std::map<VxTooth*, VxAuxObject*>& objects) {
    for (auto& entry : objects)
        delete entry.second;
    objects.clear();
}

// Corners of a card on the labial face of the crown, built from the tooth's Facc curve at
// parameter t. The curve's Frenet frame is (tangent, normal, binormal); the card wants the
// tangent as its up axis and the normal as its face, so the axes are taken in the cyclic order
// (binormal, tangent, normal), which keeps the frame right-handed and the text unmirrored.
void CardCorners(VxTooth* tooth, VxToothRef* ref, double t, bool small, VxPoint* corners) {
    if (ref == nullptr || corners == nullptr)
        return;
    const VxBSplineCurve* curve = ref->GetFacc().GetToothCurve();
    if (curve == nullptr)
        return;
    VxFrame frenet;
    if (!curve->FrenetFrame(t, frenet))
        return;
    VxVector X = frenet.DirZ();
    VxVector Y = frenet.DirX();
    VxVector Z = frenet.DirY();
    // A half turn for the lower jaw, so that its numbers read the same way up as the upper.
    if (!tooth->IsUp()) {
        Y = -Y;
        X = -X;
    }
    // The tooth's own Y, made to point the same way for the left and right halves of a jaw.
    VxVector T = tooth->GetFrame().DirY();
    const int quadrant = tooth->GetFDIEx().GetFDI() / 10;
    if (quadrant == 1 || quadrant == 3)
        T = -T;
    // Z to the facing side; the second flip keeps the card unmirrored.
    if (T % Z < 0.0) {
        Z = -Z;
        X = -X;
    }
    const VxPoint origin = frenet.GetOrigin();
    const VxPlane plane(origin, Z);
    double greatest = 0.0;
    for (const VxVertex& v : tooth->GetVertices())
        greatest = std::max(greatest, plane.DistanceToPoint(v.GetPos(), true));
    const VxPoint centre = origin + Z * greatest;
    const double h = small ? 1.5 : 2.4;
    corners[0] = centre - X * h + Y * h;
    corners[1] = centre - X * h - Y * h;
    corners[2] = centre + X * h - Y * h;
    corners[3] = centre + X * h + Y * h;
}

// A card texture from a bitmap, in the tooth's own coordinates; null without a bitmap.
VxAuxTexture* MakeCard(CBitmap* bitmap, const VxPoint* corners) {
    if (bitmap == nullptr)
        return nullptr;
    auto* card = new VxAuxTexture(nullptr);
    card->SetType(AuxTexture_Plain);
    card->SetTexture(*bitmap);
    card->SetCorners(corners);
    delete bitmap; // the texture keeps its own copy on the GPU
    return card;
}

} // namespace

// --- tooth numbers -------------------------------------------------------------------------

void VxCacheStuff::PrepareToothFDI() {
    RemoveToothFDI();
    if (m_model == nullptr)
        return;
    for (VxTooth* tooth : m_model->GetTeeth()) {
        CString text = tooth->GetFDIEx().toString(0);
        bool small = true;
        switch (static_cast<int>(tooth->GetToothKind())) {
        case 2:
            text = text + L"(I)";
            small = false;
            break;
        case 3:
            text = text + L"(P)";
            small = false;
            break;
        case 6:
            text.Format(L"%d", tooth->GetFDI() + 40);
            small = false;
            break;
        default:
            break;
        }
        CBitmap* bitmap = CreateBitmapFromText(text, small);
        VxPoint corners[4];
        CalculateFDIPosition(tooth, corners, small);
        if (VxAuxTexture* card = MakeCard(bitmap, corners))
            m_toothLabels[tooth] = card;
    }
}

void VxCacheStuff::RemoveToothFDI() {
    DeleteAll(m_toothLabels);
}

void VxCacheStuff::CalculateFDIPosition(VxTooth* tooth, VxPoint* corners, bool small) {
    if (tooth == nullptr)
        return;
    // The number finds its reference by the tooth's place (GetID), so a deciduous tooth takes
    // the reference of the permanent tooth at its place. The references are kept by FDI number,
    // so the place goes back to the number of its permanent tooth for the look-up.
    const int place = tooth->GetFDIEx().GetID();
    CardCorners(tooth, VxReferenceMgr::GetInstance()->Get(VxFDI::FromID(place).GetFDI()), 0.5,
                small, corners);
}

void VxCacheStuff::CalculateMDPosition(VxTooth* tooth, VxPoint* corners, bool small) {
    if (tooth == nullptr)
        return;
    CardCorners(tooth, VxReferenceMgr::GetInstance()->Get(tooth->GetFDI()), 0.75, small, corners);
}

// --- movement marks ------------------------------------------------------------------------

void VxCacheStuff::PrepareToothMoveDiff() {
    RemoveToothMoveDiff();
    VxScheme* scheme = VxSchemeMgr::GetInstance()->GetCurScheme();
    if (m_model == nullptr || scheme == nullptr)
        return;
    const std::map<int, ThreeMovementDiff_s> limits =
        VxMoveDiffDataMgr::GetInstance()->GetMovementDiff();
    for (VxTooth* tooth : m_model->GetTeeth()) {
        std::vector<VxTreatStep*> steps;
        scheme->GetToothAllSteps(tooth->GetFDI(), steps);
        if (steps.empty())
            continue;
        const VxVector m = VxTreatStep::GetTransMove(steps.front(), steps.back());
        const VxVector r = VxTreatStep::GetTransRotate(steps.front(), steps.back());
        const auto limit = limits.find(tooth->GetFDI());
        if (limit == limits.end())
            continue;
        // Comparison order: x move, x rotation, y move, y rotation, z move, z rotation.
        const double magnitude[6] = {std::fabs(m[0]), std::fabs(r[0]), std::fabs(m[1]),
                                     std::fabs(r[1]), std::fabs(m[2]), std::fabs(r[2])};
        bool allBelow = true;
        bool anyAbove = false;
        for (int k = 0; k < 6; ++k) {
            allBelow = allBelow && magnitude[k] < limit->second.Min(k);
            anyAbove = anyAbove || magnitude[k] > limit->second.Max(k);
        }
        if (allBelow)
            continue;
        const VxColor colour = anyAbove ? VxColor(0, 0, 0, 100) : VxColor(0, 0, 255, 100);
        CBitmap* bitmap = CreateCircleBitmap(colour, true);
        VxPoint corners[4];
        CalculateMDPosition(tooth, corners, true);
        if (VxAuxTexture* mark = MakeCard(bitmap, corners))
            m_moveMarks[tooth] = mark;
    }
}

void VxCacheStuff::RemoveToothMoveDiff() {
    DeleteAll(m_moveMarks);
}

// --- Facc curves ---------------------------------------------------------------------------

void VxCacheStuff::PrepareFacc() {
    RemoveFacc();
    if (m_model == nullptr)
        return;
    VxReferenceMgr* refs = VxReferenceMgr::GetInstance();
    for (VxTooth* tooth : m_model->GetTeeth()) {
        VxToothRef* ref = refs->Get(tooth->GetFDI());
        const VxBSplineCurve* curve = ref != nullptr ? ref->GetFacc().GetToothCurve() : nullptr;
        if (curve == nullptr)
            continue;
        auto* pipe = new VxAuxPipeLine();
        pipe->SetHitable(false);
        pipe->SetStyle(AuxPipeLineStyle_Thick);
        // A crown's curve is about a centimetre long: a ring every twentieth of it is smooth,
        // and a fifth of the triangles of the finer steps, drawn once a tooth a view.
        pipe->SetDensity(AuxPipeLineDensity_Coarse);
        pipe->SetColor(VxColor(255, 0, 0, 100));
        pipe->SetBSplineCurve(curve);
        m_faccCurves[tooth] = pipe;
    }
}

void VxCacheStuff::RemoveFacc() {
    DeleteAll(m_faccCurves);
}

// --- reference overlay ---------------------------------------------------------------------

void VxCacheStuff::PrepareToothRef() {
    RemoveToothRef();
    VxAuxRender* aux = AuxRender();
    if (aux == nullptr)
        return;
    const auto curve = [this](VxToothRef* ref, const VxBSplineCurve* c) {
        if (c == nullptr)
            return;
        auto* pipe = new VxAuxPipeLine();
        pipe->SetHitable(false);
        pipe->SetStyle(AuxPipeLineStyle_Thick);
        pipe->SetDensity(AuxPipeLineDensity_Coarse); // a crown's curve, as the Facc overlay
        pipe->SetColor(kRefCurveColor);
        pipe->SetBSplineCurve(c);
        m_toothRefObjects[pipe] = ref;
    };
    const auto point = [this](VxToothRef* ref, const VxVertex* v, const VxColor& colour) {
        if (v == nullptr)
            return;
        auto* p = new VxAuxPoint();
        p->SetHitable(false);
        p->SetStyle(AuxPointStyle_Medium);
        p->SetColor(colour);
        p->SetPos(v->GetPos());
        m_toothRefObjects[p] = ref;
    };
    for (const auto& entry : VxReferenceMgr::GetInstance()->GetAll()) {
        VxToothRef* ref = entry.second;
        if (ref == nullptr || ref->GetToothKind() == ToothKind_Missing)
            continue;
        curve(ref, ref->GetFacc().GetCurve());
        for (const VxVertex* v : ref->GetFacc().GetAllRefVtx())
            point(ref, v, kRefPointColor);
        const VxMidCurve& mid = ref->GetMidCurve();
        curve(ref, mid.GetCurve());
        for (const VxVertex* v : mid.GetAllRefVtx()) {
            const bool middle = mid.GetMidVtxId() != -1 && v->GetVtxId() == mid.GetMidVtxId();
            point(ref, v, middle ? kRefMidVertexColor : kRefPointColor);
        }
        for (const VxFeaturePoint& f : ref->GetFeaturePoint())
            point(ref, f.GetVtx(), kRefMidVertexColor);
    }
    for (const auto& entry : m_toothRefObjects)
        aux->AddAuxObject(entry.first);
    UpdateToothRef();
}

void VxCacheStuff::RemoveToothRef() {
    VxAuxRender* aux = AuxRender();
    if (aux == nullptr)
        return;
    for (const auto& entry : m_toothRefObjects)
        aux->RemoveAuxObject(entry.first, true);
    m_toothRefObjects.clear();
}

void VxCacheStuff::UpdateToothRef() {
    for (const auto& entry : m_toothRefObjects) {
        const VxToothRef* ref = entry.second;
        const VxJaw* jaw = ref->GetOwnJaw();
        bool visible = jaw != nullptr && !jaw->IsDeleted() && jaw->IsVisible();
        if (!visible && m_model != nullptr) {
            const VxTooth* tooth = m_model->GetTooth(ref->GetFDI());
            visible = tooth != nullptr && !tooth->IsDeleted() && tooth->IsVisible();
        }
        entry.first->SetVisible(visible ? 1 : 0);
    }
}

// --- key point -----------------------------------------------------------------------------

void VxCacheStuff::PrepareKeyPoint() {
    if (m_model == nullptr)
        return;
    const VxCepMeasure* cep = m_model->GetCepMeasure();
    if (cep == nullptr)
        return;
    CephalometricPt a, b, c;
    if (!cep->GetMeasurePt(MEASURE_POINT(22), a) || !cep->GetMeasurePt(MEASURE_POINT(23), b) ||
        !cep->GetMeasurePt(MEASURE_POINT(26), c))
        return;
    const VxPoint A = a.pos, B = b.pos, C = c.pos;
    VxJawRef* jawRef = VxReferenceMgr::GetInstance()->GetJawRef();
    if (jawRef == nullptr)
        return;
    std::vector<VxPoint> back;
    if (!jawRef->GetBackBoundaryPlanePts(back) || back.size() < 4)
        return;
    const VxPoint D = back[1];
    const VxPoint E = back[3];
    const VxLine L(A, (B - A).Normalized());
    const VxBeautyPlane* beauty = jawRef->GetBeautyPlane();
    if (beauty == nullptr)
        return;
    const VxPlane PB(beauty->GetPlaneFrame().GetOrigin(), beauty->GetPlaneFrame().DirZ());
    VxFrame middle;
    double length = 0.0;
    if (!jawRef->GetMiddlePlane(middle, length))
        return;
    const VxPlane PM(middle.GetOrigin(), middle.DirZ());
    const VxScheme* scheme = VxSchemeMgr::GetInstance()->GetCurScheme();
    if (scheme == nullptr || scheme->GetUpOccPlane() == nullptr)
        return;
    const VxFrame& occ = scheme->GetUpOccPlane()->GetPlaneFrame();
    const VxPlane PO(occ.GetOrigin(), occ.DirZ());
    VxLine L1(A, B), L2(A, B);
    if (!PM.Intersect(PO, L1) || !PM.Intersect(PB, L2))
        return;
    const VxVector d1 = L1.Direction();
    const VxVector d2 = L2.Direction();
    const double cosine = (d1 % d2) / (d1.Magnitude() * d2.Magnitude());
    const double sine = std::sqrt(std::max(0.0, 1.0 - cosine * cosine));
    const double toD = L.DistanceToPoint(D);
    // Parallel planes or a reference line through D leave nothing to scale by: no point.
    if (!(sine > 1e-12) || !(toD > 1e-12))
        return;
    const double h = L.DistanceToPoint(C) / sine;
    const double ratio = PB.DistanceToPoint(E, false) / toD;
    const double amount = h * ratio * 0.5;
    const VxPoint P = PB.ProjectPoint(E);
    const VxVector u = (P - E).Normalized();
    VxVector V = u % d1 >= 0.0 ? d1 : -d1;
    // Whether C and D lie on the same side of L, by their angles about z in [0, 2pi).
    const VxVector z(0.0, 0.0, 1.0);
    const auto fullTurn = [](double angle) { return angle < 0.0 ? angle + 2.0 * kPi : angle; };
    const double a1 = fullTurn(L.Direction().AngleWith((D - L.Point()).Normalized(), z));
    const double a2 = fullTurn(L.Direction().AngleWith((C - L.Point()).Normalized(), z));
    const bool sameSide = (a1 > kPi && a2 > kPi) || (a1 < kPi && a2 < kPi);
    if (!sameSide)
        V = -V;
    const VxPoint key = L1.ProjectPoint(E, nullptr) + V * amount;

    // The point is not removed first: a second show leaves the earlier one in the registry. One
    // that was already taken out is no longer reachable by anyone, so it is freed here.
    VxAuxRender* aux = AuxRender();
    if (m_keyPoint != nullptr && aux != nullptr && !aux->Holds(m_keyPoint))
        delete m_keyPoint;
    m_keyPoint = new VxAuxPoint();
    m_keyPoint->SetVisible(true);
    m_keyPoint->SetColor(VxColor(255, 0, 0, 100));
    m_keyPoint->SetPos(key);
    m_keyPoint->SetStyle(AuxPointStyle_Large);
    m_keyPoint->SetHitable(false);
    if (aux != nullptr)
        aux->AddAuxObject(m_keyPoint);
}

void VxCacheStuff::RemoveKeyPoint() {
    // Taken out of the registry but kept: only Clear frees it.
    if (m_keyPoint != nullptr && AuxRender() != nullptr)
        AuxRender()->RemoveAuxObject(m_keyPoint, false);
}

// --- FA points and see-centres -------------------------------------------------------------

int VxCacheStuff::GetFApntIndex(VxTooth* tooth, int which) {
    const auto it = m_anchorGrids.find(tooth);
    if (it == m_anchorGrids.end())
        return -1;
    return which != 0 ? it->second.GetSecondFAIndex() : it->second.GetFirstFAIndex();
}

VxPoint VxCacheStuff::GetFApnt(VxTooth* tooth, int which) {
    VxPoint result(0.0, 0.0, 0.0);
    if (m_anchorGrids.find(tooth) == m_anchorGrids.end())
        return result;
    std::vector<VxPoint> points;
    GetAttachGrids(tooth, points);
    const int index = GetFApntIndex(tooth, which);
    if (index >= 0 && index < int(points.size()))
        result = points[size_t(index)];
    return result;
}

VxPoint VxCacheStuff::GetFApntIndex(VxTooth* tooth, bool side, int& index) {
    VxPoint result(0.0, 0.0, 0.0);
    const auto it = m_anchorGrids.find(tooth);
    if (it == m_anchorGrids.end() || tooth == nullptr)
        return result;
    const auto& sides = it->second.GetSideMaps();
    const auto own = sides.find(tooth->GetFDI());
    if (own == sides.end())
        return result;
    const VxAttachAnchorGrid::SideEntry* kept = nullptr;
    for (const auto& entry : own->second) {
        if ((side && entry.first == 0) || (!side && entry.first == 1))
            continue;
        kept = &entry.second;
    }
    if (kept == nullptr)
        return result;
    const std::vector<VxPoint>& list = std::get<1>(*kept);
    const int fa = std::get<0>(*kept);
    if (list.empty())
        return result;
    index = fa;
    if (fa >= 0 && fa < int(list.size()))
        result = list[size_t(fa)];
    return result;
}

VxPoint VxCacheStuff::GetToothSeeCenter(VxTooth* tooth) {
    if (tooth == nullptr)
        return VxPoint();
    const VxPoint box = tooth->GetBBox().Center();
    if (GetFApntIndex(tooth, 0) == GetFApntIndex(tooth, 1))
        return box;
    const VxPoint p0 = GetFApnt(tooth, 0);
    const VxPoint p1 = GetFApnt(tooth, 1);
    if (p0 == p1)
        return box;
    return VxPoint((p0[0] + p1[0]) / 2.0, (p0[1] + p1[1]) / 2.0, (p0[2] + p1[2]) / 2.0);
}

void VxCacheStuff::GetSeeCenterPoint(VxTooth* tooth, VxPoint& point) {
    const auto it = m_anchorGrids.find(tooth);
    if (it == m_anchorGrids.end() || tooth == nullptr)
        return;
    int index[2] = {-1, -1};
    VxPoint kept[2];
    const auto& sides = it->second.GetSideMaps();
    const auto own = sides.find(tooth->GetFDI());
    if (own != sides.end()) {
        for (const auto& entry : own->second) {
            const int fa = std::get<0>(entry.second);
            const std::vector<VxPoint>& list = std::get<1>(entry.second);
            if (list.empty() || fa < 0 || fa >= int(list.size()))
                continue;
            const int slot = entry.first == 1 ? 0 : 1;
            kept[slot] = list[size_t(fa)];
            index[slot] = fa;
        }
    }
    if ((index[0] == 0 && index[1] == 0) || index[0] == -1 || index[1] == -1) {
        point = tooth->GetBBox().Center();
        return;
    }
    point = VxPoint((kept[0][0] + kept[1][0]) / 2.0, (kept[0][1] + kept[1][1]) / 2.0,
                    (kept[0][2] + kept[1][2]) / 2.0);
}
