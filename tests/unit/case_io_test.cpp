// Case files: a rich hand-built case and (when it is built) the synthetic patient survive a write
// and a read field by field; the hand-made tiny case reads as its manifest says; every kind of
// bad input gives one message naming the file and the field and leaves the target as it was;
// STL, PLY and OBJ give the same mesh with the same numbering.
#include <VxCase.h>
#include <VxCaseIO.h>
#include <VxMeshFile.h>
#include <VxTestPaths.h>

#include <interfaces/CImage.h>
#include <interfaces/VxFilledWedgeTriTooth.h>
#include <interfaces/VxFilledWedgeTwoTooth.h>
#include <interfaces/VxTransformMatrix.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iomanip>
#include <map>
#include <memory>
#include <sstream>

#if __has_include("VxSyntheticPatient.h")
#include "VxSyntheticPatient.h"
#define VX_HAVE_SYNTHETIC 1
#endif

namespace fs = std::filesystem;
using json = nlohmann::json;

namespace {

// ---------------------------------------------------------------------------------------------
// Field-by-field comparison. Objects of the two cases are paired by their place in the case's
// lists; pointers between objects must then point at paired objects.
// ---------------------------------------------------------------------------------------------

// True when both are present; a failure when only one is.
template <class T> bool Both(const T* a, const T* b, const std::string& what) {
    EXPECT_EQ(a == nullptr, b == nullptr) << what;
    return a != nullptr && b != nullptr;
}

class CaseComparer {
public:
    CaseComparer(const VxCase& a, const VxCase& b) : m_a(a), m_b(b) {}

    void Run() {
        ASSERT_EQ(m_a.jaws.size(), m_b.jaws.size());
        ASSERT_EQ(m_a.teeth.size(), m_b.teeth.size());
        ASSERT_EQ(m_a.backupRoots.size(), m_b.backupRoots.size());
        ASSERT_EQ(m_a.gums.size(), m_b.gums.size());
        ASSERT_EQ(m_a.skull != nullptr, m_b.skull != nullptr);
        ASSERT_EQ(m_a.stdAttachments.size(), m_b.stdAttachments.size());
        ASSERT_EQ(m_a.attachments.size(), m_b.attachments.size());
        ASSERT_EQ(m_a.wedges.size(), m_b.wedges.size());
        Pair();
        Entities();
        Plan();
        Scheme();
        Refs();
        Records();
    }

private:
    void PairMesh(const VxMesh* a, const VxMesh* b) {
        ASSERT_EQ(a == nullptr, b == nullptr);
        if (a != nullptr) {
            m_pair[a] = b;
        }
    }

    void Pair() {
        const auto all = [this](const auto& la, const auto& lb) {
            for (std::size_t i = 0; i < la.size(); ++i) {
                PairMesh(la[i].get(), lb[i].get());
            }
        };
        all(m_a.jaws, m_b.jaws);
        all(m_a.teeth, m_b.teeth);
        all(m_a.gums, m_b.gums);
        all(m_a.stdAttachments, m_b.stdAttachments);
        all(m_a.attachments, m_b.attachments);
        all(m_a.wedges, m_b.wedges);
        PairMesh(m_a.skull.get(), m_b.skull.get());
        for (std::size_t i = 0; i < m_a.teeth.size(); ++i) {
            PairMesh(m_a.teeth[i]->GetBackupRoot(), m_b.teeth[i]->GetBackupRoot());
        }
        for (std::size_t i = 0; i < m_a.attachments.size(); ++i) {
            const auto& pa = m_a.attachments[i]->AttachParts();
            const auto& pb = m_b.attachments[i]->AttachParts();
            ASSERT_EQ(pa.size(), pb.size());
            all(pa, pb);
        }
    }

    // b's counterpart of a's pointer (null stays null; an unknown pointer fails).
    void ExpectPaired(const VxMesh* a, const VxMesh* b, const std::string& what) {
        if (a == nullptr) {
            EXPECT_EQ(b, nullptr) << what;
            return;
        }
        const auto it = m_pair.find(a);
        ASSERT_NE(it, m_pair.end()) << what << ": points outside the case";
        EXPECT_EQ(it->second, b) << what;
    }

    // Axes are rebuilt from the stored X and Y on reading (Gram-Schmidt), which may move the
    // last bit; origins are stored as they are.
    static void ExpectFrame(const VxFrame& a, const VxFrame& b, const std::string& what) {
        ASSERT_EQ(a.IsValid(), b.IsValid()) << what;
        EXPECT_EQ(a.GetOrigin(), b.GetOrigin()) << what + " origin";
        for (int k = 0; k < 3 && a.IsValid(); ++k) {
            EXPECT_NEAR(a.DirX()[k], b.DirX()[k], 1e-15) << what;
            EXPECT_NEAR(a.DirY()[k], b.DirY()[k], 1e-15) << what;
            EXPECT_NEAR(a.DirZ()[k], b.DirZ()[k], 1e-15) << what;
        }
    }

    static void ExpectCurve(const VxBSplineCurve* a, const VxBSplineCurve* b,
                            const std::string& what) {
        if (Both(a, b, what)) {
            EXPECT_EQ(a->Degree(), b->Degree()) << what;
            EXPECT_EQ(a->IsClosed(), b->IsClosed()) << what;
            EXPECT_EQ(a->CtrlPoints(), b->CtrlPoints()) << what + " ctrl";
            EXPECT_EQ(a->KnotVec().GetKnots(), b->KnotVec().GetKnots()) << what;
        }
    }

    static void ExpectMesh(const VxMesh& a, const VxMesh& b, const std::string& what) {
        EXPECT_EQ(a.GetObjectType(), b.GetObjectType()) << what;
        EXPECT_EQ(a.IsVisible(), b.IsVisible()) << what;
        ASSERT_EQ(a.GetVertexCount(), b.GetVertexCount()) << what;
        ASSERT_EQ(a.GetFaceCount(), b.GetFaceCount()) << what;
        for (int i = 0; i < a.GetVertexCount(); ++i) {
            const VxPoint& pa = a.GetVertex(i)->GetPos();
            const VxPoint& pb = b.GetVertex(i)->GetPos();
            if (pa != pb) {
                ADD_FAILURE() << what << ": vertex " << i << " differs: " << std::setprecision(17)
                              << pa[0] << " " << pa[1] << " " << pa[2] << " vs " << pb[0] << " "
                              << pb[1] << " " << pb[2];
                return;
            }
        }
        for (int f = 0; f < a.GetFaceCount(); ++f) {
            const VxFace& fa = *a.GetFace(f);
            const VxFace& fb = *b.GetFace(f);
            if (fa.GetVtxId(0) != fb.GetVtxId(0) || fa.GetVtxId(1) != fb.GetVtxId(1) ||
                fa.GetVtxId(2) != fb.GetVtxId(2) || fa.GetFaceStyle() != fb.GetFaceStyle() ||
                fb.GetFaceId() != f) {
                ADD_FAILURE() << what << ": face " << f << " differs";
                return;
            }
        }
    }

