// VxFilledWedge: a see-through filler mesh between teeth. The left tooth decides whether it
// belongs to the upper or the lower jaw. The drawers only know the two concrete kinds,
// VxFilledWedgeTwoTooth and VxFilledWedgeTriTooth, told apart by dynamic_cast; to everything else
// a wedge is a plain mesh. Teeth are the host's.
#pragma once

#include <interfaces/VxMesh.h>

class VxTooth;

class VxFilledWedge : public VxMesh {
public:
    VxFilledWedge() = default;
    explicit VxFilledWedge(VxTooth* left, VxTooth* right = nullptr)
        : m_left(left), m_right(right) {}
    ~VxFilledWedge() override;

    VxTooth* GetToothLeft() const { return m_left; }
    void SetToothLeft(VxTooth* tooth) { m_left = tooth; }
    VxTooth* GetToothRight() const { return m_right; }
    void SetToothRight(VxTooth* tooth) { m_right = tooth; }

private:
    VxTooth* m_left = nullptr;
    VxTooth* m_right = nullptr;
};
