// VxAuxMarker: outlines, the two drawing frames, the disc's text bitmap and the bounds hit.
#include <aux/VxAuxMarker.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CBitmap.h>
#include <interfaces/CDC.h>
#include <interfaces/CFont.h>
#include <interfaces/VxPlane.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace {

constexpr double kDegree = 0.017453292519944444;
// Attributes of the window-pixel frame, with the viewport it replaces.
constexpr GLbitfield k2DAttribs =
    GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT | GL_VIEWPORT_BIT;
constexpr GLbitfield k3DAttribs =
    GL_CURRENT_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT;

void ColorUb(const VxColor& c) {
    glColor3ub(GLubyte(c.GetR()), GLubyte(c.GetG()), GLubyte(c.GetB()));
}

} // namespace

ObjectType_e VxAuxMarker::GetObjectType() const {
    return ObjectType_AuxMarker;
}

bool VxAuxMarker::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxMarker || VxAuxObject::IsKindOf(type);
}

// ---------------------------------------------------------------------------------------------
// Outlines

void VxAuxMarker::Set2D(const CPoint& c, double a, double b, AuxMarkerType_e type) {
    m_centre = VxPoint(c.x, c.y, 0.0);
    m_radius = a;
    m_points = {VxPoint(c.x - a, c.y - b, 0.0), VxPoint(c.x + a, c.y - b, 0.0),
                VxPoint(c.x + a, c.y + b, 0.0), VxPoint(c.x - a, c.y + b, 0.0)};
    m_type = type;
}

void VxAuxMarker::SetSquare(const CPoint& centre, double radius) {
    Set2D(centre, radius, radius, AuxMarkerType_Rect2D);
}
void VxAuxMarker::SetCircle(const CPoint& centre, double radius) {
    Set2D(centre, radius, radius, AuxMarkerType_Circle2D);
}
void VxAuxMarker::SetTrapezoid(const CPoint& centre, double radius) {
    Set2D(centre, radius, radius, AuxMarkerType_Trapezoid2D);
}
void VxAuxMarker::SetRect(const CPoint& centre, double width, double height) {
    Set2D(centre, width / 2.0, height / 2.0, AuxMarkerType_RectEx2D);
}
void VxAuxMarker::SetTriangle(const CPoint& centre, double width, double height) {
    Set2D(centre, width / 2.0, height / 2.0, AuxMarkerType_Triangle2D);
}
void VxAuxMarker::SetTrapezoid(const VxPoint&, const VxVector&, double) {}

void VxAuxMarker::SetSquare(const VxPoint& centre, const VxVector& normal, double radius) {
    Set3D(centre, normal, radius, AuxMarkerType_Rect);
}
void VxAuxMarker::SetCircle(const VxPoint& centre, const VxVector& normal, double radius) {
    Set3D(centre, normal, radius, AuxMarkerType_Circle);
}

void VxAuxMarker::Set3D(const VxPoint& c, const VxVector& normal, double r, AuxMarkerType_e type) {
    m_centre = c;
    m_normal = normal;
    if (!m_normal.Normalize()) {
        m_normal = VxVector(0, 0, 1);
    }
    // An in-plane axis: the plane's own point is the centre, so a second point is taken off the
    // normal's smallest component and projected onto the plane.
    const VxPlane plane(c, m_normal);
    VxVector seed(1, 0, 0);
    if (std::abs(m_normal[1]) < std::abs(m_normal[0]) &&
        std::abs(m_normal[1]) <= std::abs(m_normal[2])) {
        seed = VxVector(0, 1, 0);
    } else if (std::abs(m_normal[2]) < std::abs(m_normal[0])) {
        seed = VxVector(0, 0, 1);
    }
    m_u = plane.ProjectPoint(c + seed) - c;
    m_u.Normalize();
    m_v = m_normal * m_u;
    m_v.Normalize();
    m_radius = r;
    const VxPoint p0 = c - m_u * r - m_v * r;
    const VxPoint p1 = p0 + m_u * (2 * r);
    const VxPoint p2 = p1 + m_v * (2 * r);
    const VxPoint p3 = p2 - m_u * (2 * r);
    m_points = {p0, p1, p2, p3};
    m_type = type;
    glGetDoublev(GL_MODELVIEW_MATRIX, m_viewMatrix);
}

void VxAuxMarker::Move(const VxPoint& centre, double dx, double dy) {
    if (m_points.empty()) {
        return;
    }
    m_centre = centre;
    for (VxPoint& p : m_points) {
        p = VxPoint(p[0] + dx, p[1] + dy, p[2]);
    }
}

