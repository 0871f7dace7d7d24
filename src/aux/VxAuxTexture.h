// VxAuxTexture: a picture (an X-ray, a panoramic film, a face photograph) shown in one view as a
// textured quad whose corners are worked out from a window rectangle each frame, so the picture
// stays on the same pixels while the camera moves, and can be dragged, scaled and zoomed about
// the cursor. Markers given to it keep their place on the picture through all three.
// Pictures are expected in the layout the case reader makes: rows from the bottom up and bytes
// in R, G, B(, A) order, 3 or 4 bytes a pixel; other depths are refused.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/CPoint.h>
#include <interfaces/CRect.h>
#include <interfaces/VxPoint.h>

#include <vector>

class CBitmap;
class VxAuxMarker;
class VxViewRegion;

enum Aux_TextureType_e : int {
    AuxTexture_Plain = 0,     // corners from the caller
    AuxTexture_PlainRect = 1, // corners from the rectangle
    AuxTexture_Movable = 2,   // fitted to its view, dragged, scaled and zoomed
    AuxTexture_Screen = 3,    // fixed screen image; negative coordinates count from the far edge
};

class VxAuxTexture : public VxAuxObject {
public:
    explicit VxAuxTexture(VxViewRegion* view = nullptr);
    // One GL texture has one owner.
    VxAuxTexture(const VxAuxTexture&) = delete;
    VxAuxTexture& operator=(const VxAuxTexture&) = delete;
    ~VxAuxTexture() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    bool HitTest(int x, int y) override;

    // Uploads the picture (needs a current GL context); a movable picture without an earlier
    // one is fitted to its view. False, with nothing changed, for a depth other than 3 or 4
    // bytes a pixel or an empty bitmap.
    bool SetTexture(CBitmap& bitmap);
    bool HadValidImg() const { return m_textureId != kNoTexture; }
    double GetTextureWidth() const { return m_height * m_ratio; }
    double GetTextureHeight() const { return m_height; }
    double GetRatio() const { return m_ratio; }
    void SetCorners(const VxPoint* corners);
    const VxPoint& GetCorner(int i) const { return m_corners[i & 3]; }
    // The rectangle's two corners, window pixels with y from the top.
    void SetScreenPt(const CPoint* points);
    // 0 (left, bottom), 1 (left, top), 2 (right, top), 3 (right, bottom).
    CPoint GetScreenPtns(int index) const;
    const CRect& GetScreenRect() const { return m_screenRect; }
    void Drag(const CPoint& from, const CPoint& to);
    void ScaleImg(double factor);
    void ZoomImg(bool in, CPoint point);
    bool IsMouseOnPic(const CPoint& point, VxPoint& modelPoint);
    void SetMarkers(const std::vector<VxAuxMarker*>& markers);
    void SetType(Aux_TextureType_e type);
    Aux_TextureType_e GetType() const { return m_type; }
    void SetRelatedView(VxViewRegion* view) { m_view = view; }
    VxViewRegion* GetRelatedView() const { return m_view; }
    void GetLeftBPos(double& left, double& bottom) const {
        left = m_left;
        bottom = m_bottom;
    }
    double GetZoom() const { return m_zoom; }

    static constexpr unsigned kNoTexture = 0xFFFFFFFFu;

private:
    void PreDraw();
    void CalCornersByScrPt();
    void CalScreenPtByImg();
    void UpdateMarker(int i);

    unsigned m_textureId = kNoTexture;
    VxPoint m_corners[4];
    double m_ratio = 1.0;
    double m_height = 0.0;
    CRect m_screenRect{0, 0, 0, 0};
    CRect m_lastRect{0, 0, 0, 0};
    Aux_TextureType_e m_type = AuxTexture_Plain;
    double m_zoom = 1.0;
    double m_left = 0.0;
    double m_bottom = 0.0;
    std::vector<VxAuxMarker*> m_markers;
    std::vector<double> m_xShares;
    std::vector<double> m_yShares;
    VxViewRegion* m_view = nullptr;
};
