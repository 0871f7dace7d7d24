// NuCameraSnapshot: what the shader path needs of the camera of the frame being drawn: eye,
// centre and up, projection, model-view (as floats and doubles) and the transform of the view
// being drawn. Written by the frame driver (and the 3D billboard); read by the shader renderer
// and the gap editor. A plain record behind a process-wide accessor, not exported; it does not
// compute anything.
#pragma once

class VxXForm;

class NuCameraSnapshot {
public:
    static NuCameraSnapshot* GetInstance();

    void SetEye(double x, double y, double z);
    void SetCenter(double x, double y, double z);
    void SetUp(double x, double y, double z);
    void SetEyeZ(double z) { m_eyeCenterUp[2] = static_cast<float>(z); }
    void SetProjection(const double* m16);
    // Writes the float and the double copies together.
    void SetModelView(const double* m16);
    void SetViewTransform(const VxXForm* xform) { m_viewTransform = xform; }

    // eye x, y, z, centre x, y, z, up x, y, z.
    const float* GetEyeCenterUp() const { return m_eyeCenterUp; }
    const float* GetProjection() const { return m_projection; }
    const float* GetModelView() const { return m_modelView; }
    const double* GetModelViewD() const { return m_modelViewD; }
    const VxXForm* GetViewTransform() const { return m_viewTransform; }

private:
    NuCameraSnapshot() = default;
    NuCameraSnapshot(const NuCameraSnapshot&) = delete;
    NuCameraSnapshot& operator=(const NuCameraSnapshot&) = delete;

    float m_eyeCenterUp[9] = {0, 0, 0, 0, 0, 0, 0, 1, 0};
    float m_projection[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    float m_modelView[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    double m_modelViewD[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const VxXForm* m_viewTransform = nullptr;
};
