// VxAuxMarker: a landmark, either a flat square or disc on a plane in model space, or a shape in
// window pixels (y from the top) over everything: square, disc with a short white text in its
// middle, trapezoid narrow at the top, wide rectangle, triangle pointing right. Picture overlays
// use the 2D forms as landmarks that follow their image. A 3D marker can be pinned to the camera
// of its creation, so it stays on the same pixels whatever the camera does.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/CPoint.h>
#include <interfaces/CRect.h>
#include <interfaces/CString.h>
#include <interfaces/VxGdi.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

#include <vector>

class CDC;

enum AuxMarkerType_e : int {
    AuxMarkerType_Rect = 0,
    AuxMarkerType_Rect2D = 1,
    AuxMarkerType_Circle = 2,
    AuxMarkerType_Circle2D = 3,
    AuxMarkerType_None = 4,
    AuxMarkerType_Trapezoid2D = 5,
    AuxMarkerType_RectEx2D = 6,
    AuxMarkerType_Triangle2D = 7,
};

class VxAuxMarker : public VxAuxObject {
public:
    VxAuxMarker() = default;
    VxAuxMarker(const VxAuxMarker&) = default;
    VxAuxMarker& operator=(const VxAuxMarker&) = default;
    ~VxAuxMarker() override = default;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    void DrawHighlight() override;
    // True inside the bounding rectangle of the outline's window points (y from the top).
    bool HitTest(int x, int y) override;

    // On the plane through the centre with this normal, under the current model-view matrix.
    void SetSquare(const VxPoint& centre, const VxVector& normal, double radius);
    void SetCircle(const VxPoint& centre, const VxVector& normal, double radius);
    // Accepted for symmetry with the 2D form; does nothing.
    void SetTrapezoid(const VxPoint& centre, const VxVector& normal, double radius);
    // Window pixels, y from the top.
    void SetSquare(const CPoint& centre, double radius);
    void SetCircle(const CPoint& centre, double radius);
    void SetTrapezoid(const CPoint& centre, double radius);
    void SetRect(const CPoint& centre, double width, double height);
    void SetTriangle(const CPoint& centre, double width, double height);
    void SetType(AuxMarkerType_e type) { m_type = type; }
    AuxMarkerType_e GetType() const { return m_type; }

    void SetFillColor(const VxColor& c) { m_fillColor = c; }
    const VxColor& GetFillColor() const { return m_fillColor; }
    void SetSelFillColor(const VxColor& c) { m_selFillColor = c; }
    const VxColor& GetSelFillColor() const { return m_selFillColor; }
    const VxPoint& GetCenterPoint() const { return m_centre; }
    const std::vector<VxPoint>& GetPoints() const { return m_points; }
    // Rasterises the text shown in a 2D disc; an empty text removes it.
    void SetText(const CString& text);
    const CString& GetText() const { return m_text; }
    int GetTextBitmapWidth() const { return m_glyphWidth[0]; }
    int GetTextBitmapHeight() const { return m_glyphWidth[1]; }
    // The centre becomes `centre` and every outline point shifts by (dx, dy); z stays.
    void Move(const VxPoint& centre, double dx, double dy);
    // Keeps a 3D marker where the model-view matrix of its Set call put it.
    void SetDisableModeViewChange(bool disable) { m_disableViewChange = disable; }
    bool GetDisableModeViewChange() const { return m_disableViewChange; }
    const CRect& GetBounds() const { return m_bounds; }

protected:
    static CRect BoundsRectOfPoints(const std::vector<CPoint>& points);
    static CRect EmptyRect() { return CRect(0, 0, 0, 0); }
    static CRect MakeSquare(const CRect& r, int size) { return MakeSquare(r.CenterPoint(), size); }
    static CRect MakeSquare(const CRect& r, int w, int h) {
        return MakeSquare(r.CenterPoint(), w, h);
    }
    static CRect MakeSquare(const CPoint& c, int size) { return MakeSquare(c, size, size); }
    static CRect MakeSquare(const CPoint& c, int w, int h) {
        return CRect(c.x - w, c.y - h, c.x + w, c.y + h);
    }
    static VxMatrix GetMatrix44(const double* m);
    CPoint GetPointToScreen(const VxPoint& p);
    void SetBoundsScreenRect();
    bool IsBoundsRectUpdate() const { return true; }

private:
    void Set2D(const CPoint& centre, double a, double b, AuxMarkerType_e type);
    void Set3D(const VxPoint& centre, const VxVector& normal, double radius, AuxMarkerType_e type);
    void DrawMarker(bool highlight);
    VxColor DrawColor(bool highlight) const;
    // The window-pixel frame of the 2D forms; returns the frame's height.
    int Begin2D() const;
    static void End2D();
    void DrawAuxMarker_Rect(bool highlight);
    void DrawAuxMarker_Circle(bool highlight);
    void DrawAuxMarker_Rect2D(bool highlight);
    void DrawAuxMarker_RectEx2D(bool highlight) { DrawAuxMarker_Rect2D(highlight); }
    void DrawAuxMarker_Circle2D(bool highlight);
    void DrawAuxMarker_Trapezoid2D(bool highlight);
    void DrawAuxMarker_Triangle2D(bool highlight);
    void DrawText_Circle2D();
    bool CreateBufferFromBmp(const CDC& dc, HBITMAP bitmap);
    void Resize(int width, int height, int trueWidth, int trueHeight);

    VxColor m_fillColor{255, 0, 0, 100};
    VxColor m_selFillColor{0, 0, 255, 100};
    std::vector<VxPoint> m_points;
    bool m_disableViewChange = false;
    CString m_text;
    CRect m_bounds = EmptyRect();
    AuxMarkerType_e m_type = AuxMarkerType_Rect;
    VxPoint m_centre;
    VxVector m_u, m_v, m_normal;
    double m_radius = 0.0;
    double m_viewMatrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    int m_glyphWidth[2] = {0, 0};      // the text bitmap's true width and height
    int m_glyphBitmapSize[2] = {0, 0}; // row width rounded up to 32, and height
    std::vector<BYTE> m_glyphBuffer;
};