    void Entities() {
        for (std::size_t i = 0; i < m_a.jaws.size(); ++i) {
            const std::string w = "jaw " + std::to_string(i);
            EXPECT_EQ(m_a.jaws[i]->IsUp(), m_b.jaws[i]->IsUp()) << w;
            ExpectFrame(m_a.jaws[i]->GetFrame(), m_b.jaws[i]->GetFrame(), w);
            ExpectMesh(*m_a.jaws[i], *m_b.jaws[i], w);
        }
        for (std::size_t i = 0; i < m_a.teeth.size(); ++i) {
            const VxTooth& a = *m_a.teeth[i];
            const VxTooth& b = *m_b.teeth[i];
            const std::string w = "tooth " + std::to_string(a.GetFDI());
            EXPECT_EQ(a.GetFDI(), b.GetFDI()) << w;
            EXPECT_EQ(a.GetToothKind(), b.GetToothKind()) << w;
            EXPECT_EQ(a.IsLockShown(), b.IsLockShown()) << w;
            ExpectFrame(a.GetFrame(), b.GetFrame(), w);
            ExpectPaired(a.GetParent(), b.GetParent(), w + " jaw");
            ExpectMesh(a, b, w);
            if (Both(a.GetBackupRoot(), b.GetBackupRoot(), w + " root")) {
                ExpectMesh(*a.GetBackupRoot(), *b.GetBackupRoot(), w + " root");
            }
        }
        for (std::size_t i = 0; i < m_a.gums.size(); ++i) {
            const VxGum& a = *m_a.gums[i];
            const VxGum& b = *m_b.gums[i];
            const std::string w = "gum " + std::to_string(i);
            EXPECT_EQ(a.IsUp(), b.IsUp()) << w;
            EXPECT_EQ(a.IsCmp(), b.IsCmp()) << w;
            for (int f = 0; f < VxGum::kBandFamilies; ++f) {
                EXPECT_EQ(a.GetBandStartFaces(f), b.GetBandStartFaces(f)) << w << " band " << f;
                EXPECT_EQ(a.GetBandEndFaces(f), b.GetBandEndFaces(f)) << w << " band " << f;
            }
            EXPECT_EQ(a.GetSegmentFirstFaces(), b.GetSegmentFirstFaces()) << w;
            EXPECT_EQ(a.GetSegmentEndFaces(), b.GetSegmentEndFaces()) << w;
            ExpectMesh(a, b, w);
        }
        if (m_a.skull) {
            ExpectMesh(*m_a.skull, *m_b.skull, "skull");
        }
        for (std::size_t i = 0; i < m_a.stdAttachments.size(); ++i) {
            const VxStdAttach& a = *m_a.stdAttachments[i];
            const VxStdAttach& b = *m_b.stdAttachments[i];
            const std::string w = "std attachment " + std::to_string(i);
            EXPECT_EQ(a.GetAttachIdentifier().ToUtf8(), b.GetAttachIdentifier().ToUtf8()) << w;
            EXPECT_TRUE(a.GetColor() == b.GetColor()) << w;
            ExpectMesh(a, b, w);
        }
        for (std::size_t i = 0; i < m_a.attachments.size(); ++i) {
            const VxAttachment& a = *m_a.attachments[i];
            const VxAttachment& b = *m_b.attachments[i];
            const std::string w = "attachment " + std::to_string(i);
            ExpectPaired(a.GetStdAttachment(), b.GetStdAttachment(), w + " std");
            ExpectPaired(a.GetTooth(), b.GetTooth(), w + " tooth");
            ExpectFrame(a.GetCurFrame(), b.GetCurFrame(), w);
            EXPECT_EQ(a.GetCurrentMatrix(), b.GetCurrentMatrix()) << w + " current";
            EXPECT_EQ(a.GetStartStep(), b.GetStartStep()) << w;
            EXPECT_EQ(a.GetEndStep(), b.GetEndStep()) << w;
            EXPECT_EQ(a.IsCmp(), b.IsCmp()) << w;
            ExpectMesh(a, b, w);
            for (std::size_t k = 0; k < a.AttachParts().size(); ++k) {
                EXPECT_EQ(a.AttachParts()[k]->matrix, b.AttachParts()[k]->matrix) << w + " part";
                ExpectMesh(*a.AttachParts()[k], *b.AttachParts()[k], w + " part");
            }
        }
        for (std::size_t i = 0; i < m_a.wedges.size(); ++i) {
            const VxFilledWedge& a = *m_a.wedges[i];
            const VxFilledWedge& b = *m_b.wedges[i];
            const std::string w = "wedge " + std::to_string(i);
            EXPECT_EQ(dynamic_cast<const VxFilledWedgeTwoTooth*>(&a) != nullptr,
                      dynamic_cast<const VxFilledWedgeTwoTooth*>(&b) != nullptr)
                << w;
            const auto* ta = dynamic_cast<const VxFilledWedgeTriTooth*>(&a);
            const auto* tb = dynamic_cast<const VxFilledWedgeTriTooth*>(&b);
            if (Both(ta, tb, w + " three teeth")) {
                ExpectPaired(ta->GetToothMiddle(), tb->GetToothMiddle(), w + " middle");
            }
            ExpectPaired(a.GetToothLeft(), b.GetToothLeft(), w + " left");
            ExpectPaired(a.GetToothRight(), b.GetToothRight(), w + " right");
            ExpectMesh(a, b, w);
        }
        std::vector<VxEntity*> ea;
        std::vector<VxEntity*> eb;
        m_a.model.GetEntities(ea);
        m_b.model.GetEntities(eb);
        ASSERT_EQ(ea.size(), eb.size());
        for (std::size_t i = 0; i < ea.size(); ++i) {
            ExpectPaired(dynamic_cast<VxMesh*>(ea[i]), dynamic_cast<VxMesh*>(eb[i]),
                         "model entity " + std::to_string(i));
        }
        EXPECT_EQ(m_b.model.GetPatientInfo(), &m_b.patientInfo);
        EXPECT_EQ(m_b.model.GetPanMeasure(), &m_b.panMeasure);
        EXPECT_EQ(m_b.model.GetCepMeasure(), &m_b.cepMeasure);
    }

    void Plan() {
        EXPECT_EQ(m_a.stepCount, m_b.stepCount);
        EXPECT_EQ(m_a.currentStep, m_b.currentStep);
        ASSERT_EQ(m_a.placements.size(), m_b.placements.size());
        for (const auto& [entity, steps] : m_a.placements) {
            const auto* mesh = dynamic_cast<const VxMesh*>(entity);
            ASSERT_EQ(m_pair.count(mesh), 1u) << "placements of an object outside the case";
            const auto it = m_b.placements.find(m_pair[mesh]);
            ASSERT_NE(it, m_b.placements.end());
            ASSERT_EQ(steps.size(), it->second.size());
            for (const auto& [step, infos] : steps) {
                ASSERT_EQ(it->second.count(step), 1u) << "step " << step;
                const auto& other = it->second.at(step);
                ASSERT_EQ(infos.size(), other.size()) << "step " << step;
                auto ib = other.begin();
                for (const DrawInfo_s& d : infos) {
                    EXPECT_EQ(d.limited, ib->limited);
                    EXPECT_EQ(d.matrix, ib->matrix) << "placement at step " + std::to_string(step);
                    ++ib;
                }
            }
        }
    }

    void Scheme() {
        const VxScheme& a = m_a.scheme;
        const VxScheme& b = m_b.scheme;
        EXPECT_EQ(a.GetStepCount(), b.GetStepCount());
        const VxArchForm* arch[2][2] = {{a.GetUpArch(), b.GetUpArch()},
                                        {a.GetLowArch(), b.GetLowArch()}};
        const VxOcclusalPlane* occ[2][2] = {{a.GetUpOccPlane(), b.GetUpOccPlane()},
                                            {a.GetLowOccPlane(), b.GetLowOccPlane()}};
        for (int s = 0; s < 2; ++s) {
            if (Both(arch[s][0], arch[s][1], "arch")) {
                EXPECT_EQ(arch[s][0]->GetPoints(), arch[s][1]->GetPoints()) << "arch";
                EXPECT_EQ(arch[s][0]->IsClosed(), arch[s][1]->IsClosed());
                ExpectCurve(arch[s][0]->GetCurve(), arch[s][1]->GetCurve(), "arch");
            }
            if (Both(occ[s][0], occ[s][1], "occlusal")) {
                ExpectFrame(occ[s][0]->GetPlaneFrame(), occ[s][1]->GetPlaneFrame(), "occlusal");
                EXPECT_EQ(occ[s][0]->GetLength(), occ[s][1]->GetLength());
            }
        }
        std::vector<VxTreatStep*> sa;
        std::vector<VxTreatStep*> sb;
        const_cast<VxScheme&>(a).GetAllTreatSteps(sa);
        const_cast<VxScheme&>(b).GetAllTreatSteps(sb);
        ASSERT_EQ(sa.size(), sb.size());
        for (std::size_t i = 0; i < sa.size(); ++i) {
            EXPECT_EQ(sa[i]->GetFDI(), sb[i]->GetFDI());
            EXPECT_EQ(sa[i]->GetStep(), sb[i]->GetStep());
            EXPECT_EQ(sa[i]->GetPlacement(), sb[i]->GetPlacement()) << "treat step";
        }
        ASSERT_EQ(a.GetIPRInfo().size(), b.GetIPRInfo().size());
        for (std::size_t i = 0; i < a.GetIPRInfo().size(); ++i) {
            const VxIPR& ra = a.GetIPRInfo()[i];
            const VxIPR& rb = b.GetIPRInfo()[i];
            ExpectPaired(ra.GetFirstTooth(), rb.GetFirstTooth(), "ipr first");
            ExpectPaired(ra.GetSecondTooth(), rb.GetSecondTooth(), "ipr second");
            EXPECT_EQ(ra.GetStep(), rb.GetStep());
            EXPECT_EQ(ra.GetValue(), rb.GetValue());
            EXPECT_EQ(ra.GetmaxGapValue(), rb.GetmaxGapValue());
            EXPECT_EQ(ra.GetGapPos(), rb.GetGapPos()) << "ipr gap";
        }
    }

