// NuCameraSnapshot: plain stores; floats are narrowed copies for the GLSL uniforms.
#include <frame/NuCameraSnapshot.h>

NuCameraSnapshot* NuCameraSnapshot::GetInstance() {
    static NuCameraSnapshot instance;
    return &instance;
}

void NuCameraSnapshot::SetEye(double x, double y, double z) {
    m_eyeCenterUp[0] = static_cast<float>(x);
    m_eyeCenterUp[1] = static_cast<float>(y);
    m_eyeCenterUp[2] = static_cast<float>(z);
}

void NuCameraSnapshot::SetCenter(double x, double y, double z) {
    m_eyeCenterUp[3] = static_cast<float>(x);
    m_eyeCenterUp[4] = static_cast<float>(y);
    m_eyeCenterUp[5] = static_cast<float>(z);
}

void NuCameraSnapshot::SetUp(double x, double y, double z) {
    m_eyeCenterUp[6] = static_cast<float>(x);
    m_eyeCenterUp[7] = static_cast<float>(y);
    m_eyeCenterUp[8] = static_cast<float>(z);
}

void NuCameraSnapshot::SetProjection(const double* m16) {
    for (int i = 0; i < 16; ++i) {
        m_projection[i] = static_cast<float>(m16[i]);
    }
}

void NuCameraSnapshot::SetModelView(const double* m16) {
    for (int i = 0; i < 16; ++i) {
        m_modelViewD[i] = m16[i];
        m_modelView[i] = static_cast<float>(m16[i]);
    }
}
