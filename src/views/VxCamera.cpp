// VxCamera: plain accessors.
#include <views/VxCamera.h>

void VxCamera::GetFrame(VxPoint& eye, VxPoint& lookAt, VxVector& up) const {
    eye = m_location;
    lookAt = m_lookAt;
    up = m_up;
}

void VxCamera::SetFrustum(double left, double right, double bottom, double top, double zNear,
                          double zFar) {
    m_left = left;
    m_right = right;
    m_bottom = bottom;
    m_top = top;
    m_near = zNear;
    m_far = zFar;
}

void VxCamera::GetFrustum(double& left, double& right, double& bottom, double& top, double& zNear,
                          double& zFar) const {
    left = m_left;
    right = m_right;
    bottom = m_bottom;
    top = m_top;
    zNear = m_near;
    zFar = m_far;
}

void VxCamera::SetViewPort(int x, int y, int width, int height) {
    m_x = x;
    m_y = y;
    m_width = width;
    m_height = height;
}

void VxCamera::GetViewPort(int& x, int& y, int& width, int& height) const {
    x = m_x;
    y = m_y;
    width = m_width;
    height = m_height;
}