    // Landmark vertices as indices in the tooth with the reference's number (-1 without one).
    static std::vector<long> VertexIds(const VxCase& c, int fdi, const std::vector<VxVertex*>& v) {
        std::vector<long> ids;
        const VxTooth* t = c.FindTooth(fdi);
        for (const VxVertex* p : v) {
            ids.push_back(t ? static_cast<long>(p - t->GetVertices().data()) : -1);
        }
        return ids;
    }

    void Refs() {
        ASSERT_EQ(m_a.toothRefs.size(), m_b.toothRefs.size());
        for (std::size_t i = 0; i < m_a.toothRefs.size(); ++i) {
            const VxToothRef& a = m_a.toothRefs[i];
            const VxToothRef& b = m_b.toothRefs[i];
            const std::string w = "tooth ref " + std::to_string(a.GetFDI());
            const auto ids = [&](const VxCase& c, const VxToothRef& r, const auto& v) {
                return VertexIds(c, r.GetFDI(), v);
            };
            EXPECT_EQ(a.GetFDI(), b.GetFDI()) << w;
            EXPECT_EQ(a.GetToothKind(), b.GetToothKind()) << w;
            ExpectPaired(a.GetOwnJaw(), b.GetOwnJaw(), w + " jaw");
            ExpectCurve(a.GetFacc().GetCurve(), b.GetFacc().GetCurve(), w + " facc");
            ExpectCurve(a.GetFacc().GetToothCurve(), b.GetFacc().GetToothCurve(), w + " facc");
            EXPECT_EQ(ids(m_a, a, a.GetFacc().GetAllRefVtx()),
                      ids(m_b, b, b.GetFacc().GetAllRefVtx()))
                << w;
            ExpectCurve(a.GetMidCurve().GetCurve(), b.GetMidCurve().GetCurve(), w + " mid");
            EXPECT_EQ(a.GetMidCurve().GetMidVtxId(), b.GetMidCurve().GetMidVtxId()) << w;
            EXPECT_EQ(ids(m_a, a, a.GetMidCurve().GetAllRefVtx()),
                      ids(m_b, b, b.GetMidCurve().GetAllRefVtx()))
                << w;
            ASSERT_EQ(a.GetFeaturePoint().size(), b.GetFeaturePoint().size()) << w;
            for (std::size_t k = 0; k < a.GetFeaturePoint().size(); ++k) {
                const VxFeaturePoint& fa = a.GetFeaturePoint()[k];
                const VxFeaturePoint& fb = b.GetFeaturePoint()[k];
                EXPECT_EQ(fa.GetKind(), fb.GetKind()) << w;
                EXPECT_EQ(ids(m_a, a, std::vector<VxVertex*>{fa.GetVtx()}),
                          ids(m_b, b, std::vector<VxVertex*>{fb.GetVtx()}))
                    << w;
            }
        }
        const std::optional<VxJawRef>* jaws[2][2] = {{&m_a.upperJawRef, &m_b.upperJawRef},
                                                     {&m_a.lowerJawRef, &m_b.lowerJawRef}};
        for (const auto& j : jaws) {
            if (!Both(j[0]->has_value() ? &**j[0] : nullptr, j[1]->has_value() ? &**j[1] : nullptr,
                      "jaw ref")) {
                continue;
            }
            const VxJawRef& a = **j[0];
            const VxJawRef& b = **j[1];
            EXPECT_EQ(a.IsUp(), b.IsUp());
            if (Both(a.GetBeautyPlane(), b.GetBeautyPlane(), "beauty")) {
                ExpectFrame(a.GetBeautyPlane()->GetPlaneFrame(),
                            b.GetBeautyPlane()->GetPlaneFrame(), "beauty");
                EXPECT_EQ(a.GetBeautyPlane()->GetLength(), b.GetBeautyPlane()->GetLength());
                std::vector<VxPoint> pa;
                std::vector<VxPoint> pb;
                a.GetBeautyPlane()->GetBeauPt(pa);
                b.GetBeautyPlane()->GetBeauPt(pb);
                EXPECT_EQ(pa, pb) << "beauty points";
            }
            for (int plane = 0; plane < 2; ++plane) {
                VxFrame fa;
                VxFrame fb;
                double la = 0.0;
                double lb = 0.0;
                const bool ha =
                    plane == 0 ? a.GetMiddlePlane(fa, la) : a.GetBackBoundaryPlane(fa, la);
                const bool hb =
                    plane == 0 ? b.GetMiddlePlane(fb, lb) : b.GetBackBoundaryPlane(fb, lb);
                ASSERT_EQ(ha, hb) << "plane " << plane;
                ExpectFrame(fa, fb, "plane");
                EXPECT_EQ(la, lb);
            }
            std::vector<VxPoint> pa;
            std::vector<VxPoint> pb;
            EXPECT_EQ(a.GetBackBoundaryPlanePts(pa), b.GetBackBoundaryPlanePts(pb));
            EXPECT_EQ(pa, pb) << "back boundary points";
        }
    }

    static void ExpectImage(const CImage* a, const CImage* b, const std::string& what) {
        if (!Both(a, b, what)) {
            return;
        }
        ASSERT_EQ(a->GetWidth(), b->GetWidth()) << what;
        ASSERT_EQ(a->GetHeight(), b->GetHeight()) << what;
        for (int i = 0; i < a->GetWidth() * a->GetHeight(); ++i) {
            const int x = i % a->GetWidth();
            const int y = i / a->GetWidth();
            if (a->GetPixel(x, y) != b->GetPixel(x, y)) {
                ADD_FAILURE() << what << ": pixel " << x << ", " << y << " differs";
                return;
            }
        }
    }

