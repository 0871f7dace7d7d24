// VxOpenGLSelect: which model object lies under a pixel on the fixed-function path: a whole
// entity (through the GL selection buffer, in a pick window a few pixels wide), or a vertex or an
// edge (measured here against the depth under the cursor). The stencil read of
// VxOpenGLRender::ProcessFeedback must already have said what kind of entity the pixel shows.
// It does not pick auxiliary objects (VxAuxRender does), nor anything on the shader path (the
// gap editor picks by colour), and it never changes the model.
#pragma once

#include <interfaces/CPoint.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxPoint.h>

#include <vector>

class VxEdge;
class VxEntity;
class VxMatrix;
class VxMesh;
class VxModel;
class VxObject;
class VxVertex;

class VxOpenGLSelect {
public:
    // Touches no GL; the one selecter is built by VxRenderStatus.
    VxOpenGLSelect();
    virtual ~VxOpenGLSelect();
    VxOpenGLSelect(const VxOpenGLSelect&) = default;
    VxOpenGLSelect& operator=(const VxOpenGLSelect&) = default;

    // Plain store. Must come before the first pick: a pick without a model finds nothing.
    void SetModel(VxModel* model) { m_model = model; }
    VxModel* GetModel() const { return m_model; }

    // The pick at a screen pixel (y from the top), right after a frame and ProcessFeedback.
    VxObject* DoSelect(const CPoint& pixel);
    // The nearest of the given edges on screen, within 10 pixels; measured wholly in screen
    // pixels through the active view.
    VxEdge* SelectEdge(const std::vector<VxEdge*>& edges, const CPoint& pixel);

    // What the drawers read during DrawForSelect: the pixel of the pick, and the projection that
    // was in GL before the pick window replaced it (they project vertices with it).
    const CPoint& GetCursorPoint() const { return m_cursorPoint; }
    const VxLine& GetCursorRay() const { return m_cursorRay; }
    const double* GetSavedProjection() const { return m_savedProjection; }

private:
    friend class VxOpenGLSelectTestAccess;

    void PickCandidates(std::vector<VxEntity*>& candidates);
    bool IsMatchFeedbackType(VxEntity* entity);
    void Prepare();
    void End();
    void RenderScene(const std::vector<VxEntity*>& candidates);
    VxObject* ProcessHits(int count, unsigned int* buffer);
    VxVertex* SelectVertex(const std::vector<VxEntity*>& candidates, const CPoint& pixel);
    VxEdge* SelectEdge(const std::vector<VxEntity*>& candidates, const CPoint& pixel);
    double PointToEdgeDis(VxMesh* mesh, const VxEdge& edge, VxPoint& p);

    // Matrices of the placements that may be picked: every unlimited one in set order, or a
    // single identity where the entity has none.
    static std::vector<VxMatrix> PickPlacements(VxEntity* entity);

    VxModel* m_model = nullptr;
    CPoint m_cursorPoint;
    VxLine m_cursorRay;
    double m_savedProjection[16];
};
