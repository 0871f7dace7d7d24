// VxAuxTexture: upload, the rectangle's arithmetic, the quad and the picture hit.
#include <aux/VxAuxTexture.h>

#include <GL/glew.h>

#include <aux/VxAuxMarker.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CBitmap.h>
#include <interfaces/VxLine.h>
#include <interfaces/VxPlane.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

VxAuxTexture::VxAuxTexture(VxViewRegion* view)
    : m_view(view != nullptr ? view : VxViewManager::GetInstance()->GetActiveView()) {
    m_hitPriority = AuxHitPriority_Lowest;
}

VxAuxTexture::~VxAuxTexture() {
    if (m_textureId != kNoTexture) {
        glDeleteTextures(1, &m_textureId);
    }
}

ObjectType_e VxAuxTexture::GetObjectType() const {
    return ObjectType_AuxTexture;
}

bool VxAuxTexture::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxTexture || VxAuxObject::IsKindOf(type);
}

void VxAuxTexture::SetType(Aux_TextureType_e type) {
    m_type = type;
    if (type == AuxTexture_Screen) {
        m_hitable = false;
        m_front = true;
    }
}

bool VxAuxTexture::SetTexture(CBitmap& bitmap) {
    BITMAP bm{};
    if (bitmap.GetBitmap(&bm) == 0 || bm.bmWidth <= 0 || bm.bmHeight <= 0) {
        return false;
    }
    const int bpp = bm.bmBitsPixel / 8;
    // Greyscale and 16-bit pictures would be read as three or four bytes a pixel, past the end
    // of their rows: refused rather than shown as noise.
    if (bpp != 3 && bpp != 4) {
        return false;
    }
    const bool hadTexture = m_textureId != kNoTexture;
    if (hadTexture) {
        glDeleteTextures(1, &m_textureId);
        m_textureId = kNoTexture;
    }
    m_left = 0.0;
    m_bottom = 0.0;
    m_zoom = 1.0;
    const int w = bm.bmWidth;
    const int h = bm.bmHeight;
    // The bitmap's rows come padded to 16 bits; GL gets them tight, with an alignment of 1 (an
    // alignment of 3 is not a valid GL value).
    const size_t padded = size_t((w * bpp + 1) & ~1);
    std::vector<unsigned char> rows(padded * size_t(h));
    bitmap.GetBitmapBits(DWORD(rows.size()), rows.data());
    std::vector<unsigned char> tight(size_t(w) * bpp * size_t(h));
    for (int y = 0; y < h; ++y) {
        std::copy_n(rows.data() + padded * size_t(y), size_t(w) * bpp,
                    tight.data() + size_t(w) * bpp * size_t(y));
    }
    GLuint id = 0;
    glGenTextures(1, &id);
    m_textureId = id;
    GLint alignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    glBindTexture(GL_TEXTURE_2D, id);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, bpp == 3 ? GL_RGB : GL_RGBA, w, h, 0,
                 bpp == 3 ? GL_RGB : GL_RGBA, GL_UNSIGNED_BYTE, tight.data());
    glBindTexture(GL_TEXTURE_2D, GLuint(bound));
    glPixelStorei(GL_UNPACK_ALIGNMENT, alignment);
    m_height = h;
    m_ratio = double(w) / h;
    if (m_type == AuxTexture_Movable && !hadTexture) {
        CalScreenPtByImg();
    }
    return true;
}

void VxAuxTexture::SetCorners(const VxPoint* corners) {
    if (corners == nullptr) {
        return;
    }
    for (int i = 0; i < 4; ++i) {
        m_corners[i] = corners[i];
    }
}

void VxAuxTexture::SetScreenPt(const CPoint* points) {
    if (points != nullptr) {
        m_screenRect = CRect(points[0].x, points[0].y, points[1].x, points[1].y);
    }
}

CPoint VxAuxTexture::GetScreenPtns(int index) const {
    const CRect& r = m_screenRect;
    switch (index) {
    case 0:
        return CPoint(r.left, r.bottom);
    case 1:
        return CPoint(r.left, r.top);
    case 2:
        return CPoint(r.right, r.top);
    default:
        return CPoint(r.right, r.bottom);
    }
}

