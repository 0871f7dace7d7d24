// VxAuxLine2D: a translucent segment between two window pixels (y from the top), drawn once for
// the whole window over everything, as a guide while the user drags. It is never hit.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/CPoint.h>

class VxViewRegion;

class VxAuxLine2D : public VxAuxObject {
public:
    VxAuxLine2D() = default;
    VxAuxLine2D(const VxAuxLine2D&) = default;
    VxAuxLine2D& operator=(const VxAuxLine2D&) = default;
    ~VxAuxLine2D() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    // The view is not used: the line spans the whole window either way.
    virtual void Draw(VxViewRegion* view);
    bool HitTest(int, int) override { return false; }

    void SetPoint(const CPoint& start, const CPoint& stop) {
        m_start = start;
        m_stop = stop;
    }
    const CPoint& GetStartPoint() const { return m_start; }
    const CPoint& GetStopPoint() const { return m_stop; }
    void SetWidth(float width) { m_width = width; }
    float GetWidth() const { return m_width; }

private:
    CPoint m_start;
    CPoint m_stop;
    float m_width = 1.0f;
};