    void Records() {
        ASSERT_EQ(m_a.movementDiffs.size(), m_b.movementDiffs.size());
        for (const auto& [fdi, d] : m_a.movementDiffs) {
            ASSERT_EQ(m_b.movementDiffs.count(fdi), 1u) << fdi;
            const ThreeMovementDiff_s& e = m_b.movementDiffs.at(fdi);
            for (int k = 0; k < 6; ++k) {
                EXPECT_EQ(d.Min(k), e.Min(k)) << fdi << " limit " << k;
                EXPECT_EQ(d.Max(k), e.Max(k)) << fdi << " limit " << k;
            }
        }
        ASSERT_EQ(m_a.gapInfos.size(), m_b.gapInfos.size());
        for (std::size_t i = 0; i < m_a.gapInfos.size(); ++i) {
            const VxGapInfo& a = m_a.gapInfos[i];
            const VxGapInfo& b = m_b.gapInfos[i];
            EXPECT_EQ(a.IsGap(), b.IsGap());
            EXPECT_EQ(a.GetValue(), b.GetValue());
            EXPECT_EQ(a.GetValuePos(), b.GetValuePos()) << "gap label";
            for (int s = 0; s < 2; ++s) {
                ExpectPaired(a.GetMesh(s), b.GetMesh(s), "gap mesh");
                EXPECT_EQ(a.GetFaces(s), b.GetFaces(s));
                EXPECT_EQ(a.GetVertexDepth(s), b.GetVertexDepth(s));
            }
        }
        const VxPatientInfo& pa = m_a.patientInfo;
        const VxPatientInfo& pb = m_b.patientInfo;
        ExpectImage(pa.GetPanoramicImg(), pb.GetPanoramicImg(), "panoramic");
        ExpectImage(pa.GetProfileImg(), pb.GetProfileImg(), "profile");
        ExpectImage(pa.GetFrontalSmileImg(), pb.GetFrontalSmileImg(), "smile");
        ExpectImage(pa.GetCephalometricImg(), pb.GetCephalometricImg(), "cephalometric");
        EXPECT_EQ(m_a.panMeasure.GetBrightPos(), m_b.panMeasure.GetBrightPos());
        EXPECT_EQ(m_a.panMeasure.GetContrastPos(), m_b.panMeasure.GetContrastPos());
        EXPECT_EQ(m_a.cepMeasure.GetBrightPos(), m_b.cepMeasure.GetBrightPos());
        EXPECT_EQ(m_a.cepMeasure.GetContrastPos(), m_b.cepMeasure.GetContrastPos());
        ASSERT_EQ(m_a.panMeasure.GetDatas().size(), m_b.panMeasure.GetDatas().size());
        for (std::size_t i = 0; i < m_a.panMeasure.GetDatas().size(); ++i) {
            const PanAttribute& a = m_a.panMeasure.GetDatas()[i];
            const PanAttribute& b = m_b.panMeasure.GetDatas()[i];
            EXPECT_EQ(a.kind, b.kind);
            EXPECT_EQ(a.number, b.number);
            EXPECT_EQ(a.point, b.point) << "pan point";
        }
        const auto& ca = m_a.cepMeasure.GetAllMeasurePts();
        const auto& cb = m_b.cepMeasure.GetAllMeasurePts();
        ASSERT_EQ(ca.size(), cb.size());
        for (const auto& [id, pt] : ca) {
            ASSERT_EQ(cb.count(id), 1u) << id;
            EXPECT_EQ(cb.at(id).id, pt.id);
            EXPECT_EQ(pt.pos, cb.at(id).pos) << "cephalometric point";
        }
    }

    const VxCase& m_a;
    const VxCase& m_b;
    std::map<const VxMesh*, const VxMesh*> m_pair;
};

void ExpectSameCase(const VxCase& a, const VxCase& b) {
    CaseComparer(a, b).Run();
}

// ---------------------------------------------------------------------------------------------
// A hand-built case that uses every field.
// ---------------------------------------------------------------------------------------------

// A closed octahedron around `c` (radius r); every coordinate a float when c and r are.
void MakeOctahedron(VxMesh& m, const VxPoint& c, double r) {
    const double d[6][3] = {{r, 0, 0}, {0, r, 0}, {-r, 0, 0}, {0, -r, 0}, {0, 0, r}, {0, 0, -r}};
    for (const auto& v : d) {
        m.AddVertex(VxPoint(c[0] + v[0], c[1] + v[1], c[2] + v[2]));
    }
    const int f[8][3] = {{0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4},
                         {1, 0, 5}, {2, 1, 5}, {3, 2, 5}, {0, 3, 5}};
    for (const auto& t : f) {
        m.AddFace(t[0], t[1], t[2]);
    }
    m.Finish();
}

VxMatrix Placement(double tx, double angle) {
    VxMatrix m = VxMatrix::s_GetRotationMatrix(VxVector(0, 0, 1), angle);
    m[0][3] = tx;
    m[1][3] = 0.25;
    return m;
}

std::unique_ptr<CImage> MakeImage(int w, int h, int bpp, int seed) {
    auto img = std::make_unique<CImage>();
    img->Create(w, h, bpp);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const int v = (x * 37 + y * 91 + seed * 13) & 0xFF;
            img->SetPixel(x, y, bpp == 8 ? RGB(v, v, v) : RGB(v, 255 - v, (v * 7) & 0xFF));
        }
    }
    return img;
}

