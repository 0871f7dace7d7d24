// VxCamera: the eye frame, frustum and viewport of one view (or of the whole window). A plain
// record filled by the frame driver each frame; it loads nothing into GL itself.
#pragma once

#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

class VxCamera {
public:
    VxCamera() = default;

    void GetFrame(VxPoint& eye, VxPoint& lookAt, VxVector& up) const;
    // The eye moves onto the Z axis: X and Y become 0.
    void SetLocationZ(double z) { m_location.Set(0.0, 0.0, z); }
    double GetLocationZ() const { return m_location[2]; }
    void SetFrustum(double left, double right, double bottom, double top, double zNear,
                    double zFar);
    void GetFrustum(double& left, double& right, double& bottom, double& top, double& zNear,
                    double& zFar) const;
    void SetViewPort(int x, int y, int width, int height);
    void GetViewPort(int& x, int& y, int& width, int& height) const;
    // Always true: there is no setter, every view of the system is orthographic.
    bool IsOrtho() const { return m_ortho; }

private:
    VxPoint m_location;
    VxPoint m_lookAt{0.0, 0.0, 0.0};
    VxVector m_up{0.0, 1.0, 0.0};
    double m_left = 0.0;
    double m_right = 0.0;
    double m_bottom = 0.0;
    double m_top = 0.0;
    double m_near = 0.0;
    double m_far = 0.0;
    int m_x = 0;
    int m_y = 0;
    int m_width = 0;
    int m_height = 0;
    bool m_ortho = true;
};