void VxAuxTexture::CalScreenPtByImg() {
    if (m_view == nullptr || m_height <= 0.0) {
        return;
    }
    const double W = m_view->Width();
    const double H = m_view->Height();
    const double h = m_height;
    const double w = m_height * m_ratio;
    double width = 0.0;
    double height = 0.0;
    // Wide pictures leave room at the sides, tall ones a strip above and below.
    if (w / W > h / H) {
        width = W - 400.0;
        height = width / m_ratio;
    } else {
        height = H - 50.0;
        width = m_ratio * height;
    }
    const double mx = (W - width) / 2.0;
    const double my = (H - height) / 2.0;
    const int ox = m_view->Origin().x;
    const int oy = m_view->Origin().y;
    m_screenRect =
        CRect(int(W) - int(mx) - int(width) + ox, int(H) - int(my) - int(height) + oy + 20,
              int(W) - int(mx) + ox, int(H) - int(my) + oy + 20);
}

void VxAuxTexture::CalCornersByScrPt() {
    if (m_render == nullptr || m_view == nullptr) {
        return;
    }
    const double depth = m_front ? 0.1 : 0.7;
    int W = 0;
    int H = 0;
    VxViewManager::GetInstance()->GetTotalViewSize(W, H);
    for (int i = 0; i < 4; ++i) {
        CPoint p = GetScreenPtns(i);
        if (m_type == AuxTexture_Screen) {
            p.x = p.x < 0 ? p.x + W : p.x;
            p.y = p.y < 0 ? p.y + H : p.y;
        }
        m_corners[i] = m_render->MapScreenPointToModel(m_view, p, depth);
    }
}

void VxAuxTexture::PreDraw() {
    if (!m_markers.empty() && m_screenRect != m_lastRect) {
        for (int i = 0; i < int(m_markers.size()); ++i) {
            UpdateMarker(i);
        }
        m_lastRect = m_screenRect;
    }
}

void VxAuxTexture::Draw() {
    if (!IsVisible() || m_textureId == kNoTexture) {
        return;
    }
    PreDraw();
    if (m_type != AuxTexture_Plain) {
        CalCornersByScrPt();
    }
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT |
                 GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT);
    glEnable(GL_DEPTH_TEST);
    glDepthMask(m_front ? GL_TRUE : GL_FALSE);
    glEnable(GL_TEXTURE_2D);
    glDisable(GL_LIGHTING);
    glBindTexture(GL_TEXTURE_2D, m_textureId);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glColor4ub(255, 255, 255, 255);
    const double l = m_left;
    const double b = m_bottom;
    const double z = m_zoom;
    const double tex[4][2] = {{l, b}, {l, b + z}, {l + z, b + z}, {l + z, b}};
    glBegin(GL_QUADS);
    for (int i = 0; i < 4; ++i) {
        glTexCoord2d(tex[i][0], tex[i][1]);
        glVertex3d(m_corners[i][0], m_corners[i][1], m_corners[i][2]);
    }
    glEnd();
    PopPass();
}

bool VxAuxTexture::IsMouseOnPic(const CPoint& point, VxPoint& modelPoint) {
    if (m_render == nullptr || m_view == nullptr) {
        return false;
    }
    const VxPoint a = m_render->MapScreenPointToModel(m_view, point, 0.0);
    const VxPoint b = m_render->MapScreenPointToModel(m_view, point, 1.0);
    const VxPlane plane(m_corners[0], m_corners[1], m_corners[2]);
    VxPoint p;
    if (!plane.Intersect(VxLine(a, b), p)) {
        return false;
    }
    modelPoint = p;
    // Between the two edges of each pair: the projections on the edge direction from both ends
    // have opposite signs.
    const auto beyond = [&p](const VxPoint& c0, const VxPoint& c1) {
        const VxVector e = c0 - c1;
        return ((p - c0) % e) * ((p - c1) % e) > 0.0;
    };
    return !beyond(m_corners[0], m_corners[1]) && !beyond(m_corners[0], m_corners[3]);
}