void BuildRichCase(VxCase& c) {
    auto jaw = std::make_unique<VxJaw>(true);
    jaw->SetFrame(VxFrame(VxPoint(1, 2, 3), VxVector(1, 0.5, 0), VxVector(0, 1, 2)));
    MakeOctahedron(*jaw, VxPoint(0, 0, -10), 20);
    VxJaw* upper = jaw.get();
    c.jaws.push_back(std::move(jaw));
    c.jaws.push_back(std::make_unique<VxJaw>(false)); // frame never set, no mesh

    const int fdis[2] = {11, 21};
    for (int i = 0; i < 2; ++i) {
        auto t = std::make_unique<VxTooth>(fdis[i], upper);
        MakeOctahedron(*t, VxPoint(i == 0 ? -4.5 : 4.5, 0, 0), 4);
        t->SetFrame(VxFrame(VxPoint(i == 0 ? -4.5 : 4.5, 0.125, 0), VxVector(1, 0.1, 0),
                            VxVector(0, 0.2, 1)));
        t->SetToothKind(i == 0 ? ToothKind_Normal : ToothKind_Restored);
        t->SetLockShown(i == 1);
        c.teeth.push_back(std::move(t));
    }
    VxTooth* t11 = c.teeth[0].get();
    VxTooth* t21 = c.teeth[1].get();
    // Faces 4..7 (the lower half) are the basic root of tooth 11, face 1 is crown.
    for (int f = 4; f < 8; ++f) {
        t11->GetFace(f)->SetFaceStyle(FaceStyle_BasicRoot);
    }
    t11->GetFace(1)->SetFaceStyle(FaceStyle_Crown);
    auto root = std::make_unique<VxMesh>();
    MakeOctahedron(*root, VxPoint(-4.5, 0, -6), 2.5);
    t11->SetBackupRoot(root.get());
    c.backupRoots.push_back(std::move(root));
    t21->SetVisible(0);

    auto gum = std::make_unique<VxGum>(true);
    MakeOctahedron(*gum, VxPoint(0, 0, -3), 12);
    gum->SetBands(0, {0, 4}, {4, 8});
    gum->SetBands(2, {2}, {6});
    gum->SetSegments({0, 3, 5}, {3, 5, 8});
    c.gums.push_back(std::move(gum));
    auto cmpGum = std::make_unique<VxGum>(true);
    cmpGum->SetCmp(true);
    MakeOctahedron(*cmpGum, VxPoint(0, 0, -3.5), 12);
    c.gums.push_back(std::move(cmpGum));

    c.skull = std::make_unique<VxSkull>();
    MakeOctahedron(*c.skull, VxPoint(0, 40, 0), 60);

    auto stdAttach = std::make_unique<VxStdAttach>(CString::FromUtf8("SK-Rect 3\xc3\x97"
                                                                     "2"),
                                                   VxColor(200, 120, 40, 230));
    MakeOctahedron(*stdAttach, VxPoint(0, 0, 0), 1);
    auto attach = std::make_unique<VxAttachment>(stdAttach.get(), t21);
    attach->SetCurFrame(VxFrame(VxPoint(4.5, -4, 1), VxVector(0, -1, 0), VxVector(0, 0, 1)));
    attach->SetCurrentMatrix(Placement(0.5, 0.1));
    attach->SetSteps(1, 3);
    attach->SetCmp(true);
    for (int p = 0; p < 2; ++p) {
        auto part = std::make_shared<VxAttachmentPart>(Placement(4.5 + p, 0.2 * p));
        MakeOctahedron(*part, VxPoint(4.5 + p, -4, 1), 0.5);
        attach->AttachParts().push_back(part);
    }
    c.stdAttachments.push_back(std::move(stdAttach));
    c.attachments.push_back(std::move(attach));

    auto wedge = std::make_unique<VxFilledWedgeTwoTooth>(t11, t21);
    MakeOctahedron(*wedge, VxPoint(0, -1, 0), 1);
    c.wedges.push_back(std::move(wedge));
    c.wedges.push_back(std::make_unique<VxFilledWedgeTriTooth>(t11, nullptr, t21));

    c.stepCount = 4;
    c.currentStep = 2;
    c.placements[t11][1] = {DrawInfo_s(false, Placement(-0.25, 0.01))};
    c.placements[t11][3] = {DrawInfo_s(false, Placement(-0.5, 0.02)),
                            DrawInfo_s(true, Placement(-1.0, 0.05))};
    c.placements[c.attachments[0].get()][3] = {DrawInfo_s(true, Placement(0.3, -0.1))};

    std::unique_ptr<VxBSplineCurve> arch(VxBSplineCurve::CreateInterpolateCurve(
        {VxPoint(-20, -10, 0), VxPoint(-10, 8, 0), VxPoint(10, 8, 0), VxPoint(20, -10, 0)}, false));
    c.scheme.SetUpArch(VxArchForm(
        {VxPoint(-20, -10, 0), VxPoint(-10, 8, 0), VxPoint(10, 8, 0), VxPoint(20, -10, 0)}));
    VxArchForm lowArch;
    lowArch.SetCurve(*arch);
    c.scheme.SetLowArch(lowArch);
    c.scheme.SetUpOccPlane(VxOcclusalPlane(
        VxFrame(VxPoint(-30, -30, 1), VxVector(1, 0, 0.01), VxVector(0, 1, 0)), 60));
    for (int s = 0; s < 4; ++s) {
        c.scheme.AddTreatStep(VxTreatStep(11, s, Placement(-4.5 + 0.1 * s, 0.01 * s)));
        if (s != 2) { // tooth 21 skips a step
            c.scheme.AddTreatStep(VxTreatStep(21, s, Placement(4.5 - 0.1 * s, -0.01 * s)));
        }
    }
    c.scheme.SetStepCount(4);
    c.scheme.AddIPR(VxIPR(t11, t21, 2, 0.2, 0.35, VxPoint(0, -3.75, 0.5)));
    c.scheme.AddIPR(VxIPR(nullptr, t21, 0, 0.1, 0.1, VxPoint(9, -3, 0)));

    VxToothRef ref(11, ToothKind_Normal, upper);
    VxFacc facc;
    std::unique_ptr<VxBSplineCurve> fc(VxBSplineCurve::CreateInterpolateCurve(
        {VxPoint(-4.5, -4, -2), VxPoint(-4.4, -4.2, 0), VxPoint(-4.5, -4, 2)}, false));
    facc.SetCurve(*fc);
    facc.SetToothCurve(
        VxBSplineCurve(1, {VxPoint(0, -4, -2), VxPoint(0, -4, 2)}, VxKnotVec({0, 0, 1, 1})));
    facc.SetAllRefVtx({t11->GetVertex(3), t11->GetVertex(4)});
    ref.SetFacc(facc);
    VxMidCurve mid;
    mid.SetCurve(*fc);
    mid.SetMidVtxId(4);
    mid.SetAllRefVtx({t11->GetVertex(0), t11->GetVertex(4), t11->GetVertex(2)});
    ref.SetMidCurve(mid);
    ref.AddFeaturePoint(VxFeaturePoint(7, t11->GetVertex(5)));
    ref.AddFeaturePoint(VxFeaturePoint(2, t11->GetVertex(1)));
    c.toothRefs.push_back(ref);
    c.toothRefs.push_back(VxToothRef(18, ToothKind_Missing)); // no tooth, no vertices

    VxJawRef jr(true);
    jr.SetBeautyPlane(
        VxBeautyPlane(VxFrame(VxPoint(0, -30, 0), VxVector(1, 0, 0), VxVector(0, 0, 1)), 50,
                      {VxPoint(0, -35, 10), VxPoint(0, -33, -20)}));
    jr.SetMiddlePlane(VxFrame(VxPoint(0, -25, -25), VxVector(0, 1, 0), VxVector(0, 0, 1)), 50);
    jr.SetBackBoundaryPlane(VxFrame(VxPoint(-25, 25, -25), VxVector(1, 0, 0), VxVector(0, 0, 1)),
                            50);
    jr.SetBackBoundaryPlanePts({VxPoint(-20, 25, 0), VxPoint(20, 25, 0)});
    c.upperJawRef = jr;
    c.lowerJawRef = VxJawRef(false); // all planes missing

    ThreeMovementDiff_s d;
    d.moveXMin = -1.5;
    d.moveXMax = 1.25;
    d.rotateYMin = -7;
    d.rotateZMax = 12.5;
    c.movementDiffs[11] = d;
    c.movementDiffs[21] = ThreeMovementDiff_s();

    VxGapInfo g(t11, t21, false, 0.15, VxPoint(0, -2, 0.5));
    g.SetFaces(0, {0, 3});
    g.SetFaces(1, {1, 2, 7});
    g.AddVertexDepth(0, 0, 0.15);
    g.AddVertexDepth(1, 2, 0.1);
    g.AddVertexDepth(1, 4, 0.05);
    c.gapInfos.push_back(g);
    c.gapInfos.push_back(VxGapInfo(c.gums[0].get(), nullptr, true, 0.4, VxPoint(1, 2, 3)));

    c.patientInfo.SetPanoramicImg(MakeImage(10, 6, 24, 1));
    c.patientInfo.SetCephalometricImg(MakeImage(6, 8, 24, 2));
    c.panMeasure.SetBrightPos(3);
    c.panMeasure.SetContrastPos(-2);
    c.panMeasure.AddData(PanAttribute(1, 16, VxPoint(0.25, 0.5, 0)));
    c.panMeasure.AddData(PanAttribute(2, 46, VxPoint(0.75, 0.625, 0)));
    c.cepMeasure.SetBrightPos(-1);
    c.cepMeasure.SetMeasurePt(CephalometricPt(MEASURE_POINT_RefLineStart, VxPoint(1, 2, 3)));
    c.cepMeasure.SetMeasurePt(CephalometricPt(MEASURE_POINT_KeyPoint, VxPoint(-1.5, 2, 30)));
    c.BuildModel();
}

// ---------------------------------------------------------------------------------------------
// Helpers for the file tests.
// ---------------------------------------------------------------------------------------------

std::string TinyDir() {
    return VxTestSourceDir() + "/data/cases/tiny";
}

// A fresh copy of the tiny case to spoil.
std::string CopyTiny(const std::string& name) {
    const std::string dir = VxTestOutputDir() + "/case_io/" + name;
    fs::remove_all(dir);
    fs::create_directories(dir);
    for (const auto& e : fs::directory_iterator(TinyDir())) {
        fs::copy_file(e.path(), dir + "/" + e.path().filename().string());
    }
    return dir;
}

std::string ReadText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

void EditManifest(const std::string& dir, const std::function<void(json&)>& edit) {
    json j = json::parse(ReadText(dir + "/case.json"));
    edit(j);
    WriteText(dir + "/case.json", j.dump(1));
}

bool StartsWith(const std::string& s, const std::string& prefix) {
    return s.compare(0, prefix.size(), prefix) == 0;
}

// Reads `dir` into an empty case and into a case that holds the tiny case; both reads must fail
// with a message that starts with `prefix`, and leave the targets as they were.
void ExpectReadFails(const std::string& dir, const std::string& prefix) {
    SCOPED_TRACE(dir);
    VxCase empty;
    std::string error;
    EXPECT_FALSE(VxCaseIO::Read(dir, empty, error));
    EXPECT_TRUE(StartsWith(error, prefix)) << "message: " << error << "\nexpected: " << prefix;
    EXPECT_EQ(std::count(error.begin(), error.end(), '\n'), 0) << error;
    EXPECT_TRUE(empty.IsEmpty());

    VxCase held;
    ASSERT_TRUE(VxCaseIO::Read(TinyDir(), held, error)) << error;
    const VxTooth* before = held.teeth[0].get();
    EXPECT_FALSE(VxCaseIO::Read(dir, held, error));
    ASSERT_EQ(held.teeth.size(), 2u);
    EXPECT_EQ(held.teeth[0].get(), before);
    EXPECT_EQ(held.model.GetEntityCount(), 3);
}

// Writes the case to a fresh folder and reads it back.
void RoundTrip(const VxCase& c, const std::string& name, VxCase& back) {
    const std::string dir = VxTestOutputDir() + "/case_io/" + name;
    fs::remove_all(dir);
    std::string error;
    ASSERT_TRUE(VxCaseIO::Write(c, dir, error)) << error;
    ASSERT_TRUE(VxCaseIO::Read(dir, back, error)) << error;
}

} // namespace

// ---------------------------------------------------------------------------------------------

