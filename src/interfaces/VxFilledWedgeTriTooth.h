// VxFilledWedgeTriTooth: a wedge spanning three teeth, left, middle and right (a gap left by a
// missing or narrow tooth between two others).
#pragma once

#include <interfaces/VxFilledWedge.h>

class VxFilledWedgeTriTooth : public VxFilledWedge {
public:
    VxFilledWedgeTriTooth() = default;
    VxFilledWedgeTriTooth(VxTooth* left, VxTooth* middle, VxTooth* right)
        : VxFilledWedge(left, right), m_middle(middle) {}
    ~VxFilledWedgeTriTooth() override;

    VxTooth* GetToothMiddle() const { return m_middle; }
    void SetToothMiddle(VxTooth* tooth) { m_middle = tooth; }

private:
    VxTooth* m_middle = nullptr;
};
