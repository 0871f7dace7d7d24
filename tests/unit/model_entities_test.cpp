// Unit tests of the model's entity classes and value types: type tags and IsKindOf for every
// class, flags surviving a copy, the tooth's frame under transforms, the model's look-ups (order,
// sides, comparison gums, parent meshes, bounding box), tooth and gum persistence, attachment
// hits through their parts, colour clamping, FDI conversions against hand-written tables, the
// DrawInfo_s order checked as a strict weak order over all triples, and the per-step placements of
// VxTransformMatrix.
#include <interfaces/DrawInfo_s.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxAttachmentPart.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxFDI.h>
#include <interfaces/VxFStream.h>
#include <interfaces/VxFilledWedgeTriTooth.h>
#include <interfaces/VxFilledWedgeTwoTooth.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxSkull.h>
#include <interfaces/VxStdAttach.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <sstream>
#include <vector>

namespace {

const double kPi = std::acos(-1.0);

void AddTriangle(VxMesh& m, double x) {
    const int a = m.AddVertex(VxPoint(x, 0, 0));
    const int b = m.AddVertex(VxPoint(x + 1, 0, 0));
    const int c = m.AddVertex(VxPoint(x, 1, 0));
    m.AddFace(a, b, c);
    m.Finish();
}

const ObjectType_e kModelTypes[] = {ObjectType_Object,      ObjectType_Entity,     ObjectType_Mesh,
                                    ObjectType_Vertex,      ObjectType_Edge,       ObjectType_Face,
                                    ObjectType_Jaw,         ObjectType_Tooth,      ObjectType_Gum,
                                    ObjectType_Reserved400, ObjectType_Attachment, ObjectType_Skull,
                                    ObjectType_AuxObject};

void ExpectKinds(const VxObject& o, ObjectType_e exact, std::set<ObjectType_e> kinds) {
    EXPECT_EQ(o.GetObjectType(), exact);
    for (ObjectType_e t : kModelTypes) {
        EXPECT_EQ(o.IsKindOf(t), kinds.count(t) == 1)
            << "object of type 0x" << std::hex << exact << " asked 0x" << t;
    }
    EXPECT_FALSE(o.IsKindOf(ObjectType_None));
}

} // namespace

TEST(VxObjectTypes, EveryClassAnswersItsTypeAndItsBases) {
    const std::set<ObjectType_e> mesh = {ObjectType_Object, ObjectType_Entity, ObjectType_Mesh};
    auto with = [&](ObjectType_e t) {
        auto s = mesh;
        s.insert(t);
        return s;
    };
    ExpectKinds(VxObject(), ObjectType_Object, {ObjectType_Object});
    ExpectKinds(VxEntity(), ObjectType_Entity, {ObjectType_Object, ObjectType_Entity});
    ExpectKinds(VxVertex(), ObjectType_Vertex, {ObjectType_Object, ObjectType_Vertex});
    ExpectKinds(VxEdge(), ObjectType_Edge, {ObjectType_Object, ObjectType_Edge});
    ExpectKinds(VxFace(), ObjectType_Face, {ObjectType_Object, ObjectType_Face});
    ExpectKinds(VxMesh(), ObjectType_Mesh, mesh);
    ExpectKinds(VxJaw(), ObjectType_Jaw, with(ObjectType_Jaw));
    ExpectKinds(VxTooth(11), ObjectType_Tooth, with(ObjectType_Tooth));
    ExpectKinds(VxGum(), ObjectType_Gum, with(ObjectType_Gum));
    ExpectKinds(VxSkull(), ObjectType_Skull, with(ObjectType_Skull));
    ExpectKinds(VxAttachment(), ObjectType_Attachment, with(ObjectType_Attachment));
    // Parts, catalogue shapes and wedges are plain meshes to the drawers and to selection.
    ExpectKinds(VxAttachmentPart(), ObjectType_Mesh, mesh);
    ExpectKinds(VxStdAttach(), ObjectType_Mesh, mesh);
    ExpectKinds(VxFilledWedgeTwoTooth(), ObjectType_Mesh, mesh);
    ExpectKinds(VxFilledWedgeTriTooth(), ObjectType_Mesh, mesh);
}

TEST(VxObjectFlags, CopyAndIntFlags) {
    VxTooth t(21);
    t.SetSelected(5); // any non-zero int is true
    t.SetShelter(1);
    t.SetVisible(0);
    VxTooth copy(t);
    EXPECT_TRUE(copy.IsSelected());
    EXPECT_TRUE(copy.IsSheltered());
    EXPECT_FALSE(copy.IsVisible());
}

