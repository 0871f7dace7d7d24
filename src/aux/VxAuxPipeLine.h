// VxAuxPipeLine: a tube along a B-spline curve, built once as a mesh and drawn from GPU buffers,
// for long curves such as arch wires. Hit exactly where the cursor ray meets the tube.
#pragma once

#include <aux/VxAuxObject.h>

class VxBSplineCurve;
class VxMesh;

// Tube radius: 0.15 for the thick style, 0.05 otherwise.
enum AuxPipeLineStyle_e : int {
    AuxPipeLineStyle_Thick = 0,
    AuxPipeLineStyle_Thin = 1,
};

// Sampling step along the curve's parameter: 0.05, 0.01, else 0.002.
enum AuxPipeLineDensity : int {
    AuxPipeLineDensity_Coarse = 0,
    AuxPipeLineDensity_Normal = 1,
    AuxPipeLineDensity_Fine = 2,
};

class VxAuxPipeLine : public VxAuxObject {
public:
    VxAuxPipeLine() = default;
    // Thin style, normal density, mesh built at once.
    explicit VxAuxPipeLine(const VxBSplineCurve* curve);
    // The mesh is copied: each pipe frees its own.
    VxAuxPipeLine(const VxAuxPipeLine& other);
    VxAuxPipeLine& operator=(const VxAuxPipeLine& other);
    ~VxAuxPipeLine() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override;
    bool HitTest(int x, int y) override;

    // Rebuilds the tube; null leaves no mesh. Style and density apply from here on.
    void SetBSplineCurve(const VxBSplineCurve* curve);
    // Frees the mesh and its buffers.
    void ClearMesh();
    void SetStyle(AuxPipeLineStyle_e style) { m_style = style; }
    void SetDensity(AuxPipeLineDensity density) { m_density = density; }
    VxMesh* GetMesh() const { return m_mesh; }

    static double RadiusOf(int style) { return style == 0 ? 0.15 : 0.05; }
    static double StepOf(int density) {
        return density == 0 ? 0.05 : (density == 1 ? 0.01 : 0.002);
    }

private:
    void DrawCore(int mode);
    // Vertex and normal arrays from the mesh's buffers, one draw call.
    void DrawBuffers() const;

    VxMesh* m_mesh = nullptr;
    AuxPipeLineStyle_e m_style = AuxPipeLineStyle_Thin;
    AuxPipeLineDensity m_density = AuxPipeLineDensity_Normal;
};