TEST(CaseIO, RichCaseRoundTripsFieldByField) {
    VxCase original;
    BuildRichCase(original);
    VxCase back;
    ASSERT_NO_FATAL_FAILURE(RoundTrip(original, "rich", back));
    ExpectSameCase(original, back);
    // A second pass starts from what was read (frame axes rebuilt once); it must not drift.
    VxCase again;
    ASSERT_NO_FATAL_FAILURE(RoundTrip(back, "rich2", again));
    ExpectSameCase(original, again);
}

TEST(CaseIO, ReadIntoInstalledCaseReinstallsNewContent) {
    VxCase c;
    BuildRichCase(c);
    c.Install();
    std::string error;
    ASSERT_TRUE(VxCaseIO::Read(TinyDir(), c, error)) << error;
    EXPECT_TRUE(c.IsInstalled());
    EXPECT_EQ(VxTransformMatrix::GetInstance()->GetCurrentStep(), 1);
    EXPECT_EQ(VxTransformMatrix::GetInstance()->GetDrawInfos(c.teeth[0].get()).size(), 2u);
    c.Uninstall();
}

TEST(CaseIO, WriteRefusesWhatHasNoFileForm) {
    VxTooth stranger(31);
    struct Case {
        std::function<void(VxCase&)> spoil;
        const char* prefix;
    };
    const Case cases[] = {
        {[](VxCase& c) { c.teeth[1]->SetFDI(11); }, "case.json: teeth[1]: a second \"tooth:11\""},
        {[](VxCase& c) { c.scheme.AddIPR(VxIPR(c.teeth[0].get(), nullptr, 1, NAN, 0.1, {})); },
         "case.json: scheme.iprs[2].value: number is not finite"},
        {[&](VxCase& c) { c.attachments[0]->SetTooth(&stranger); },
         "case.json: attachments[0].tooth: points to an object"},
        {[](VxCase& c) { c.teeth[0]->SetVertexPos(2, VxPoint(INFINITY, 0, 0)); },
         "meshes/tooth_11.ply: vertex 2: "},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.prefix);
        VxCase c;
        BuildRichCase(c);
        k.spoil(c);
        std::string error;
        EXPECT_FALSE(VxCaseIO::Write(c, VxTestOutputDir() + "/case_io/refused", error));
        EXPECT_TRUE(StartsWith(error, k.prefix)) << error;
    }
}

TEST(CaseIO, TinyCaseReadsAsWritten) {
    VxCase c;
    std::string error;
    ASSERT_TRUE(VxCaseIO::Read(TinyDir(), c, error)) << error;
    ASSERT_EQ(c.teeth.size(), 2u);
    ASSERT_EQ(c.jaws.size(), 1u);
    const VxTooth& t11 = *c.teeth[0];
    const VxTooth& t21 = *c.teeth[1];
    EXPECT_EQ(t11.GetFDI(), 11);
    EXPECT_EQ(t11.GetParent(), c.jaws[0].get());
    EXPECT_TRUE(t11.IsUp());
    // OBJ keeps its "v" line order; the STL joins corners in order of first appearance.
    ASSERT_EQ(t11.GetVertexCount(), 4);
    ASSERT_EQ(t11.GetFaceCount(), 4);
    EXPECT_EQ(t11.GetVertex(3)->GetPos(), VxPoint(4, 3, 9));
    EXPECT_EQ(t11.GetFace(0)->GetVtxId(1), 2);
    EXPECT_EQ(t11.GetFace(0)->GetFaceStyle(), FaceStyle_BasicRoot);
    EXPECT_EQ(t11.GetFace(1)->GetFaceStyle(), FaceStyle_Normal);
    ASSERT_EQ(t21.GetVertexCount(), 4);
    ASSERT_EQ(t21.GetFaceCount(), 4);
    EXPECT_EQ(t21.GetVertex(1)->GetPos(), VxPoint(14, 7, 0));
    EXPECT_EQ(t21.GetVertex(3)->GetPos(), VxPoint(14, 3, 9));
    EXPECT_EQ(t21.GetToothKind(), ToothKind_Implant);
    EXPECT_TRUE(t21.IsLockShown());
    // Every face of both tetrahedra faces outwards: the files were written that way.
    for (const VxTooth* t : {&t11, &t21}) {
        const VxPoint centre = t->GetBBox().Center();
        for (const VxFace& f : t->GetFaces()) {
            const VxVector out = t->GetVertex(f.GetVtxId(0))->GetPos() - centre;
            EXPECT_GT(out % f.GetNormal(), 0.0) << t->GetFDI() << " face " << f.GetFaceId();
        }
    }
    EXPECT_NEAR(t11.GetFrame().DirZ()[1], -1.0, 1e-15);
    EXPECT_EQ(c.stepCount, 2);
    EXPECT_EQ(c.currentStep, 1);
    ASSERT_EQ(c.placements.count(&t11), 1u);
    const auto& infos = c.placements.at(&t11).at(1);
    ASSERT_EQ(infos.size(), 2u);
    EXPECT_FALSE(infos.begin()->limited);
    EXPECT_EQ(infos.begin()->matrix[0][3], -0.5);
    EXPECT_TRUE(infos.rbegin()->limited);
    EXPECT_EQ(c.scheme.GetStepCount(), 2);
    ASSERT_NE(c.scheme.GetUpArch(), nullptr);
    EXPECT_NE(c.scheme.GetUpArch()->GetCurve(), nullptr);
    EXPECT_EQ(c.scheme.GetLowArch(), nullptr);
    ASSERT_NE(c.scheme.GetTreatStep(11, 1), nullptr);
    EXPECT_EQ(c.scheme.GetTreatStep(11, 1)->GetPlacement()[1][2], -1.0);
    ASSERT_EQ(c.scheme.GetIPRInfo().size(), 1u);
    EXPECT_EQ(c.scheme.GetIPRInfo()[0].GetSecondTooth(), &t21);
    ASSERT_EQ(c.toothRefs.size(), 1u);
    ASSERT_EQ(c.toothRefs[0].GetFeaturePoint().size(), 1u);
    EXPECT_EQ(c.toothRefs[0].GetFeaturePoint()[0].GetVtx(), t11.GetVertex(3));
    EXPECT_EQ(c.toothRefs[0].GetMidCurve().GetAllRefVtx().size(), 3u);
    EXPECT_EQ(c.movementDiffs.at(11).rotateZMax, 10.0);
    EXPECT_EQ(c.model.GetTooth(21), &t21);
    EXPECT_EQ(c.model.GetJaw(true), c.jaws[0].get());
}

TEST(CaseIO, MissingFilesNameTheFileAndTheField) {
    ExpectReadFails(VxTestOutputDir() + "/case_io/no-such-dir",
                    "case.json: (file): cannot be opened");
    const std::string dir = CopyTiny("missing-mesh");
    fs::remove(dir + "/tooth21.stl");
    ExpectReadFails(dir, "tooth21.stl: file: cannot be opened (named by teeth[1].mesh.file)");
    const std::string img = CopyTiny("missing-image");
    EditManifest(img, [](json& j) { j["images"]["profile"] = "images/profile.png"; });
    ExpectReadFails(img, "images/profile.png: file: cannot be opened (named by images.profile)");
    const std::string bad = CopyTiny("bad-image");
    WriteText(bad + "/profile.png", "not a picture");
    EditManifest(bad, [](json& j) { j["images"]["profile"] = "profile.png"; });
    ExpectReadFails(bad, "profile.png: file: not a readable");
    const std::string escape = CopyTiny("escape");
    EditManifest(escape, [](json& j) { j["teeth"][0]["mesh"]["file"] = "../tiny/tooth11.obj"; });
    ExpectReadFails(escape, "case.json: teeth[0].mesh.file: \"../tiny/tooth11.obj\" is not a "
                            "relative path inside");
}

