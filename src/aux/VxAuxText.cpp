// VxAuxText: bitmap text through the 2D drawing layer, outline text through VxFontOutlines.
#include <aux/VxAuxText.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CBitmap.h>
#include <interfaces/CDC.h>
#include <interfaces/CFont.h>
#include <interfaces/VxFrame.h>
#include <platform/VxFontOutlines.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>

namespace {

// The bitmap text's face: a serif face of weight 500 for screen texts, 600 for glyph outlines.
const char* kTextFace = "Times New Roman";
constexpr BYTE kCharset = 134;

// Current, lighting, depth and colour-buffer bits, with the viewport that the 2D frame replaces.
constexpr GLbitfield kScreenAttribs =
    GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_COLOR_BUFFER_BIT | GL_VIEWPORT_BIT;

// Size of the 2D frame: the off-screen buffer while a capture renders into it, else the window.
void FrameSize(int& w, int& h) {
    VxFrameBufferObj* fbo = VxRenderStatus::GetInstance()->GetFrameBufObj();
    if (fbo->GetIsOffScreenRendering()) {
        w = fbo->GetFrameImgWidth();
        h = fbo->GetFrameImgHeight();
        return;
    }
    VxViewManager::GetInstance()->GetTotalViewSize(w, h);
}

} // namespace

VxAuxText::VxAuxText() {
    m_hitable = false;
    m_hitPriority = AuxHitPriority_High;
}

VxAuxText::~VxAuxText() {
    FreeLists();
}

ObjectType_e VxAuxText::GetObjectType() const {
    return ObjectType_AuxText;
}

bool VxAuxText::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxText || VxAuxObject::IsKindOf(type);
}

bool VxAuxText::HitTest(int, int) {
    return m_hitable;
}

void VxAuxText::SetTextPos(const CPoint& p) {
    m_pos[0] = p.x;
    m_pos[1] = p.y;
}

void VxAuxText::SetTextPos(const VxPoint& p) {
    m_pos[0] = p[0];
    m_pos[1] = p[1];
    m_pos[2] = p[2];
}

std::vector<std::wstring> VxAuxText::SetStringLine(const std::wstring& text) {
    std::vector<std::wstring> lines(1);
    for (wchar_t c : text) {
        if (c == L'\n') {
            lines.emplace_back();
        } else if (c != L'\r') {
            lines.back().push_back(c);
        }
    }
    return lines;
}

void VxAuxText::SetText(const CString& text) {
    m_text = text;
    if (m_textType != Text_OnScreen && m_textType != Text_OnScreenOnce) {
        CreateLists();
        return;
    }
    if (text.GetLength() == 0) {
        resize(0, 0, 0, 0);
        return;
    }
    BuildBitmap();
}

void VxAuxText::BuildBitmap() {
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr)) {
        return;
    }
    CFont font;
    font.CreateFontA(m_size, 0, 0, 0, FW_MEDIUM, 0, 0, 0, kCharset, 0, 0, PROOF_QUALITY, FF_SWISS,
                     kTextFace);
    CFont* oldFont = font.GetSafeHandle() ? dc.SelectObject(&font) : nullptr;

    const std::vector<std::wstring> lines = SetStringLine(m_text.Str());
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
    // A failed bitmap (nothing measurable) leaves the earlier one in place.
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
        createBufferFromBmp(dc, bitmap.GetSafeHandle());
        dc.SelectObject(oldBitmap);
    }
    if (oldFont != nullptr) {
        dc.SelectObject(oldFont);
    }
}

void VxAuxText::resize(int width, int height, int, int) {
    m_bitmapWidth = std::max(width, 0);
    m_bitmapHeight = std::max(height, 0);
    m_glyphBuffer.assign(size_t(m_bitmapWidth / 8) * size_t(m_bitmapHeight), 0);
}

bool VxAuxText::createBufferFromBmp(const CDC& dc, HBITMAP bitmap) {
    BITMAP bm{};
    if (bitmap == nullptr || GetObjectW(bitmap, sizeof(bm), &bm) == 0) {
        return false;
    }
    const int aligned = (bm.bmWidth + 31) & ~31;
    resize(aligned, bm.bmHeight, bm.bmWidth, bm.bmHeight);
    BITMAPINFO info{};
    info.bmiHeader.biSize = 40;
    info.bmiHeader.biWidth = bm.bmWidth;
    // Bottom-up rows: glBitmap starts at the raster position and goes up.
    info.bmiHeader.biHeight = bm.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 1;
    info.bmiHeader.biCompression = BI_RGB;
    return GetDIBits(dc.GetSafeHdc(), bitmap, 0, UINT(bm.bmHeight), m_glyphBuffer.data(), &info,
                     DIB_RGB_COLORS) != 0;
}

void VxAuxText::FreeLists() {
    if (m_listBase != kNoList && m_listCount > 0) {
        glDeleteLists(m_listBase, m_listCount);
    }
    m_listBase = kNoList;
    m_listCount = 0;
}