TEST(VxToothTest, SideFromQuadrantAndFrameFollowsTransform) {
    for (int q = 0; q <= 8; ++q) {
        EXPECT_EQ(VxTooth(q * 10 + 1).IsUp(), q == 1 || q == 2 || q == 5 || q == 6) << q;
    }
    VxTooth t(36);
    AddTriangle(t, 0.0);
    t.SetFrame(VxFrame(VxPoint(1, 2, 3), VxVector(1, 0, 0), VxVector(0, 1, 0)));
    const VxMatrix m = VxMatrix::Translation(VxVector(5, 0, 0)) *
                       VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), kPi / 2);
    t.Transform(m);
    EXPECT_NEAR(t.GetFrame().GetOrigin().DistanceToPoint(VxPoint(3, 1, 3)), 0.0, 1e-12);
    EXPECT_NEAR((t.GetFrame().DirX() - VxVector(0, 1, 0)).Magnitude(), 0.0, 1e-12);
    EXPECT_NEAR(t.GetVertex(1)->GetPos().DistanceToPoint(VxPoint(5, 1, 0)), 0.0, 1e-12);
    // And back: the operation the tooth shading build relies on.
    VxMatrix inv = m;
    ASSERT_TRUE(inv.Inverse());
    t.Transform(inv);
    EXPECT_NEAR(t.GetFrame().GetOrigin().DistanceToPoint(VxPoint(1, 2, 3)), 0.0, 1e-12);
}

TEST(VxToothTest, PersistenceRoundTrip) {
    VxTooth t(47);
    AddTriangle(t, 2.0);
    t.SetToothKind(ToothKind_Implant);
    t.SetLockShown(true);
    t.SetFrame(VxFrame(VxPoint(0.1, 0.2, 0.3), VxVector(0, 0, 1), VxVector(1, 0, 0)));
    std::ostringstream os;
    t.Write(os, true, VxObject::kFormatVersion);
    VxTooth back;
    VxFStream in(os.str());
    ASSERT_TRUE(back.Read(in, true, VxObject::kFormatVersion));
    EXPECT_EQ(back.GetFDI(), 47);
    EXPECT_EQ(back.GetToothKind(), ToothKind_Implant);
    EXPECT_TRUE(back.IsLockShown());
    EXPECT_EQ(back.GetFaceCount(), 1);
    ASSERT_TRUE(back.GetFrame().IsValid());
    EXPECT_EQ(back.GetFrame().GetOrigin(), VxPoint(0.1, 0.2, 0.3));
    EXPECT_NEAR((back.GetFrame().DirZ() - t.GetFrame().DirZ()).Magnitude(), 0.0, 1e-15);
    // A tooth record is not a gum record.
    VxGum gum;
    VxFStream again(os.str());
    EXPECT_FALSE(gum.Read(again, true, VxObject::kFormatVersion));
}

TEST(VxGumTest, ListsAndPersistence) {
    VxGum g(false);
    AddTriangle(g, 0.0);
    EXPECT_TRUE(g.SetBands(0, {0, 76}, {76, 152}));
    EXPECT_TRUE(g.SetBands(3, {7}, {9}));
    EXPECT_FALSE(g.SetBands(1, {1, 2}, {3}));
    EXPECT_FALSE(g.SetBands(4, {}, {}));
    EXPECT_FALSE(g.SetBands(-1, {}, {}));
    EXPECT_TRUE(g.GetBandStartFaces(4).empty());
    EXPECT_TRUE(g.GetBandEndFaces(-1).empty());
    EXPECT_TRUE(g.SetSegments({0, 40, 80}, {39, 79, 119}));
    EXPECT_FALSE(g.SetSegments({0}, {}));
    g.SetCmp(true);

    std::ostringstream os;
    g.Write(os, true, VxObject::kFormatVersion);
    VxGum back;
    VxFStream in(os.str());
    ASSERT_TRUE(back.Read(in, true, VxObject::kFormatVersion));
    EXPECT_FALSE(back.IsUp());
    EXPECT_TRUE(back.IsCmp());
    EXPECT_EQ(back.GetBandStartFaces(0), g.GetBandStartFaces(0));
    EXPECT_EQ(back.GetBandEndFaces(3), (std::vector<int>{9}));
    EXPECT_EQ(back.GetSegmentEndFaces(), (std::vector<int>{39, 79, 119}));
    // A count that promises more than the text holds fails quietly.
    std::string text = os.str();
    text = text.substr(0, text.rfind('\n', text.size() - 2) + 1) + "999999999 1 2\n";
    VxGum broken;
    VxFStream bad(text);
    EXPECT_FALSE(broken.Read(bad, true, VxObject::kFormatVersion));
}