TEST(CaseIO, MalformedAndHostileManifests) {
    const std::string dir = CopyTiny("malformed");
    const std::string text = ReadText(dir + "/case.json");
    WriteText(dir + "/case.json", text.substr(0, text.size() / 2));
    ExpectReadFails(dir, "case.json: byte ");
    WriteText(dir + "/case.json", "");
    ExpectReadFails(dir, "case.json: byte 1: malformed JSON");
    WriteText(dir + "/case.json", std::string(100000, '[') + std::string(100000, ']'));
    ExpectReadFails(dir, "case.json: (file): nested deeper than 64 levels");
    WriteText(dir + "/case.json", "[1, 2]");
    ExpectReadFails(dir, "case.json: (root): expected an object, found an array");
    WriteText(dir + "/case.json", "{\"version\": 2}");
    ExpectReadFails(dir, "case.json: version: unsupported version 2");
    // JSON has no infinity; an overflowing literal is the nearest a file gets to one.
    WriteText(dir + "/case.json", "{\"version\": 1, \"jaws\": [{\"up\": true, \"frame\": "
                                  "{\"origin\": [1e999, 0, 0]}}]}");
    ExpectReadFails(dir, "case.json: (file): malformed JSON: number overflow parsing '1e999'");
    // Big counts are data, not allocations.
    WriteText(dir + "/case.json",
              "{\"version\": 1, \"teeth\": [{\"fdi\": 11, \"mesh\": {\"file\": \"tooth11.obj\", "
              "\"faceStyles\": [{\"style\": 4, \"runs\": [[0, 2147483647]]}]}}]}");
    ExpectReadFails(dir, "case.json: teeth[0].mesh.faceStyles[0].runs[0]: faces 0 to 2147483646 "
                         "out of range (4 faces)");
}

TEST(CaseIO, BadFieldsNameTheField) {
    struct Case {
        const char* name;
        std::function<void(json&)> edit;
        const char* prefix;
    };
    const Case cases[] = {
        {"missing-field", [](json& j) { j["teeth"][0].erase("fdi"); },
         "case.json: teeth[0].fdi: missing"},
        {"wrong-type", [](json& j) { j["teeth"][1]["lockShown"] = "yes"; },
         "case.json: teeth[1].lockShown: expected true or false, found a string"},
        {"float-for-int", [](json& j) { j["plan"]["stepCount"] = 2.5; },
         "case.json: plan.stepCount: expected an integer, found a number"},
        {"bad-fdi", [](json& j) { j["teeth"][0]["fdi"] = 19; },
         "case.json: teeth[0].fdi: 19 is not an FDI tooth number"},
        {"duplicate-fdi", [](json& j) { j["teeth"][1]["fdi"] = 11; },
         "case.json: teeth[1]: a second \"tooth:11\""},
        {"vertex-id", [](json& j) { j["toothRefs"][0]["featurePoints"][0]["vertex"] = 4; },
         "case.json: toothRefs[0].featurePoints[0].vertex: 4 is out of range (0 to 3)"},
        {"negative-vertex", [](json& j) { j["toothRefs"][0]["midCurve"]["vertices"][1] = -1; },
         "case.json: toothRefs[0].midCurve.vertices[1]: -1 is out of range"},
        {"face-id",
         [](json& j) {
             j["teeth"][0]["mesh"]["faceStyles"][0]["runs"][0] = {3, 2};
         },
         "case.json: teeth[0].mesh.faceStyles[0].runs[0]: faces 3 to 4 out of range (4 faces)"},
        {"face-style", [](json& j) { j["teeth"][0]["mesh"]["faceStyles"][0]["style"] = 5; },
         "case.json: teeth[0].mesh.faceStyles[0].style: 5 is out of range (0 to 4)"},
        {"step-beyond", [](json& j) { j["plan"]["placements"][0]["steps"][0]["step"] = 2; },
         "case.json: plan.placements[0].steps[0].step: step 2 is outside the plan (2 steps)"},
        {"current-beyond", [](json& j) { j["plan"]["currentStep"] = 5; },
         "case.json: plan.currentStep: step 5 is outside the plan"},
        {"treat-step-beyond", [](json& j) { j["scheme"]["treatSteps"][1]["step"] = 2; },
         "case.json: scheme.treatSteps[1].step: step 2 is outside the scheme"},
        {"unknown-key", [](json& j) { j["teeth"][0]["jaw"] = "jaw:lower"; },
         "case.json: teeth[0].jaw: no entity \"jaw:lower\" in the case"},
        {"wrong-kind-of-key", [](json& j) { j["scheme"]["iprs"][0]["teeth"][0] = "jaw:upper"; },
         "case.json: scheme.iprs[0].teeth[0]: \"jaw:upper\" is not a tooth"},
        {"short-matrix", [](json& j) { j["scheme"]["treatSteps"][0]["placement"].erase(3); },
         "case.json: scheme.treatSteps[0].placement: expected 16 numbers, found 15"},
        {"parallel-axes",
         [](json& j) {
             j["jaws"][0]["frame"]["y"] = {2, 0, 0};
         },
         "case.json: jaws[0].frame: x and y are zero or parallel"},
        {"null-number", [](json& j) { j["scheme"]["iprs"][0]["value"] = nullptr; },
         "case.json: scheme.iprs[0].value: expected a number, found null"},
        {"mesh-not-object", [](json& j) { j["teeth"][1]["mesh"] = "tooth21.stl"; },
         "case.json: teeth[1].mesh: expected an object, found a string"},
    };
    for (const Case& c : cases) {
        const std::string dir = CopyTiny(c.name);
        EditManifest(dir, c.edit);
        ExpectReadFails(dir, c.prefix);
    }
}

TEST(CaseIO, NonFiniteAndBrokenMeshFiles) {
    struct Case {
        const char* name;
        const char* file;
        const char* from;
        const char* to;
        const char* prefix;
    };
    const Case cases[] = {
        {"nan-mesh", "tooth11.obj", "v 4 7 0", "v 4 nan 0",
         "tooth11.obj: vertex 2: coordinate is not finite (named by teeth[0].mesh.file)"},
        {"inf-stl", "tooth21.stl", "vertex 14 3 9", "vertex 14 3 inf",
         "tooth21.stl: triangle 1: coordinate is not finite"},
        {"bad-index", "tooth11.obj", "f 2 3 4", "f 2 3 9", "tooth11.obj: "},
    };
    for (const Case& c : cases) {
        const std::string dir = CopyTiny(c.name);
        std::string text = ReadText(dir + "/" + c.file);
        text.replace(text.find(c.from), std::strlen(c.from), c.to);
        WriteText(dir + "/" + c.file, text);
        ExpectReadFails(dir, c.prefix);
    }
}

