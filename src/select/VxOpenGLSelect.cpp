// VxOpenGLSelect: candidates by stencil kind and cursor ray, vertex and edge picks measured
// against the depth buffer, and entity picks through the GL selection buffer.
#include <select/VxOpenGLSelect.h>

#include <GL/glew.h>

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxEdge.h>
#include <interfaces/VxEntity.h>
#include <interfaces/VxFace.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTransformMatrix.h>
#include <interfaces/VxVertex.h>
#include <mesh/VxDrawer.h>
#include <mesh/VxDrawerMgr.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxSelectNames.h>
#include <views/VxCamera.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>

namespace {

// The selection buffer lives on the stack of DoSelect; an overflow gives a negative hit count,
// which counts as no hit.
constexpr int kSelectBufferSize = 512;
// Every hit record is read as four words, whatever its own name count says (see ProcessHits).
constexpr int kHitRecordStride = 4;
constexpr unsigned int kNoDepth = 0xFFFFFFFFu;
// Side of the pick window in pixels.
constexpr int kPickWindow = 8;
// Manhattan pick tolerance of vertex and edge picks, in pixels.
constexpr double kPickTolerance = 10.0;
constexpr double kFarAway = 1e10;

VxRenderStatus* Status() {
    return VxRenderStatus::GetInstance();
}

VxOpenGLRender* Render() {
    return VxRenderStatus::GetInstance()->GetRender();
}

VxPoint ScreenPoint(const CPoint& p) {
    return VxPoint(p.x, p.y, 0.0);
}

} // namespace

VxOpenGLSelect::VxOpenGLSelect() {
    for (int i = 0; i < 16; ++i) {
        m_savedProjection[i] = (i % 5 == 0) ? 1.0 : 0.0;
    }
}

VxOpenGLSelect::~VxOpenGLSelect() = default;

// One pick:
//   1 store the pixel and its ray   2 candidates: entities of the stencil's kind the ray hits
//   3 vertex select type: nearest vertex   4 edge select type: nearest edge around it
//   5 otherwise the candidates are drawn with names into the selection buffer in a pick
//     window around the pixel, and the nearest hit record wins
VxObject* VxOpenGLSelect::DoSelect(const CPoint& pixel) {
    m_cursorPoint = pixel;
    m_cursorRay = Render()->GetCursorRay(pixel);

    std::vector<VxEntity*> candidates;
    PickCandidates(candidates);

    if (Status()->ExistSelectType(ObjectType_Vertex)) {
        return SelectVertex(candidates, pixel);
    }
    if (Status()->ExistSelectType(ObjectType_Edge)) {
        return SelectEdge(candidates, pixel);
    }

    GLuint buffer[kSelectBufferSize];
    Prepare();
    glSelectBuffer(kSelectBufferSize, buffer);
    glRenderMode(GL_SELECT);
    RenderScene(candidates);
    const GLint hits = glRenderMode(GL_RENDER);
    End();
    if (hits < 1) {
        return nullptr;
    }
    return ProcessHits(hits, buffer);
}

// Exact types only: a skull or a wedge, though drawn with stencil 1, is no candidate unless its
// type is the plain mesh's.
bool VxOpenGLSelect::IsMatchFeedbackType(VxEntity* entity) {
    const ObjectType_e type = entity->GetObjectType();
    switch (Status()->GetFeedbackType()) {
    case FeedbackType_Mesh:
        return type == ObjectType_Mesh;
    case FeedbackType_Tooth:
        return type == ObjectType_Tooth;
    case FeedbackType_Gum:
        return type == ObjectType_Gum;
    case FeedbackType_UpperJaw:
    case FeedbackType_LowerJaw:
        return type == ObjectType_Jaw;
    case FeedbackType_Attachment:
        return type == ObjectType_Attachment;
    default:
        return false;
    }
}

std::vector<VxMatrix> VxOpenGLSelect::PickPlacements(VxEntity* entity) {
    std::vector<VxMatrix> placements;
    const std::set<DrawInfo_s> infos = VxTransformMatrix::GetInstance()->GetDrawInfos(entity);
    if (infos.empty()) {
        placements.push_back(VxMatrix::Identity(4));
        return placements;
    }
    // Limited placements are ghosts of a limit position and are never picked.
    for (const DrawInfo_s& info : infos) {
        if (!info.limited) {
            placements.push_back(info.matrix);
        }
    }
    return placements;
}

// An entity hit in two placements stands twice in the list, on purpose.
void VxOpenGLSelect::PickCandidates(std::vector<VxEntity*>& candidates) {
    if (m_model == nullptr) {
        return;
    }
    std::vector<VxEntity*> entities;
    m_model->GetEntities(entities);
    for (VxEntity* entity : entities) {
        if (entity == nullptr || !entity->IsVisible() || entity->IsDeleted() ||
            entity->IsSheltered() || !IsMatchFeedbackType(entity)) {
            continue;
        }
        for (const VxMatrix& placement : PickPlacements(entity)) {
            if (entity->IsHitByRay(m_cursorRay, placement)) {
                candidates.push_back(entity);
            }
        }
    }
}