void VxAuxText::CreateLists() {
    // Labels are re-texted every time their value changes: the old glyphs go first.
    FreeLists();
    m_lineCount = 1;
    std::fill(&m_lineGlyphs[0][0], &m_lineGlyphs[0][0] + sizeof(m_lineGlyphs), BYTE(0));
    std::fill(std::begin(m_lineLengths), std::end(m_lineLengths), 0);
    const int length = m_text.GetLength();
    if (length == 0 || length >= kMaxListChars) {
        return;
    }
    CFont font;
    if (!font.CreateFontA(m_size, 0, 0, 0, FW_SEMIBOLD, 0, 0, 0, kCharset, 0, 0, PROOF_QUALITY,
                          FF_SWISS, kTextFace)) {
        return;
    }
    const HFONT f = font.GetSafeHandle();
    const GLuint base = glGenLists(length);
    if (base == 0) {
        return;
    }
    m_listBase = base;
    m_listCount = length;
    int k = 0;
    int line = 0;
    for (int i = 0; i < length; ++i) {
        const wchar_t c = m_text.GetAt(i);
        if (c == L'\n') {
            ++line;
            if (line < kMaxLines) {
                m_lineCount = line + 1;
            }
            continue;
        }
        // Lines and characters past the rows' room are dropped rather than written past them.
        if (line >= kMaxLines || m_lineLengths[line] >= kMaxLineChars) {
            continue;
        }
        VxFontOutlines::UseFontOutlines(f->face, (unsigned long)(c), 1, base + GLuint(k), 0.0f,
                                        0.0f, WGL_FONT_POLYGONS, nullptr, f->syntheticBold);
        m_lineGlyphs[line][m_lineLengths[line]++] = BYTE(k);
        ++k;
    }
}

void VxAuxText::Draw() {
    if (!IsVisible() || m_text.GetLength() == 0) {
        return;
    }
    switch (m_textType) {
    case Text_OnScreen:
        DrawOnScreen();
        break;
    case Text_ModelDepth:
        DrawInModelCoord(true);
        break;
    case Text_ModelNoDepth:
        DrawInModelCoord(false);
        break;
    default:
        break;
    }
}

void VxAuxText::Draw(VxViewRegion* view) {
    if (!IsVisible() || m_text.GetLength() == 0) {
        return;
    }
    switch (m_textType) {
    case Text_OnScreen:
    case Text_OnScreenOnce:
        DrawOnScreen(view);
        break;
    case Text_ModelDepth:
        DrawInModelCoord(true, view);
        break;
    case Text_ModelNoDepth:
        DrawInModelCoord(false, view);
        break;
    default:
        break;
    }
}

// At the position as the current matrices place it: the axis cross labels its tips this way.
void VxAuxText::DrawOnScreen() {
    if (m_glyphBuffer.empty()) {
        return;
    }
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_LIGHTING);
    GLColor(m_color);
    glRasterPos3d(m_pos[0], m_pos[1], m_pos[2]);
    glBitmap(m_bitmapWidth, m_bitmapHeight, 0, 0, 0, 0, m_glyphBuffer.data());
    PopPass();
}

void VxAuxText::DrawOnScreen(VxViewRegion*) {
    if (m_glyphBuffer.empty()) {
        return;
    }
    int w = 0;
    int h = 0;
    FrameSize(w, h);
    glPushAttrib(kScreenAttribs);
    glViewport(0, 0, w, h);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluOrtho2D(0, w, 0, h);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    // A negative coordinate counts from the right or from the bottom.
    const double x = m_pos[0] > 0 ? m_pos[0] : w + m_pos[0];
    const double y = m_pos[1] > 0 ? h - m_pos[1] : -m_pos[1];
    GLColor(m_color);
    glRasterPos3d(x, y, 0.0);
    glBitmap(m_bitmapWidth, m_bitmapHeight, 0, 0, 0, 0, m_glyphBuffer.data());
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    PopPass();
}

bool VxAuxText::ScreenFacingMatrix(VxViewRegion* view, double out[16]) const {
    if (m_render == nullptr) {
        return false;
    }
    VxPoint p, px, py;
    if (view != nullptr) {
        p = m_render->MapScreenPointToModel(view, CPoint(0, 0), 0.0);
        px = m_render->MapScreenPointToModel(view, CPoint(10, 0), 0.0);
        py = m_render->MapScreenPointToModel(view, CPoint(0, 10), 0.0);
    } else {
        p = m_render->MapScreenPointToModelForText(CPoint(0, 0), 0.0);
        px = m_render->MapScreenPointToModelForText(CPoint(10, 0), 0.0);
        py = m_render->MapScreenPointToModelForText(CPoint(0, 10), 0.0);
    }
    const VxVector x = px - p;
    const VxVector y = p - py; // window y grows downwards
    const VxFrame screen(VxPoint(0, 0, 0), x, y);
    const VxFrame plain(VxPoint(0, 0, 0), VxVector(1, 0, 0), VxVector(0, 1, 0));
    if (!screen.IsValid()) {
        return false;
    }
    const VxMatrix m = plain.GetTransformToNewFrame(screen);
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            out[c * 4 + r] = m[r][c];
        }
    }
    return true;
}

void VxAuxText::DrawInModelCoord(bool depth) {
    DrawInModelCoord(depth, nullptr);
}

void VxAuxText::DrawInModelCoord(bool depth, VxViewRegion* view) {
    if (m_listBase == kNoList) {
        return;
    }
    double facing[16];
    if (!ScreenFacingMatrix(view, facing)) {
        return;
    }
    glPushAttrib(GL_CURRENT_BIT | GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT |
                 GL_LIST_BIT);
    glDisable(GL_LIGHTING);
    if (depth) {
        glEnable(GL_DEPTH_TEST);
    } else {
        glDisable(GL_DEPTH_TEST);
    }
    GLColor(m_color);
    glListBase(m_listBase);
    glMatrixMode(GL_MODELVIEW);
    for (int i = 0; i < m_lineCount; ++i) {
        glPushMatrix();
        glTranslated(m_pos[0], m_pos[1], m_pos[2]);
        glScaled(2.5, 2.5, 2.5);
        glMultMatrixd(facing);
        glTranslated(0.0, -i, 0.0);
        glCallLists(m_lineLengths[i], GL_UNSIGNED_BYTE, m_lineGlyphs[i]);
        glPopMatrix();
    }
    PopPass();
}