TEST(VxModelTest, LookupsKeepOrderAndNeverOwn) {
    VxJaw upJaw(true), lowJaw(false);
    VxTooth t11(11), t31(31), t21(21);
    VxGum upCmp(true), up(true), low(false);
    upCmp.SetCmp(true);
    VxSkull skull;
    VxMesh plain;
    VxStdAttach shape(L"SK-1", VxColor(1, 2, 3));
    VxAttachment att(&shape, &t11);
    AddTriangle(upJaw, 0);
    AddTriangle(t11, 10);
    AddTriangle(t31, -20);
    AddTriangle(plain, 5);

    VxModel model;
    std::vector<VxEntity*> order = {&lowJaw, &t11, &upCmp, &t31,   &upJaw, &up,
                                    &low,    &t21, &skull, &plain, &att};
    for (VxEntity* e : order) {
        EXPECT_TRUE(model.AddEntity(e));
    }
    EXPECT_FALSE(model.AddEntity(&t11));
    EXPECT_FALSE(model.AddEntity(nullptr));
    std::vector<VxEntity*> got = {&plain};
    model.GetEntities(got);
    EXPECT_EQ(got, order);

    EXPECT_EQ(model.GetTeeth(), (std::vector<VxTooth*>{&t11, &t31, &t21}));
    EXPECT_EQ(model.GetJaws(), (std::vector<VxJaw*>{&lowJaw, &upJaw}));
    EXPECT_EQ(model.GetJaw(true), &upJaw);
    EXPECT_EQ(model.GetJaw(false), &lowJaw);
    EXPECT_EQ(model.GetGum(true), &up); // the comparison gum comes second
    EXPECT_EQ(model.GetGum(false), &low);
    EXPECT_EQ(model.GetTooth(31), &t31);
    EXPECT_EQ(model.GetTooth(48), nullptr);
    EXPECT_EQ(model.GetSkull(), &skull);

    // The box spans every entity that is not deleted.
    VxBBox box = model.GetBBox();
    EXPECT_DOUBLE_EQ(box.GetMinPnt()[0], -20.0);
    EXPECT_DOUBLE_EQ(box.GetMaxPnt()[0], 11.0);
    t31.SetDeleted(1);
    EXPECT_DOUBLE_EQ(model.GetBBox().GetMinPnt()[0], 0.0);

    EXPECT_EQ(model.GetParentMesh(t11.GetVertex(2)), &t11);
    EXPECT_EQ(model.GetParentMesh(upJaw.GetVertex(0)), &upJaw);
    EXPECT_EQ(model.GetParentMesh(t31.GetEdge(1)), &t31);
    VxVertex loose;
    VxMesh outside;
    AddTriangle(outside, 0);
    EXPECT_EQ(model.GetParentMesh(&loose), nullptr);
    EXPECT_EQ(model.GetParentMesh(outside.GetVertex(0)), nullptr);
    EXPECT_EQ(model.GetParentMesh(outside.GetEdge(0)), nullptr);
    EXPECT_EQ(model.GetParentMesh(static_cast<const VxVertex*>(nullptr)), nullptr);

    EXPECT_TRUE(model.RemoveEntity(&upJaw));
    EXPECT_FALSE(model.RemoveEntity(&upJaw));
    EXPECT_EQ(model.GetJaw(true), nullptr);
    model.Clear();
    model.GetEntities(got);
    EXPECT_TRUE(got.empty());
    // Everything above lives on the stack: a model that freed anything would crash here.
}

