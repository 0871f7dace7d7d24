// VxAuxSurface: a B-spline surface drawn lit by the GLU NURBS renderer. Never hit; answers the
// base kind. A surface GLU refuses draws nothing.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/VxBSplineSurface.h>

class VxAuxSurface : public VxAuxObject {
public:
    VxAuxSurface() = default;
    VxAuxSurface(const VxAuxSurface&) = default;
    VxAuxSurface& operator=(const VxAuxSurface&) = default;
    ~VxAuxSurface() override = default;

    void Draw() override;

    void SetSurface(const VxBSplineSurface& surface) { m_surface = surface; }
    const VxBSplineSurface& GetSurface() const { return m_surface; }

private:
    VxBSplineSurface m_surface;
};