// ---------------------------------------------------------------------------------------------
// Drawing

void VxAuxMarker::Draw() {
    if (IsVisible()) {
        DrawMarker(false);
    }
}

void VxAuxMarker::DrawHighlight() {
    if (IsVisible()) {
        DrawMarker(true);
    }
}

VxColor VxAuxMarker::DrawColor(bool highlight) const {
    if (IsSelected()) {
        return m_selFillColor;
    }
    return highlight ? VxColor::GetHighlightColor() : m_fillColor;
}

void VxAuxMarker::DrawMarker(bool h) {
    if (m_points.size() < 4) {
        return;
    }
    switch (m_type) {
    case AuxMarkerType_Rect:
        DrawAuxMarker_Rect(h);
        break;
    case AuxMarkerType_Rect2D:
        DrawAuxMarker_Rect2D(h);
        break;
    case AuxMarkerType_Circle:
        DrawAuxMarker_Circle(h);
        break;
    case AuxMarkerType_Circle2D:
        DrawAuxMarker_Circle2D(h);
        break;
    case AuxMarkerType_Trapezoid2D:
        DrawAuxMarker_Trapezoid2D(h);
        break;
    case AuxMarkerType_RectEx2D:
        DrawAuxMarker_RectEx2D(h);
        break;
    case AuxMarkerType_Triangle2D:
        DrawAuxMarker_Triangle2D(h);
        break;
    default:
        break;
    }
}

int VxAuxMarker::Begin2D() const {
    int w = 0;
    int h = 0;
    VxFrameBufferObj* fbo = VxRenderStatus::GetInstance()->GetFrameBufObj();
    if (fbo->GetIsOffScreenRendering()) {
        w = fbo->GetFrameImgWidth();
        h = fbo->GetFrameImgHeight();
    } else {
        VxViewManager::GetInstance()->GetTotalViewSize(w, h);
    }
    glPushAttrib(k2DAttribs);
    glViewport(0, 0, w, h);
    glDisable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, w, 0, h);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    return h;
}

void VxAuxMarker::End2D() {
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    PopPass();
}

void VxAuxMarker::DrawAuxMarker_Rect2D(bool hl) {
    const int h = Begin2D();
    ColorUb(DrawColor(hl));
    glBegin(GL_POLYGON);
    for (const VxPoint& p : m_points) {
        glVertex2d(p[0], h - p[1]);
    }
    glEnd();
    End2D();
}

void VxAuxMarker::DrawAuxMarker_Circle2D(bool hl) {
    const int h = Begin2D();
    ColorUb(DrawColor(hl));
    glTranslated(m_centre[0], h - m_centre[1], 0.0);
    glBegin(GL_TRIANGLE_FAN);
    for (int i = 0; i < 360; ++i) {
        glVertex2d(m_radius * std::cos(i * kDegree), m_radius * std::sin(i * kDegree));
    }
    glEnd();
    End2D();
    DrawText_Circle2D();
}

void VxAuxMarker::DrawAuxMarker_Trapezoid2D(bool hl) {
    const int h = Begin2D();
    ColorUb(DrawColor(hl));
    // The first two corners are the top on screen (smallest window y): pulling them in by a
    // quarter of the width makes the shape narrow at the top.
    const double s = (m_points[1][0] - m_points[0][0]) * 0.16666666666666666 * 1.5;
    glBegin(GL_POLYGON);
    glVertex2d(m_points[0][0] + s, h - m_points[0][1]);
    glVertex2d(m_points[1][0] - s, h - m_points[1][1]);
    glVertex2d(m_points[2][0], h - m_points[2][1]);
    glVertex2d(m_points[3][0], h - m_points[3][1]);
    glEnd();
    End2D();
}

void VxAuxMarker::DrawAuxMarker_Triangle2D(bool hl) {
    const int h = Begin2D();
    ColorUb(DrawColor(hl));
    const VxPoint& p0 = m_points[0];
    const VxPoint& p1 = m_points[1];
    const VxPoint& p2 = m_points[2];
    const VxPoint& p3 = m_points[3];
    glBegin(GL_POLYGON);
    glVertex2d(p0[0], h - p0[1]);
    glVertex2d(p3[0], h - p3[1]);
    glVertex2d(p1[0], h - (p1[1] + (p2[1] - p1[1]) / 2));
    glEnd();
    End2D();
}