// One octahedron in every format the reader takes; all must give the writer's mesh.
TEST(MeshFile, StlPlyObjGiveTheSameMesh) {
    VxMesh ref;
    MakeOctahedron(ref, VxPoint(1.5, -2.25, 0.125), 3);
    const std::string dir = VxTestOutputDir() + "/case_io/formats";
    fs::create_directories(dir);
    std::string error;
    ASSERT_TRUE(VxMeshFile::WritePly(ref, dir + "/oct.ply", error)) << error;

    std::ostringstream obj;
    std::ostringstream aply;
    std::ostringstream astl;
    std::string bstl(80, ' ');
    const auto put32 = [&bstl](const void* p) { bstl.append(static_cast<const char*>(p), 4); };
    const std::uint32_t n = static_cast<std::uint32_t>(ref.GetFaceCount());
    put32(&n);
    aply << "ply\nformat ascii 1.0\nelement vertex " << ref.GetVertexCount()
         << "\nproperty float x\nproperty float y\nproperty float z\nelement face "
         << ref.GetFaceCount() << "\nproperty list uchar int vertex_indices\nend_header\n";
    astl << "solid oct\n";
    for (const VxVertex& v : ref.GetVertices()) {
        obj << "v " << v.GetPos()[0] << " " << v.GetPos()[1] << " " << v.GetPos()[2] << "\n";
        aply << v.GetPos()[0] << " " << v.GetPos()[1] << " " << v.GetPos()[2] << "\n";
    }
    for (const VxFace& f : ref.GetFaces()) {
        obj << "f " << f.GetVtxId(0) + 1 << " " << f.GetVtxId(1) + 1 << " " << f.GetVtxId(2) + 1
            << "\n";
        aply << "3 " << f.GetVtxId(0) << " " << f.GetVtxId(1) << " " << f.GetVtxId(2) << "\n";
        astl << "facet normal 0 0 0\nouter loop\n";
        const float zero[3] = {0, 0, 0};
        for (int k = 0; k < 3; ++k) {
            put32(&zero[k]);
        }
        for (int k = 0; k < 3; ++k) {
            const VxPoint& p = ref.GetVertex(f.GetVtxId(k))->GetPos();
            astl << "vertex " << p[0] << " " << p[1] << " " << p[2] << "\n";
            for (int a = 0; a < 3; ++a) {
                const float c = static_cast<float>(p[a]);
                put32(&c);
            }
        }
        astl << "endloop\nendfacet\n";
        bstl.append(2, '\0');
    }
    astl << "endsolid oct\n";
    WriteText(dir + "/oct.obj", obj.str());
    WriteText(dir + "/oct_ascii.ply", aply.str());
    WriteText(dir + "/oct_ascii.stl", astl.str());
    WriteText(dir + "/oct_binary.stl", bstl);

    // The octahedron's faces meet its vertices in order 0, 1, 4, 2, 3, 5: the STL numbering.
    const int stlOrder[6] = {0, 1, 4, 2, 3, 5};
    for (const char* name :
         {"oct.ply", "oct_ascii.ply", "oct.obj", "oct_ascii.stl", "oct_binary.stl"}) {
        SCOPED_TRACE(name);
        VxMesh m;
        ASSERT_TRUE(VxMeshFile::Load(dir + "/" + name, m, error)) << error;
        ASSERT_EQ(m.GetVertexCount(), 6);
        ASSERT_EQ(m.GetFaceCount(), 8);
        const bool stl = std::strstr(name, ".stl") != nullptr;
        for (int v = 0; v < 6; ++v) {
            EXPECT_EQ(m.GetVertex(v)->GetPos(), ref.GetVertex(stl ? stlOrder[v] : v)->GetPos());
        }
        for (int f = 0; f < 8; ++f) {
            for (int k = 0; k < 3; ++k) {
                const int id = m.GetFace(f)->GetVtxId(k);
                EXPECT_EQ(stl ? stlOrder[id] : id, ref.GetFace(f)->GetVtxId(k));
            }
        }
        EXPECT_EQ(m.GetEdgeCount(), 12); // closed: every corner was joined
    }
}

TEST(MeshFile, NumberingSurvivesUnusedVerticesPolygonsAndSlivers) {
    std::string error;
    // Vertex 2 is used by no face and must keep its place; the quad is fanned in place.
    const std::string obj = "v 0 0 0\nv 1 0 0\nv 5 5 5\nv 1 1 0\nv 0 1 0\nf 1 2 4 5\nf 4 2 1\n";
    VxMesh m;
    ASSERT_TRUE(VxMeshFile::LoadFromMemory(obj.data(), obj.size(), VxMeshFormat::Obj, m, error))
        << error;
    ASSERT_EQ(m.GetVertexCount(), 5);
    EXPECT_EQ(m.GetVertex(2)->GetPos(), VxPoint(5, 5, 5));
    ASSERT_EQ(m.GetFaceCount(), 3);
    EXPECT_EQ(m.GetFace(2)->GetVtxId(0), 3);
    const std::string ply = "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty "
                            "float y\nproperty float z\nelement face 1\nproperty list uchar int "
                            "vertex_indices\nend_header\n9 9 9\n0 0 0\n1 0 0\n0 1 0\n3 1 2 3\n";
    ASSERT_TRUE(VxMeshFile::LoadFromMemory(ply.data(), ply.size(), VxMeshFormat::Ply, m, error))
        << error;
    EXPECT_EQ(m.GetVertexCount(), 4);
    EXPECT_EQ(m.GetVertex(0)->GetPos(), VxPoint(9, 9, 9));
    // An STL sliver with two equal corners is dropped; the next triangle keeps its corners.
    const std::string stl = "solid s\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 0 0 0\n"
                            "vertex 1 0 0\nendloop\nendfacet\nfacet normal 0 0 1\nouter loop\n"
                            "vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\nendloop\nendfacet\n"
                            "endsolid s\n";
    ASSERT_TRUE(VxMeshFile::LoadFromMemory(stl.data(), stl.size(), VxMeshFormat::Stl, m, error))
        << error;
    EXPECT_EQ(m.GetVertexCount(), 3);
    EXPECT_EQ(m.GetFaceCount(), 1);

    // Failures leave the target alone.
    const std::string nan = "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty "
                            "float y\nproperty float z\nelement face 1\nproperty list uchar int "
                            "vertex_indices\nend_header\n0 0 0\n1 0 nan\n0 1 0\n3 0 1 2\n";
    EXPECT_FALSE(VxMeshFile::LoadFromMemory(nan.data(), nan.size(), VxMeshFormat::Ply, m, error));
    EXPECT_EQ(error, "vertex 1: coordinate is not finite");
    EXPECT_EQ(m.GetVertexCount(), 3);
    const std::string junk = "solid but not really";
    EXPECT_FALSE(VxMeshFile::LoadFromMemory(junk.data(), 3, VxMeshFormat::Ply, m, error));
    EXPECT_FALSE(VxMeshFile::LoadFromMemory(junk.data(), junk.size(), VxMeshFormat::Stl, m, error));
    EXPECT_FALSE(VxMeshFile::LoadFromMemory(junk.data(), 0, VxMeshFormat::Obj, m, error));
    EXPECT_EQ(m.GetFaceCount(), 1);
}

#ifdef VX_HAVE_SYNTHETIC
TEST(CaseIO, SyntheticPatientRoundTrips) {
    const auto original = VxSyntheticPatient::Generate(1);
    VxCase back;
    ASSERT_NO_FATAL_FAILURE(RoundTrip(*original, "synthetic", back));
    ExpectSameCase(*original, back);
}
#endif

// ASCII STL is checked for its shape before the importer sees it: a damaged file fails with the
// line where the shape breaks and leaves the target mesh alone, a well-formed one of two solids
// loads whole.
TEST(MeshFile, DamagedAsciiStlFailsWithItsLine) {
    const std::string facet = "  facet normal 0 0 1\n    outer loop\n      vertex 0 0 0\n"
                              "      vertex 1 0 0\n      vertex 0 1 0\n    endloop\n  endfacet\n";
    const std::string good =
        "solid a\n" + facet + "endsolid a\nsolid b\n" + facet + facet + "endsolid b\n";
    auto load = [](const std::string& text, VxMesh& mesh, std::string& error) {
        return VxMeshFile::LoadFromMemory(text.data(), text.size(), VxMeshFormat::Stl, mesh, error);
    };
    VxMesh mesh;
    std::string error;
    ASSERT_TRUE(load(good, mesh, error)) << error;
    EXPECT_EQ(mesh.GetFaceCount(), 3);

    // Every cut at a line end short of the last line, but for the one that leaves solid a whole:
    // refused, nothing added to the target.
    const std::size_t firstSolidEnd = good.find("endsolid a\n") + 10;
    for (std::size_t cut = good.find('\n'); cut + 1 < good.size(); cut = good.find('\n', cut + 1)) {
        if (cut == firstSolidEnd) {
            continue;
        }
        VxMesh target;
        target.AddVertex(VxPoint(1, 2, 3));
        std::string why;
        EXPECT_FALSE(load(good.substr(0, cut + 1), target, why)) << cut;
        EXPECT_EQ(why.rfind("line ", 0), 0u) << why;
        EXPECT_EQ(target.GetVertexCount(), 1);
    }
    const struct {
        std::string text;
        const char* error;
    } damaged[] = {
        {"solid empty\nendsolid empty\n", "line 2: a solid without facets"},
        {"solid a\n" + facet.substr(0, facet.find("vertex 1 0 0") + 10) + "\nvertex 0 1 0\n",
         "line 6: expected a number, found \"vertex\""},
        {"solid a\n" + facet + "endsolid a\ntrailing\n", "line 10: expected \"solid\" or the end"},
        {"solid a\n  facet normal 0 0 1\n    outer loop\n      vertex 0 0 0\n    endloop\n",
         "line 5: expected \"vertex\", found \"endloop\""},
    };
    for (const auto& d : damaged) {
        VxMesh target;
        std::string why;
        EXPECT_FALSE(load(d.text, target, why));
        EXPECT_EQ(why.rfind(d.error, 0), 0u) << why;
    }
}
