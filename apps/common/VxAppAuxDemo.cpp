// VxAppAuxDemo: the aux sample on a patient.
#include "VxAppAuxDemo.h"

#include <VxCase.h>

#include <aux/VxAuxArrow.h>
#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxBox.h>
#include <aux/VxAuxCircle.h>
#include <aux/VxAuxCurve.h>
#include <aux/VxAuxFace.h>
#include <aux/VxAuxLine.h>
#include <aux/VxAuxPipeLine.h>
#include <aux/VxAuxPlane.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxPolyline.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxText.h>
#include <aux/VxAuxTorus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxBSplineCurve.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

// The tooth's placement at the current step (identity where it has none).
VxMatrix Placement(VxTooth* t) {
    const std::set<DrawInfo_s> infos = VxTransformMatrix::GetInstance()->GetDrawInfos(t);
    return infos.empty() ? VxMatrix::Identity() : infos.begin()->matrix;
}

VxPoint Centre(VxTooth* t) {
    return Placement(t).Transform(t->GetBBox().Center());
}

// The placed vertex farthest along `dir`: a point on the tooth's surface facing that way.
VxPoint Extreme(VxTooth* t, const VxVector& dir) {
    const VxMatrix m = Placement(t);
    VxPoint best = Centre(t);
    double bestDot = -1e300;
    for (const VxVertex& v : t->GetVertices()) {
        const VxPoint p = m.Transform(v.GetPos());
        const double d = VxVector(p) % dir;
        if (d > bestDot) {
            bestDot = d;
            best = p;
        }
    }
    return best;
}

// A square (or, crossing, a bow tie) of side 2 s about c in the plane of a and b.
std::vector<VxPoint> Outline(const VxPoint& c, const VxVector& a, const VxVector& b, double s,
                             bool crossing) {
    if (crossing) {
        return {c - a * s - b * s, c + a * s + b * s, c + a * s - b * s, c - a * s + b * s};
    }
    return {c - a * s - b * s, c + a * s - b * s, c + a * s + b * s, c - a * s + b * s};
}

} // namespace