void VxAuxMarker::DrawText_Circle2D() {
    if (m_text.GetLength() == 0 || m_glyphBuffer.empty()) {
        return;
    }
    const int h = Begin2D();
    glColor3ub(255, 255, 255);
    const bool question = m_text.Str() == L"?";
    const double x = m_centre[0] - m_glyphWidth[0] / 2.0 + (question ? 0.0 : 1.0);
    const double y = (h - m_centre[1]) - m_glyphWidth[1] / 2.0;
    glRasterPos3d(x, y, 0.0);
    glBitmap(m_glyphBitmapSize[0], m_glyphBitmapSize[1], 0, 0, 0, 0, m_glyphBuffer.data());
    End2D();
}

void VxAuxMarker::DrawAuxMarker_Rect(bool hl) {
    glPushAttrib(k3DAttribs);
    glEnable(GL_DEPTH_TEST);
    glMatrixMode(GL_MODELVIEW);
    if (m_disableViewChange) {
        glPushMatrix();
        glLoadIdentity();
        glMultMatrixd(m_viewMatrix);
    }
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    GLColor(DrawColor(hl), 255);
    glBegin(GL_QUADS);
    for (const VxPoint& p : m_points) {
        glVertex3d(p[0], p[1], p[2]);
    }
    glEnd();
    if (m_disableViewChange) {
        glPopMatrix();
    }
    PopPass();
}

void VxAuxMarker::DrawAuxMarker_Circle(bool hl) {
    glPushAttrib(k3DAttribs);
    glEnable(GL_DEPTH_TEST);
    glMatrixMode(GL_MODELVIEW);
    if (m_disableViewChange) {
        glPushMatrix();
        glLoadIdentity();
        glMultMatrixd(m_viewMatrix);
    }
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    GLColor(DrawColor(hl), 255);
    glPushMatrix();
    glTranslated(m_centre[0], m_centre[1], m_centre[2]);
    const double axes[16] = {m_u[0],      m_u[1],      m_u[2],      0, m_v[0], m_v[1], m_v[2], 0,
                             m_normal[0], m_normal[1], m_normal[2], 0, 0,      0,      0,      1};
    glMultMatrixd(axes);
    glBegin(GL_POLYGON);
    for (int i = 0; i < 360; ++i) {
        glVertex3d(m_radius * std::cos(i * kDegree), m_radius * std::sin(i * kDegree), 0.0);
    }
    glEnd();
    glPopMatrix();
    if (m_disableViewChange) {
        glPopMatrix();
    }
    PopPass();
}

// ---------------------------------------------------------------------------------------------
// Text bitmap

void VxAuxMarker::SetText(const CString& text) {
    if (text.GetLength() == 0) {
        m_text = CString();
        return;
    }
    m_text = text;
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return;
    }
    // A lone "?" is drawn wider and lighter, so that it fills the disc like a digit does.
    const bool question = text.Str() == L"?";
    CFont font;
    font.CreateFontA(15, question ? 15 : 0, 0, 0, question ? FW_BOLD : FW_HEAVY, 0, 0, 0, 134, 0, 0,
                     PROOF_QUALITY, FF_SWISS, "楷体_GB2312");
    CFont* oldFont = font.GetSafeHandle() ? dc.SelectObject(&font) : nullptr;
    std::vector<std::wstring> lines(1);
    for (wchar_t c : text.Str()) {
        if (c == L'\n') {
            lines.emplace_back();
        } else if (c != L'\r') {
            lines.back().push_back(c);
        }
    }
    int width = 0;
    int lineHeight = 0;
    for (const std::wstring& line : lines) {
        SIZE size;
        if (dc.GetTextExtentPoint32W(line.c_str(), int(line.size()), &size)) {
            width = std::max(width, int(size.cx));
            lineHeight = std::max(lineHeight, int(size.cy));
        }
    }
    const int n = int(lines.size());
    const int height = n * lineHeight + (n - 1) * (lineHeight / 2);
    CBitmap bitmap;
    // Without a bitmap the text stays without one; nothing is reported.
    if (width > 0 && height > 0 && bitmap.CreateBitmap(width, height, 1, 1, nullptr)) {
        CBitmap* oldBitmap = dc.SelectObject(&bitmap);
        dc.SetBkColor(RGB(0, 0, 0));
        dc.SetTextColor(RGB(255, 255, 255));
        dc.SetBkMode(OPAQUE);
        int y = 0;
        for (const std::wstring& line : lines) {
            dc.TextOutW(0, y, line.c_str(), int(line.size()));
            y += lineHeight + lineHeight / 2;
        }
        CreateBufferFromBmp(dc, bitmap.GetSafeHandle());
        dc.SelectObject(oldBitmap);
    }
    if (oldFont != nullptr) {
        dc.SelectObject(oldFont);
    }
}