TEST(VxAttachmentTest, HitWhereItsPartsDrawTheShape) {
    VxStdAttach shape(L"A", VxColor());
    AddTriangle(shape, 0.0); // (0,0,0) (1,0,0) (0,1,0)
    VxAttachment a(&shape, nullptr);
    const VxMatrix place = VxMatrix::Translation(VxVector(0, 0, 5));
    // A line down through (0.2, 0.2) meets the shape where the part puts it, at x + 10.
    const VxLine down(VxPoint(10.2, 0.2, 9), VxVector(0, 0, -1));
    EXPECT_FALSE(a.IsHitByRay(down, place)); // no parts: nothing drawn
    a.AttachParts().push_back(
        std::make_shared<VxAttachmentPart>(VxMatrix::Translation(VxVector(10, 0, 0))));
    EXPECT_TRUE(a.IsHitByRay(down, place));
    EXPECT_FALSE(a.IsHitByRay(VxLine(VxPoint(0.2, 0.2, 9), VxVector(0, 0, -1)), place));
    const VxBBox box = a.GetBBox();
    EXPECT_DOUBLE_EQ(box.GetMinPnt()[0], 10.0);
    EXPECT_DOUBLE_EQ(box.GetMaxPnt()[0], 11.0);
    a.SetStdAttachment(nullptr);
    EXPECT_FALSE(a.IsHitByRay(down, place));
    EXPECT_TRUE(a.GetBBox().IsEmpty());
}

TEST(VxColorTest, ClampsAndFixedColoursAreValid) {
    const VxColor c(-5, 300, 128, 999);
    EXPECT_EQ((std::vector<int>{c.GetR(), c.GetG(), c.GetB(), c.GetA()}),
              (std::vector<int>{0, 255, 128, 255}));
    const VxColor fixed[] = {VxColor::GetAuxSelectColor(), VxColor::GetHighlightColor(),
                             VxColor::GetLimitedColor(), VxColor::GetWedgeColor()};
    for (size_t i = 0; i < 4; ++i) {
        for (size_t j = i + 1; j < 4; ++j) {
            EXPECT_NE(fixed[i], fixed[j]);
        }
    }
}

TEST(VxFDITest, IndicesAndNotationsOfAllPermanentTeeth) {
    // Universal numbers in arch order, independent of the formulas: 1 at 18 round to 32 at 48.
    const int archOrder[32] = {18, 17, 16, 15, 14, 13, 12, 11, 21, 22, 23, 24, 25, 26, 27, 28,
                               38, 37, 36, 35, 34, 33, 32, 31, 41, 42, 43, 44, 45, 46, 47, 48};
    std::set<int> ids;
    for (int i = 0; i < 32; ++i) {
        const VxFDI f(archOrder[i]);
        ASSERT_TRUE(f.IsValid());
        EXPECT_EQ(f.GetCmpIndex(), i);
        EXPECT_EQ(f.toString(FDIShowType_Universal), CString(std::to_wstring(i + 1)));
        EXPECT_EQ(f.toString(FDIShowType_FDI), CString(std::to_wstring(archOrder[i])));
        EXPECT_EQ(f.toString(0), f.toString(FDIShowType_FDI));
        ids.insert(f.GetID());
        EXPECT_EQ(VxFDI::FromID(f.GetID()), f);
    }
    EXPECT_EQ(ids.size(), 32u);
    EXPECT_EQ(*ids.rbegin(), 31);
    EXPECT_EQ(VxFDI(11).GetID(), 0);
    EXPECT_EQ(VxFDI(21).GetID(), 8);
    EXPECT_EQ(VxFDI(48).GetID(), 31);
    const std::pair<int, const wchar_t*> palmer[] = {{11, L"UR1"}, {28, L"UL8"}, {33, L"LL3"},
                                                     {46, L"LR6"}, {51, L"URA"}, {75, L"LLE"}};
    for (const auto& [fdi, text] : palmer) {
        EXPECT_EQ(VxFDI(fdi).toString(FDIShowType_Palmer), CString(text)) << fdi;
    }
}

TEST(VxFDITest, DeciduousAndInvalidNumbers) {
    const int arch[20] = {55, 54, 53, 52, 51, 61, 62, 63, 64, 65,
                          75, 74, 73, 72, 71, 81, 82, 83, 84, 85};
    for (int i = 0; i < 20; ++i) {
        const VxFDI f(arch[i]);
        ASSERT_TRUE(f.IsDeciduous());
        EXPECT_EQ(f.toString(FDIShowType_Universal), CString(std::wstring(1, L'A' + i)));
        // Same place as the permanent successor.
        EXPECT_EQ(f.GetID(), VxFDI(arch[i] - 40).GetID());
        EXPECT_EQ(f.IsUpper(), VxFDI(arch[i] - 40).IsUpper());
    }
    for (int bad : {0, 10, 19, 9, 56, 89, 90, -11, 100}) {
        const VxFDI f(bad);
        EXPECT_FALSE(f.IsValid()) << bad;
        EXPECT_EQ(f.GetID(), -1);
        EXPECT_EQ(f.GetCmpIndex(), -1);
        EXPECT_TRUE(f.toString(FDIShowType_FDI).IsEmpty());
    }
    EXPECT_TRUE(VxFDI(11).toString(7).IsEmpty());
    EXPECT_FALSE(VxFDI::FromID(32).IsValid());
    EXPECT_FALSE(VxFDI::FromID(-1).IsValid());
}