// The pick window: an orthographic box of 8 x 8 pixels around the cursor in the view units of
// the frame (the shorter side of the active view spans -1 to 1), with the frame's near and far.
// The base name 0 is pushed before glRenderMode(GL_SELECT), as it always was. GL ignores name
// calls outside select mode, so in practice the stack starts empty, each record carries just the
// one name a drawer pushed, and the four-word reading of ProcessHits lines up with the records.
void VxOpenGLSelect::Prepare() {
    glGetDoublev(GL_PROJECTION_MATRIX, m_savedProjection);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();

    VxViewManager* manager = VxViewManager::GetInstance();
    VxViewRegion* view = manager->GetActiveView();
    int W = 0;
    int H = 0;
    manager->GetTotalViewSize(W, H);
    const int ox = view != nullptr ? view->Origin().x : 0;
    const int oy = view != nullptr ? view->Origin().y : 0;
    const int w = view != nullptr ? view->Width() : W;
    const int h = view != nullptr ? view->Height() : H;
    const int m = std::max(1, std::min(w, h));
    const double k = 2.0 / m;

    const int cx = static_cast<int>(w / 2.0 + ox);
    const int cy = static_cast<int>(H - oy - h / 2.0);
    const int left = m_cursorPoint.x - cx - kPickWindow / 2;
    const int right = left + kPickWindow;
    const int bottom = cy - m_cursorPoint.y - kPickWindow / 2;
    const int top = bottom + kPickWindow;

    const double z = Render()->GetCamera()->GetLocationZ();
    glOrtho(left * k, right * k, bottom * k, top * k, 1.0, 2.0 * z + 1.0);

    // Names stand for objects only within one pick, and the drawers project near vertices with
    // the frame's projection, not the pick window.
    VxSelectNames::Reset();
    VxFixedDrawSteps::SetSelectProjection(m_savedProjection);

    glInitNames();
    glPushName(0);
}

// Leaves the matrix mode at projection; the next frame sets what it needs.
void VxOpenGLSelect::End() {
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(m_savedProjection);
}

// The fixed-function drawers name what they draw, whichever path draws the frame.
void VxOpenGLSelect::RenderScene(const std::vector<VxEntity*>& candidates) {
    VxViewRegion* view = VxViewManager::GetInstance()->GetActiveView();
    for (VxEntity* entity : candidates) {
        VxDrawer* drawer = VxDrawerMgr::GetInstance()->GetDrawer(entity->GetObjectType());
        if (drawer == nullptr) {
            continue;
        }
        glMatrixMode(GL_MODELVIEW);
        if (view != nullptr) {
            glLoadMatrixd(view->GetModelViewMatrix());
        }
        drawer->DrawForSelect(entity, m_cursorPoint);
    }
}

// Hit records are read four words apart (name count, minimum depth, maximum depth, name), not
// by their own name count; this loop is kept exactly as it is. A record with two names is five
// words long, so from there on the words are read out of step: its fourth word (the bottom name)
// is taken as the name, and the next "record" starts on its last word. A name that is nothing of
// the pick gives null rather than a wild pointer. Among equal depths the later record wins.
VxObject* VxOpenGLSelect::ProcessHits(int count, unsigned int* buffer) {
    unsigned int bestDepth = kNoDepth;
    unsigned int bestName = 0;
    for (int i = 0; i < count; ++i) {
        const unsigned int* record = buffer + kHitRecordStride * i;
        const unsigned int minDepth = record[1];
        const unsigned int name = record[3];
        if (name == 0) {
            continue;
        }
        if (!(minDepth > bestDepth)) {
            bestDepth = minDepth;
            bestName = name;
        }
    }
    return VxSelectNames::ObjectOf(bestName);
}

// The vertex of the candidates nearest in the model to the surface point under the pixel, if it
// lies within 10 pixels (|dx| + |dy|) of the pixel on screen. The first of equal distances
// stays.
VxVertex* VxOpenGLSelect::SelectVertex(const std::vector<VxEntity*>& candidates,
                                       const CPoint& pixel) {
    VxOpenGLRender* render = Render();
    const VxPoint m = render->MapScreenPointToModel(pixel);
    double best = kFarAway;
    VxVertex* bestVertex = nullptr;
    VxMatrix bestPlacement = VxMatrix::Identity(4);
    for (VxEntity* entity : candidates) {
        if (entity == nullptr || !entity->IsKindOf(ObjectType_Mesh)) {
            continue;
        }
        VxMesh* mesh = static_cast<VxMesh*>(entity);
        for (const VxMatrix& placement : PickPlacements(entity)) {
            for (VxVertex& vertex : mesh->GetVertices()) {
                const VxPoint p = placement.Transform(vertex.GetPos());
                const double d = m.SquareDistanceToPoint(p);
                if (best > d) {
                    best = d;
                    bestVertex = &vertex;
                    bestPlacement = placement;
                }
            }
        }
    }
    if (bestVertex == nullptr) {
        return nullptr;
    }
    const CPoint s = render->MapModelPointToScreen(bestPlacement.Transform(bestVertex->GetPos()));
    const double manhattan = std::abs(pixel.x - s.x) + std::abs(pixel.y - s.y);
    if (manhattan > kPickTolerance) {
        return nullptr;
    }
    return bestVertex;
}