void VxAuxMarker::Resize(int width, int height, int trueWidth, int trueHeight) {
    m_glyphBitmapSize[0] = std::max(width, 0);
    m_glyphBitmapSize[1] = std::max(height, 0);
    m_glyphWidth[0] = trueWidth;
    m_glyphWidth[1] = trueHeight;
    m_glyphBuffer.assign(size_t(m_glyphBitmapSize[0] / 8) * size_t(m_glyphBitmapSize[1]), 0);
}

bool VxAuxMarker::CreateBufferFromBmp(const CDC& dc, HBITMAP bitmap) {
    BITMAP bm{};
    if (bitmap == nullptr || GetObjectW(bitmap, sizeof(bm), &bm) == 0) {
        return false;
    }
    Resize((bm.bmWidth + 31) & ~31, bm.bmHeight, bm.bmWidth, bm.bmHeight);
    BITMAPINFO info{};
    info.bmiHeader.biSize = 40;
    info.bmiHeader.biWidth = bm.bmWidth;
    info.bmiHeader.biHeight = bm.bmHeight; // bottom-up, as glBitmap reads
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 1;
    info.bmiHeader.biCompression = BI_RGB;
    return GetDIBits(dc.GetSafeHdc(), bitmap, 0, UINT(bm.bmHeight), m_glyphBuffer.data(), &info,
                     DIB_RGB_COLORS) != 0;
}

// ---------------------------------------------------------------------------------------------
// Hit

VxMatrix VxAuxMarker::GetMatrix44(const double* m) {
    return VxMatrix::FromArray(m);
}

CPoint VxAuxMarker::GetPointToScreen(const VxPoint& p) {
    switch (m_type) {
    case AuxMarkerType_Rect:
    case AuxMarkerType_Circle: {
        if (m_render == nullptr) {
            return CPoint(0, 0);
        }
        VxPoint q = p;
        VxViewRegion* view = VxViewManager::GetInstance()->GetActiveView();
        if (m_disableViewChange && view != nullptr) {
            // Undo the view's present matrix and apply the one of creation, so the point maps
            // to where the pinned marker is drawn.
            VxMatrix now = GetMatrix44(view->GetModelViewMatrix());
            if (now.Inverse()) {
                const VxMatrix m = now * GetMatrix44(m_viewMatrix);
                double x[4] = {q[0], q[1], q[2], 1.0};
                double y[4] = {0, 0, 0, 0};
                for (int r = 0; r < 4; ++r) {
                    for (int c = 0; c < 4; ++c) {
                        y[r] += m[r][c] * x[c];
                    }
                }
                q = VxPoint(y[0] / y[3], y[1] / y[3], y[2] / y[3]);
            }
        }
        return m_render->MapModelPointToScreen(q);
    }
    case AuxMarkerType_None:
        return CPoint(0, 0);
    default:
        return CPoint(int(p[0]), int(p[1]));
    }
}

CRect VxAuxMarker::BoundsRectOfPoints(const std::vector<CPoint>& points) {
    if (points.empty()) {
        return EmptyRect();
    }
    // Right and bottom one past the last point: the rectangle holds every point, even a single
    // one (a marker whose points all map to one pixel is still hit there).
    CRect r(points[0].x, points[0].y, points[0].x + 1, points[0].y + 1);
    for (const CPoint& p : points) {
        r.left = std::min(r.left, p.x);
        r.top = std::min(r.top, p.y);
        r.right = std::max(r.right, p.x + 1);
        r.bottom = std::max(r.bottom, p.y + 1);
    }
    return r;
}

void VxAuxMarker::SetBoundsScreenRect() {
    std::vector<CPoint> screen;
    for (const VxPoint& p : m_points) {
        screen.push_back(GetPointToScreen(p));
    }
    m_bounds = BoundsRectOfPoints(screen);
}

bool VxAuxMarker::HitTest(int x, int y) {
    if (IsBoundsRectUpdate()) {
        SetBoundsScreenRect();
    }
    return m_bounds.PtInRect(CPoint(x, y));
}