TEST(DrawInfoOrder, IsAStrictWeakOrder) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<DrawInfo_s> v;
    auto add = [&](bool limited, double a, double b) {
        VxMatrix m = VxMatrix::Identity(4);
        m[0][3] = a;
        m[2][1] = b;
        v.push_back(DrawInfo_s(limited, m));
    };
    for (bool limited : {false, true}) {
        add(limited, 0.0, 0.0);
        add(limited, -0.0, 0.0); // equal to the one above
        add(limited, 1.0, -1.0);
        add(limited, 1.0, 2.0);
        add(limited, nan, 0.0);
        add(limited, nan, 1.0);
        add(limited, -1e300, nan);
    }
    v.push_back(DrawInfo_s(false, VxMatrix(3, 3)));
    v.push_back(DrawInfo_s());
    const std::less<DrawInfo_s> less;
    auto equiv = [&](const DrawInfo_s& a, const DrawInfo_s& b) {
        return !less(a, b) && !less(b, a);
    };
    for (const auto& a : v) {
        EXPECT_FALSE(less(a, a));
        for (const auto& b : v) {
            if (less(a, b)) {
                EXPECT_FALSE(less(b, a));
            }
            for (const auto& c : v) {
                if (less(a, b) && less(b, c)) {
                    EXPECT_TRUE(less(a, c));
                }
                if (equiv(a, b) && equiv(b, c)) {
                    EXPECT_TRUE(equiv(a, c));
                }
            }
        }
    }
    // Every unlimited placement comes before every limited one, and -0 equals 0.
    std::set<DrawInfo_s> set(v.begin(), v.end());
    bool seenLimited = false;
    for (const auto& d : set) {
        EXPECT_FALSE(seenLimited && !d.limited);
        seenLimited = seenLimited || d.limited;
    }
    EXPECT_EQ(set.size(), v.size() - 3); // -0/0 twice, and the default equals the identity
}

TEST(VxTransformMatrixTest, PlacementsPerEntityAndStep) {
    VxTransformMatrix* tm = VxTransformMatrix::GetInstance();
    tm->Clear();
    VxTooth a(11), b(12);
    std::set<DrawInfo_s> step0 = {DrawInfo_s(false, VxMatrix::Identity(4))};
    std::set<DrawInfo_s> step2 = {DrawInfo_s(false, VxMatrix::Translation(VxVector(1, 0, 0))),
                                  DrawInfo_s(true, VxMatrix::Translation(VxVector(2, 0, 0)))};
    tm->SetDrawInfos(&a, 0, step0);
    tm->SetDrawInfos(&a, 2, step2);
    EXPECT_EQ(tm->GetDrawInfos(&a).size(), 1u);
    EXPECT_TRUE(tm->GetDrawInfos(nullptr).empty());
    tm->SetCurrentStep(2);
    const auto got = tm->GetDrawInfos(&a);
    ASSERT_EQ(got.size(), 2u);
    EXPECT_FALSE(got.begin()->limited);
    EXPECT_DOUBLE_EQ(got.begin()->matrix[0][3], 1.0);
    EXPECT_TRUE(got.rbegin()->limited);
    tm->SetCurrentStep(1);
    EXPECT_TRUE(tm->GetDrawInfos(&a).empty()); // a step without placements: drawn where it is
    EXPECT_EQ(tm->GetDrawInfos(&a, 0).size(), 1u);
    tm->RemoveEntity(&a);
    EXPECT_TRUE(tm->GetDrawInfos(&a, 2).empty());
    tm->SetDrawInfos(&b, 1, step0);
    tm->Clear();
    EXPECT_EQ(tm->GetCurrentStep(), 0);
    EXPECT_TRUE(tm->GetDrawInfos(&b, 1).empty());
}