// Through the nearest vertex: of the edges of the faces around it, the one nearest to the surface
// point under the pixel. The later of equal distances wins. The distances are taken to the
// mesh's own vertex positions, without the placement.
VxEdge* VxOpenGLSelect::SelectEdge(const std::vector<VxEntity*>& candidates, const CPoint& pixel) {
    VxVertex* vertex = SelectVertex(candidates, pixel);
    if (vertex == nullptr || m_model == nullptr) {
        return nullptr;
    }
    VxMesh* mesh = m_model->GetParentMesh(vertex);
    if (mesh == nullptr) {
        return nullptr;
    }
    VxPoint m = Render()->MapScreenPointToModel(pixel);

    std::vector<int> faces;
    mesh->GetAdjacentFaces(vertex->GetVtxId(), faces, false);
    std::set<int> edgeIds;
    for (int f : faces) {
        const VxFace* face = mesh->GetFace(f);
        if (face == nullptr) {
            continue;
        }
        for (int k = 0; k < 3; ++k) {
            edgeIds.insert(face->GetEdgeId(k));
        }
    }

    double best = kFarAway;
    VxEdge* bestEdge = nullptr;
    for (int id : edgeIds) {
        VxEdge* edge = mesh->GetEdge(id);
        if (edge == nullptr) {
            continue;
        }
        const double d = PointToEdgeDis(mesh, *edge, m);
        if (best >= d) {
            best = d;
            bestEdge = edge;
        }
    }
    return bestEdge;
}

// Distance from p to the segment of the edge: to the foot of the perpendicular where that falls
// strictly inside, otherwise to the nearer end.
double VxOpenGLSelect::PointToEdgeDis(VxMesh* mesh, const VxEdge& edge, VxPoint& p) {
    int v0 = -1;
    int v1 = -1;
    edge.Get2VtxId(v0, v1);
    const VxVertex* va = mesh->GetVertex(v0);
    const VxVertex* vb = mesh->GetVertex(v1);
    if (va == nullptr || vb == nullptr) {
        return kFarAway;
    }
    const VxPoint a = va->GetPos();
    const VxPoint b = vb->GetPos();
    const VxPoint q = VxLine(a, a - b).ProjectPoint(p, nullptr);
    const double toEnds = std::min(p.DistanceToPoint(a), p.DistanceToPoint(b));
    if (q == a || q == b) {
        return toEnds;
    }
    const double dot = (q - a) % (q - b);
    if (dot >= 0.0) {
        return toEnds;
    }
    return p.DistanceToPoint(q);
}

// On screen with z = 0: an edge whose foot of the perpendicular falls beyond both ends is passed
// over even when one of its ends is the nearest thing; an edge of zero screen length counts as a
// point. The later of equal distances wins.
VxEdge* VxOpenGLSelect::SelectEdge(const std::vector<VxEdge*>& edges, const CPoint& pixel) {
    VxOpenGLRender* render = Render();
    double best = kFarAway;
    VxEdge* bestEdge = nullptr;
    const VxPoint c = ScreenPoint(pixel);
    for (VxEdge* edge : edges) {
        if (edge == nullptr || m_model == nullptr) {
            continue;
        }
        VxMesh* mesh = m_model->GetParentMesh(edge);
        if (mesh == nullptr) {
            continue;
        }
        int v0 = -1;
        int v1 = -1;
        edge->Get2VtxId(v0, v1);
        const VxVertex* va = mesh->GetVertex(v0);
        const VxVertex* vb = mesh->GetVertex(v1);
        if (va == nullptr || vb == nullptr) {
            continue;
        }
        const VxPoint a = ScreenPoint(render->MapModelPointToScreen(va->GetPos()));
        const VxPoint b = ScreenPoint(render->MapModelPointToScreen(vb->GetPos()));
        double d = 0.0;
        if (a == b) {
            d = std::fabs(c.x() - a.x()) + std::fabs(c.y() - a.y());
        } else {
            const VxPoint q = VxLine(a, a - b).ProjectPoint(c, nullptr);
            if ((q - a) % (q - b) > 0.0) {
                continue;
            }
            d = std::fabs(c.x() - q.x()) + std::fabs(c.y() - q.y());
        }
        if (best >= d) {
            best = d;
            bestEdge = edge;
        }
    }
    return best < kPickTolerance ? bestEdge : nullptr;
}
