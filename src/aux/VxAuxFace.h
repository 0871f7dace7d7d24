// VxAuxFace: chosen triangles of a mesh drawn over it, either translucent in one colour (a
// collision patch) or smoothly coloured per vertex (a depth or distance map). It follows the
// mesh's first placement at the current step. Never hit; its priority is low so that objects on
// top of it are tested first.
#pragma once

#include <aux/VxAuxObject.h>

#include <map>
#include <vector>

class VxMatrix;
class VxMesh;

class VxAuxFace : public VxAuxObject {
public:
    VxAuxFace() = default;
    explicit VxAuxFace(VxMesh* mesh);
    VxAuxFace(const VxAuxFace&) = default;
    VxAuxFace& operator=(const VxAuxFace&) = default;
    ~VxAuxFace() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;

    void SetMesh(VxMesh* mesh) { m_mesh = mesh; }
    VxMesh* GetMesh() const { return m_mesh; }
    // Indices into the mesh's faces.
    void SetFaces(const std::vector<int>& faces) { m_faces = faces; }
    void ClearFaces() { m_faces.clear(); }
    const std::vector<int>& GetFaces() const { return m_faces; }
    void SetTransparent(bool transparent) { m_transparent = transparent; }
    // The colour of the translucent style (hides the base colour on purpose).
    void SetColor(const VxColor& color) { m_faceColor = color; }
    const VxColor& GetFaceColor() const { return m_faceColor; }
    // A later colour of the same vertex replaces the earlier one.
    void AddColorVtx(int vertex, const VxColor& color) { m_vertexColors[vertex] = color; }

protected:
    void DrawCore(const VxMatrix* placement);

private:
    // Each vertex of the listed triangles, as (id, position); unknown ids are skipped.
    template <typename Visit> void ForEachVertex(Visit visit) const;
    // The listed triangles, each vertex coloured by `colourOf`.
    template <typename ColourOf> void Triangles(ColourOf colourOf) const;
    // The same through the shader renderer; `colourOf` returns the vertex's VxColor.
    template <typename ColourOf>
    void ShaderTriangles(ColourOf colourOf, const VxMatrix* placement) const;

    VxMesh* m_mesh = nullptr;
    std::vector<int> m_faces;
    bool m_transparent = false;
    VxColor m_faceColor;
    std::map<int, VxColor> m_vertexColors;
};