int VxAppAddAuxDemo(VxCase& c, VxAuxRender* aux, VxPoint& focus, std::string& error) {
    VxModel& model = c.model;
    VxTooth* u11 = model.GetTooth(11);
    VxTooth* u21 = model.GetTooth(21);
    VxTooth* u12 = model.GetTooth(12);
    VxTooth* u22 = model.GetTooth(22);
    VxTooth* u13 = model.GetTooth(13);
    VxTooth* u23 = model.GetTooth(23);
    VxTooth* l31 = model.GetTooth(31);
    VxTooth* l41 = model.GetTooth(41);
    VxTooth* l33 = model.GetTooth(33);
    VxTooth* l43 = model.GetTooth(43);
    if (!aux || !u11 || !u21 || !u12 || !u22 || !u13 || !u23 || !l31 || !l41 || !l33 || !l43) {
        error = "the aux sample needs teeth 11, 12, 13, 21, 22, 23, 31, 33, 41 and 43";
        return 0;
    }
    // Frame of the patient from the teeth: forward (labial) from the arch's middle to the
    // incisors, up from the lower to the upper incisors, left-right across.
    std::vector<VxPoint> upperCentres;
    std::vector<VxPoint> lowerCentres;
    for (const auto& t : c.teeth) {
        (t->IsUp() ? upperCentres : lowerCentres).push_back(Centre(t.get()));
    }
    VxVector archMiddle(0, 0, 0);
    for (const VxPoint& p : upperCentres) {
        archMiddle += VxVector(p);
    }
    archMiddle /= std::max<std::size_t>(1, upperCentres.size());
    const VxPoint incisors = VxPoint::Lerp(Centre(u11), Centre(u21), 0.5);
    const VxPoint lowerIncisors = VxPoint::Lerp(Centre(l31), Centre(l41), 0.5);
    VxVector up = incisors - lowerIncisors;
    up.Normalize();
    VxVector forward = incisors - VxPoint(archMiddle);
    forward = forward - up * (forward % up);
    forward.Normalize();
    VxVector side = up * forward;
    side.Normalize();
    focus = VxPoint::Lerp(incisors, lowerIncisors, 0.5);
    // On a tooth's front, 3 mm from its incisal edge towards the root: the middle of the
    // crown (the mesh carries the root, so its centre lies under the gum).
    const auto front = [&](VxTooth* t) {
        const VxVector rootward = t->IsUp() ? up : up * -1.0;
        const VxPoint crown = Extreme(t, rootward * -1.0) + rootward * 3.0;
        const VxPoint e = Extreme(t, forward);
        return e + up * ((crown - e) % up);
    };

    int added = 0;
    const auto add = [&](VxAuxObject* o) {
        aux->AddAuxObject(o);
        ++added;
    };

    // A sphere half inside the front of 11, its buried half drawn dimmed.
    auto* sphere = new VxAuxPoint();
    sphere->SetStyle(AuxPointStyle_Huge);
    sphere->SetPos(Extreme(u11, forward) - up * 1.5);
    sphere->SetColor(VxColor(230, 20, 20));
    sphere->SetDrawHidden(true);
    add(sphere);

    // A dashed box around 21 that follows its placement.
    auto* box = new VxAuxBox();
    box->SetEntity(u21);
    add(box);

    // A single arrow out of 13 and a dual arrow spanning the lower canines in front.
    auto* arrow = new VxAuxArrow();
    const VxPoint a13 = front(u13) + forward * 1.5;
    VxVector outwards = a13 - incisors;
    outwards = outwards - forward * (outwards % forward);
    outwards.Normalize();
    arrow->SetPoint(a13, a13 + outwards * 7.0 + up * 2.0);
    arrow->SetColor(VxColor(255, 140, 0));
    arrow->SetBoldStyle(true);
    add(arrow);
    auto* dual = new VxAuxArrow();
    dual->SetPoint(front(l43) + forward * 4.0 - up * 2.5, front(l33) + forward * 4.0 - up * 2.5);
    dual->SetDualArrow(true);
    dual->SetBoldStyle(true);
    dual->SetColor(VxColor(40, 160, 255));
    add(dual);

    // Two outlines in front of 12 and 22: the second crosses itself and turns red.
    auto* poly = new VxAuxPolyline();
    std::vector<VxPoint> pts = Outline(Extreme(u12, forward) + forward * 1.5, side, up, 2.0, false);
    const std::vector<VxPoint> second =
        Outline(Extreme(u22, forward) + forward * 1.5, side, up, 2.0, true);
    pts.insert(pts.end(), second.begin(), second.end());
    poly->SetPoints(pts);
    poly->SetPointsType({VxPointType_Marked, VxPointType_Plain, VxPointType_Green,
                         VxPointType_Plain, VxPointType_Marked, VxPointType_Plain, VxPointType_Cyan,
                         VxPointType_Plain});
    poly->SetType(AuxPolylineStyle_TwoHalves);
    poly->SetColor(VxColor(255, 255, 255));
    add(poly);

    // An arch curve along the upper teeth's fronts and a yellow pipe along the lower ones.
    std::vector<VxPoint> upperArch;
    std::vector<VxPoint> lowerArch;
    for (int fdi : {13, 12, 11, 21, 22, 23}) {
        upperArch.push_back(front(model.GetTooth(fdi)) + forward * 0.8);
    }
    for (int fdi : {43, 42, 41, 31, 32, 33}) {
        if (VxTooth* t = model.GetTooth(fdi)) {
            lowerArch.push_back(front(t) + forward * 0.8);
        }
    }
    std::unique_ptr<VxBSplineCurve> upperCurve(
        VxBSplineCurve::CreateInterpolateCurve(upperArch, false));
    std::unique_ptr<VxBSplineCurve> lowerCurve(
        VxBSplineCurve::CreateInterpolateCurve(lowerArch, false));
    if (upperCurve) {
        auto* curve = new VxAuxCurve();
        curve->SetCurve(*upperCurve);
        curve->SetColor(VxColor(200, 0, 200));
        add(curve);
    }
    if (lowerCurve) {
        auto* pipe = new VxAuxPipeLine();
        pipe->SetStyle(AuxPipeLineStyle_Thick);
        pipe->SetBSplineCurve(lowerCurve.get());
        pipe->SetColor(VxColor(255, 230, 0));
        pipe->SetDrawHidden(true);
        add(pipe);
    }

    // A translucent plane in front of the right lower teeth, and a ruled grid beside the right
    // upper canine.
    auto* translucent = new VxAuxPlane();
    translucent->Set(front(l43) + forward * 2.0 - side * 14.0 - up * 6.0, side * 10.0, up * 7.0);
    translucent->SetColor(VxColor(80, 200, 255));
    add(translucent);
    auto* grid = new VxAuxPlane();
    grid->SetPlaneStyle(AuxPlaneStyle_Grid);
    grid->Set(front(u13) + forward * 2.0 - side * 18.0 - up * 2.0, side * 11.0, up * 11.0);
    add(grid);

    // A ring with its blue disc around 23, and a torus arc around 33.
    auto* circle = new VxAuxCircle();
    circle->Set(Extreme(u23, forward) + forward * 1.0, forward, 4.5);
    circle->SetColor(VxColor(255, 255, 0));
    circle->SetType(AuxCircleType_Both);
    add(circle);
    auto* torus = new VxAuxTorus();
    torus->SetGeometry(4.2, 4.0, front(l33) + forward * 3.0 + up * 1.0, up, side);
    torus->SetColor(VxColor(0, 200, 120));
    torus->SetBoldStyle(true);
    add(torus);

    // The labial faces of 41, coloured by how far forward each vertex lies.
    auto* face = new VxAuxFace(l41);
    std::vector<int> labial;
    const std::vector<VxFace>& faces = l41->GetFaces();
    const std::vector<VxVertex>& vertices = l41->GetVertices();
    const VxMatrix m41 = Placement(l41);
    const auto depthOf = [&](int id) {
        return VxVector(vertices[static_cast<std::size_t>(id)].GetPos()) % forward;
    };
    std::vector<int> ids;
    for (int f = 0; f < static_cast<int>(faces.size()); ++f) {
        int v[3];
        faces[static_cast<std::size_t>(f)].Get3VtxId(v[0], v[1], v[2]);
        const VxPoint& p0 = vertices[static_cast<std::size_t>(v[0])].GetPos();
        const VxPoint& p1 = vertices[static_cast<std::size_t>(v[1])].GetPos();
        const VxPoint& p2 = vertices[static_cast<std::size_t>(v[2])].GetPos();
        VxVector n = m41.Transform((p1 - p0) * (p2 - p0));
        if (!n.Normalize() || n % forward < 0.3) {
            continue;
        }
        labial.push_back(f);
        ids.insert(ids.end(), v, v + 3);
    }
    // Blue at the deepest labial vertex, red at the most prominent one.
    double lo = 1e300;
    double hi = -1e300;
    for (int id : ids) {
        lo = std::min(lo, depthOf(id));
        hi = std::max(hi, depthOf(id));
    }
    for (int id : ids) {
        const double t = hi > lo ? (depthOf(id) - lo) / (hi - lo) : 0.5;
        const int r = static_cast<int>(255 * t);
        face->AddColorVtx(id, VxColor(r, 60, 255 - r));
    }
    face->SetFaces(labial);
    add(face);
    // Labels: the arrow's tooth number in outline glyphs at its tip, facing the viewer however
    // the jaw is turned, and a caption in window pixels from the top-left corner.
    auto* label = new VxAuxText();
    label->SetTextType(Text_ModelNoDepth);
    label->SetColor(VxColor(255, 140, 0));
    label->SetTextPos(a13 + outwards * 8.0 + up * 2.5);
    label->SetText(CString(L"13"));
    add(label);
    auto* caption = new VxAuxText();
    caption->SetTextType(Text_OnScreen);
    caption->SetSize(18);
    caption->SetColor(VxColor(255, 255, 255));
    caption->SetTextPos(CPoint(12, 26));
    caption->SetText(CString(L"aux sample"));
    add(caption);
    // Pin labels on the upper centrals: a leader from the crown to a plate standing on its end.
    for (VxTooth* t : {u11, u21}) {
        auto* pin = new VxAuxBillBoard3d();
        pin->SetTextType(Text_ModelDepth);
        pin->SetText(CString(std::to_wstring(t->GetFDI()).c_str()));
        const VxPoint base = front(t) + forward * 1.0;
        // The two plates lean apart so that neither covers the other.
        const double lean = (Centre(t) - incisors) % side > 0.0 ? 4.0 : -4.0;
        pin->SetLine(base, base + up * 9.0 + forward * 2.0 + side * lean);
        pin->SetComponentsColor(VxColor(40, 160, 255), VxColor(40, 160, 255), VxColor(0, 0, 0));
        add(pin);
    }
    // And one under the lower central 31: a falling leader sets its plate to the side, a little
    // lower, with the tooth's name as a description under the number.
    {
        auto* pin = new VxAuxBillBoard3d();
        pin->SetTextType(Text_ModelDepth);
        pin->SetText(CString(L"31\nLL1"));
        pin->SetShowDescript(true);
        const VxPoint base = front(l31) + forward * 1.0;
        const double lean = (Centre(l31) - lowerIncisors) % side > 0.0 ? 3.0 : -3.0;
        pin->SetLine(base, base - up * 11.0 + forward * 8.0 + side * lean);
        pin->SetComponentsColor(VxColor(255, 140, 0), VxColor(255, 140, 0), VxColor(0, 0, 0));
        add(pin);
    }
    return added;
}

std::string VxAppDescribeAux(const VxAuxObject* o) {
    if (o == nullptr) {
        return "nothing";
    }
    if (o->IsKindOf(ObjectType_AuxPolyline)) {
        const int i = static_cast<const VxAuxPolyline*>(o)->GetHitPointIdx();
        return "polyline point " + std::to_string(i);
    }
    const struct {
        ObjectType_e kind;
        const char* name;
    } names[] = {{ObjectType_AuxPoint, "sphere"},
                 {ObjectType_AuxArrow, "arrow"},
                 {ObjectType_AuxLine, "line"},
                 {ObjectType_AuxPipeLine, "pipe"},
                 {ObjectType_AuxBox, "box"},
                 {ObjectType_AuxTorus, "torus arc"},
                 {ObjectType_AuxCircle, "circle"},
                 {ObjectType_AuxPlane, "plane"},
                 {ObjectType_AuxFace, "face patch"},
                 {ObjectType_AuxMesh, "mesh"},
                 {ObjectType_AuxBillBoard3d, "pin label"},
                 {ObjectType_AuxText, "label"}};
    for (const auto& n : names) {
        if (o->IsKindOf(n.kind)) {
            return n.name;
        }
    }
    return "aux object";
}