bool VxAuxTexture::HitTest(int x, int y) {
    if (!m_hitable || VxRenderStatus::GetInstance()->GetFeedbackType() != 0) {
        return false;
    }
    VxPoint p;
    return IsMouseOnPic(CPoint(x, y), p);
}

void VxAuxTexture::Drag(const CPoint& from, const CPoint& to) {
    if (m_type == AuxTexture_Screen || (from.x == to.x && from.y == to.y)) {
        return;
    }
    const int dx = to.x - from.x;
    const int dy = to.y - from.y;
    m_screenRect = CRect(m_screenRect.left + dx, m_screenRect.top + dy, m_screenRect.right + dx,
                         m_screenRect.bottom + dy);
}

void VxAuxTexture::ScaleImg(double factor) {
    if (m_type != AuxTexture_Movable || factor <= 0.0) {
        return;
    }
    const int height = m_screenRect.Height();
    if ((height < 100 && factor < 1.0) || (height > 3000 && factor > 1.0)) {
        return;
    }
    const double newHeight = height * factor;
    const double newWidth = newHeight * m_ratio;
    const CPoint c = m_screenRect.CenterPoint();
    const int hw = int(newWidth / 2.0);
    const int hh = int(newHeight / 2.0);
    m_screenRect = CRect(c.x - hw, c.y - hh, c.x + hw, c.y + hh);
}

void VxAuxTexture::ZoomImg(bool in, CPoint point) {
    if (m_type == AuxTexture_Screen) {
        return;
    }
    const CPoint p0 = GetScreenPtns(0);
    const double hw = std::abs(GetScreenPtns(3).x - p0.x);
    const double hh = std::abs(GetScreenPtns(1).y - p0.y);
    double old = m_zoom;
    if (in) {
        m_zoom -= 0.1;
        old = m_zoom + 0.1;
    } else {
        m_zoom += 0.1;
        old = m_zoom - 0.1;
    }
    const double q = m_zoom / old;
    if (m_zoom < 0.1) {
        m_zoom = 0.1;
    }
    if (m_zoom > 0.9) {
        m_zoom = 1.0;
        m_left = 0.0;
        m_bottom = 0.0;
        return;
    }
    if (hw <= 0.0 || hh <= 0.0) {
        return;
    }
    const double sx = std::abs(point.x - p0.x) / hw;
    const double sy = std::abs(point.y - p0.y) / hh;
    double ax = sx - q / 2.0;
    double ay = sy - q / 2.0;
    if (in) {
        ax = ax < 0.0 ? 0.0 : (sx + q / 2.0 > 1.0 ? 1.0 - q : ax);
        ay = ay < 0.0 ? 0.0 : (sy + q / 2.0 > 1.0 ? 1.0 - q : ay);
    }
    m_left += ax * old;
    m_bottom += ay * old;
}

void VxAuxTexture::SetMarkers(const std::vector<VxAuxMarker*>& markers) {
    m_markers = markers;
    m_xShares.clear();
    m_yShares.clear();
    const double w = m_screenRect.Width();
    const double h = m_screenRect.Height();
    for (VxAuxMarker* m : m_markers) {
        const VxPoint c = m != nullptr ? m->GetCenterPoint() : VxPoint();
        m_xShares.push_back(w != 0.0 ? (c[0] - m_screenRect.left) / w : 0.0);
        m_yShares.push_back(h != 0.0 ? (c[1] - m_screenRect.top) / h : 0.0);
    }
}

void VxAuxTexture::UpdateMarker(int i) {
    VxAuxMarker* m = m_markers[size_t(i)];
    if (m == nullptr) {
        return;
    }
    const VxPoint c = m->GetCenterPoint();
    const int x = int(m_screenRect.left + m_screenRect.Width() * m_xShares[size_t(i)]);
    const int y = int(m_screenRect.top + m_screenRect.Height() * m_yShares[size_t(i)]);
    m->Move(VxPoint(x, y, 0.0), x - c[0], y - c[1]);
}
