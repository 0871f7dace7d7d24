// VxAuxBillBoard: a frame on the screen of the active view. Type 0 is a black outline placed at
// a fraction of the view, type 1 and above a translucent blue panel placed in pixels (y from the
// top). It only draws.
#pragma once

#include <aux/VxAuxObject.h>

enum BillBoardType : int {
    BillBoardType_Outline = 0, // x and y are fractions of the view
    BillBoardType_Panel = 1,   // x and y are pixels, y from the top
};

class VxAuxBillBoard : public VxAuxObject {
public:
    VxAuxBillBoard() = default;
    VxAuxBillBoard(const VxAuxBillBoard&) = default;
    VxAuxBillBoard& operator=(const VxAuxBillBoard&) = default;
    ~VxAuxBillBoard() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;

    void Set(double x, double y, int width, int height) {
        m_x = x;
        m_y = y;
        m_width = width;
        m_height = height;
    }
    void SetType(BillBoardType type) { m_type = type; }
    BillBoardType GetType() const { return m_type; }
    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }

private:
    double m_x = 0.0;
    double m_y = 0.0;
    int m_width = 0;
    int m_height = 0;
    BillBoardType m_type = BillBoardType_Outline;
};
