// VxMesh: an indexed triangle mesh with the topology the renderer and selection read: vertices,
// faces, unique edges, vertex-to-face adjacency, face normals and lazily cached area-weighted
// vertex normals, plus line intersection over a bounding-volume hierarchy. It knows nothing of
// GL: the update flag only tells the buffer caches that the geometry changed.
//
// Building: AddVertex and AddFace (or SetMeshData), then Finish, which builds edges, adjacency
// and face normals. Editing positions through SetVertexPos or Transform keeps the caches right;
// after writing through the non-const GetVertices/GetFaces call NotifyGeometryChanged (positions)
// or Finish (connectivity).
#pragma once

#include <interfaces/VxBBox.h>
#include <interfaces/VxEdge.h>
#include <interfaces/VxEntity.h>
#include <interfaces/VxFace.h>
#include <interfaces/VxModelEnums.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>
#include <interfaces/VxVertex.h>

#include <functional>
#include <memory>
#include <vector>

class VxBSplineCurve;
class VxFrame;
class VxLine;
class VxMatrix;
struct VxMeshBvh;

class VxMesh : public VxEntity {
public:
    VxMesh();
    VxMesh(const VxMesh& other);
    VxMesh& operator=(const VxMesh& other);
    ~VxMesh() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    // Writes flags, vertices and faces (with styles); Read rebuilds the topology with Finish.
    void Write(std::ostream& os, bool withTag, int version) const override;
    bool Read(VxFStream& in, bool withTag, int version) override;
    // Box reject, then the exact triangle test through the hierarchy.
    bool IsHitByRay(const VxLine& ray, const VxMatrix& placement) const override;
    VxBBox GetBBox() const override;
    // Moves all vertices by m (normals follow its linear part); sets the update flag.
    void Transform(const VxMatrix& m) override;

    // ---- building ----
    void Clear();
    void Reserve(int vertexCount, int faceCount);
    // Returns the new vertex id.
    int AddVertex(const VxPoint& pos);
    // Returns the new face id, or -1 (nothing added) when an id is out of range or repeated.
    int AddFace(int v0, int v1, int v2, FaceStyle_e style = FaceStyle_Normal);
    // Replaces the whole mesh: three vertex ids a triangle. Bad triangles are dropped. Finishes.
    void SetMeshData(const std::vector<VxPoint>& positions, const std::vector<int>& triangles);
    // Finishes a mesh built by AddVertex/AddFace: unique edges, edge ids of the faces, vertex-to-
    // face adjacency, face normals; drops the cached vertex normals, box and hierarchy and sets
    // the update flag. Safe to call again. Virtual so that derived meshes can add their own
    // derived data.
    virtual void Finish();
    // Call after moving vertices through the non-const accessors: face normals are recomputed,
    // cached vertex normals, box and hierarchy dropped, the update flag set.
    void NotifyGeometryChanged();
    void SetVertexPos(int vertexId, const VxPoint& pos);

    // ---- reading ----
    bool IsEmpty() const { return m_faces.empty(); }
    int GetVertexCount() const { return static_cast<int>(m_vertices.size()); }
    int GetEdgeCount() const { return static_cast<int>(m_edges.size()); }
    int GetFaceCount() const { return static_cast<int>(m_faces.size()); }
    const std::vector<VxVertex>& GetVertices() const { return m_vertices; }
    std::vector<VxVertex>& GetVertices() { return m_vertices; }
    const std::vector<VxFace>& GetFaces() const { return m_faces; }
    std::vector<VxFace>& GetFaces() { return m_faces; }
    const std::vector<VxEdge>& GetEdges() const { return m_edges; }
    // Null for an id out of range.
    VxVertex* GetVertex(int id);
    const VxVertex* GetVertex(int id) const;
    VxEdge* GetEdge(int id);
    const VxEdge* GetEdge(int id) const;
    VxFace* GetFace(int id);
    const VxFace* GetFace(int id) const;
    // Area-weighted unit normal of a vertex, computed for all vertices at the first call after a
    // change and cached. Zero vector for an id out of range or an isolated vertex.
    VxVector GetVertexNormal(int vertexId) const;
    // Ids of the faces around a vertex, ascending. With append false the list is cleared first;
    // with true the ids are added at its end. False (list cleared or left as it was) for an id out
    // of range.
    bool GetAdjacentFaces(int vertexId, std::vector<int>& faces, bool append) const;

    // True after any change of geometry, and for a new mesh; the buffer caches clear it once they
    // have rebuilt.
    bool IsUpdateVBO() const { return m_updateVBO; }
    void SetUpdateVBO(bool update) { m_updateVBO = update; }

    // All points where the unbounded line meets the mesh, in the mesh's own coordinates, sorted
    // by the parameter along the line's direction. A hit exactly on a shared edge or vertex is
    // reported once. Clears `points` first; true when there is at least one.
    bool IntersectMeshWithLine(const VxLine& line, std::vector<VxPoint>& points) const;
    // The same with the line parameters of the hits.
    bool IntersectMeshWithLine(const VxLine& line, std::vector<VxPoint>& points,
                               std::vector<double>& parameters) const;

    // A closed tube of `radius` around the curve, sampled every `step` of its parameter: one ring
    // of vertices a sample, oriented by a rotation-minimising frame, flat end caps on an open
    // curve, rings joined round on a closed one. The caller owns the (finished) result; it is
    // never null, and an empty mesh for a non-positive radius or step or an empty curve.
    static VxMesh* CreatePipeMesh(double radius, const VxBSplineCurve& curve, double step);
    // The same over any curve given as a function of t in [t0, t1].
    static VxMesh* CreatePipeMesh(double radius, const std::function<VxPoint(double)>& curve,
                                  double t0, double t1, double step, bool closed,
                                  int sides = kPipeSides);
    static constexpr int kPipeSides = 16;

protected:
    // Text form of a frame (validity, origin, X and Y), shared by the meshes that carry one.
    static void WriteFrame(std::ostream& os, const VxFrame& frame);
    static bool ReadFrame(VxFStream& in, VxFrame& frame);

private:
    void InvalidateCaches();
    void ComputeFaceNormal(VxFace& f) const;
    void EnsureVertexNormals() const;
    const VxMeshBvh& Bvh() const;

    std::vector<VxVertex> m_vertices;
    std::vector<VxFace> m_faces;
    std::vector<VxEdge> m_edges;
    // Vertex-to-face adjacency, compressed: faces of vertex v are
    // m_adjFaces[m_adjStart[v] .. m_adjStart[v + 1]).
    std::vector<int> m_adjStart;
    std::vector<int> m_adjFaces;
    bool m_updateVBO = true;

    // Caches, rebuilt on demand after a change; single-threaded like the rest of the library.
    mutable std::vector<VxVector> m_vertexNormals;
    mutable bool m_vertexNormalsValid = false;
    mutable VxBBox m_bbox;
    mutable bool m_bboxValid = false;
    mutable std::unique_ptr<VxMeshBvh> m_bvh;
};
