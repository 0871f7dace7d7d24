// VxCacheStuff: the four patient pictures, the panoramic markers and the small image tools.
// Pictures reach the library in the layout CreateCimage gives: rows from the bottom up, bytes in
// R, G, B order, ready for the texture upload.
#include <overlays/VxCacheStuff.h>

#include <aux/VxAuxMarker.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxTexture.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CBitmap.h>
#include <interfaces/CDC.h>
#include <interfaces/CFont.h>
#include <interfaces/CImage.h>
#include <interfaces/PanAttribute.h>
#include <interfaces/VxCepMeasure.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxPanMeasure.h>
#include <interfaces/VxPatientInfo.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

VxAuxRender* AuxRender() {
    return VxRenderStatus::GetInstance()->GetAuxRender();
}

VxPatientInfo* PatientInfo(VxModel* model) {
    return model != nullptr ? model->GetPatientInfo() : nullptr;
}

// A movable picture fitted to the active view, registered; null when the picture cannot be
// uploaded.
VxAuxTexture* MakePicture(const CImage& image) {
    if (image.IsNull())
        return nullptr;
    CBitmap bitmap;
    bitmap.Attach(static_cast<HBITMAP>(image));
    auto* texture = new VxAuxTexture(nullptr);
    texture->SetType(AuxTexture_Movable);
    const bool uploaded = texture->SetTexture(bitmap);
    texture->SetVisible(1);
    bitmap.Detach(); // the picture stays the patient record's
    if (!uploaded) {
        delete texture;
        return nullptr;
    }
    AuxRender()->AddAuxObject(texture);
    return texture;
}

void RemovePicture(VxAuxTexture*& texture) {
    if (texture == nullptr)
        return;
    AuxRender()->RemoveAuxObject(texture, false);
    delete texture;
    texture = nullptr;
}

// The bytes an adjustment may walk: the lowest address of the bits and how many bytes from
// there belong to the picture. Pictures are treated as three bytes a pixel running straight on
// across row padding, but the walk never leaves the buffer (8-bit pictures are shorter).
unsigned char* WalkStart(CImage& image, size_t& count) {
    count = 0;
    if (image.IsNull())
        return nullptr;
    const int w = image.GetWidth();
    const int h = image.GetHeight();
    const int pitch = image.GetPitch();
    auto* bits = static_cast<unsigned char*>(image.GetBits());
    if (bits == nullptr || w <= 0 || h <= 0)
        return nullptr;
    unsigned char* low = pitch < 0 ? bits + ptrdiff_t(h - 1) * pitch : bits;
    const size_t buffer = size_t(std::abs(pitch)) * size_t(h);
    count = std::min(size_t(w) * size_t(h) * 3, buffer);
    return low;
}

// Draws into an s x s 32-bit bitmap, white on black, and hands back its bits (top-down B, G,
// R, X); empty when no device context could be made.
template <typename Paint> std::vector<BYTE> DrawMask(int s, Paint paint) {
    std::vector<BYTE> bits;
    CDC dc;
    if (!dc.CreateCompatibleDC(nullptr))
        return bits;
    CBitmap target;
    if (!target.CreateBitmap(s, s, 1, 32, nullptr))
        return bits;
    const int saved = dc.SaveDC();
    dc.SelectObject(&target);
    dc.SetBkColor(RGB(0, 0, 0));
    dc.SetTextColor(RGB(255, 255, 255));
    dc.FillSolidRect(0, 0, s, s, RGB(0, 0, 0));
    paint(dc);
    bits.resize(size_t(s) * size_t(s) * 4);
    target.GetBitmapBits(DWORD(bits.size()), bits.data());
    dc.RestoreDC(saved);
    return bits;
}

} // namespace

// --- pictures ------------------------------------------------------------------------------

void VxCacheStuff::PrepareFrontImg() {
    RemoveFrontImg();
    if (m_frontImg != nullptr)
        return;
    VxPatientInfo* info = PatientInfo(m_model);
    const CImage* image = info != nullptr ? info->GetFrontalSmileImg() : nullptr;
    if (image != nullptr)
        m_frontImg = MakePicture(*image);
}

void VxCacheStuff::RemoveFrontImg() {
    RemovePicture(m_frontImg);
}

void VxCacheStuff::PrepareProfile() {
    RemoveProfile();
    if (m_profileImg != nullptr)
        return;
    VxPatientInfo* info = PatientInfo(m_model);
    const CImage* image = info != nullptr ? info->GetProfileImg() : nullptr;
    if (image != nullptr)
        m_profileImg = MakePicture(*image);
}

void VxCacheStuff::RemoveProfile() {
    RemovePicture(m_profileImg);
}

void VxCacheStuff::PrepareXImg() {
    RemoveXimg();
    if (m_xImg != nullptr)
        return;
    VxPatientInfo* info = PatientInfo(m_model);
    const CImage* image = info != nullptr ? info->GetCephalometricImg() : nullptr;
    if (image == nullptr)
        return;
    CImage copy;
    if (ImageCopy(*image, copy) == 0)
        return;
    if (const VxCepMeasure* cep = m_model->GetCepMeasure()) {
        if (cep->GetBrightPos() != 0)
            AdjustImageBrightness(cep->GetBrightPos(), copy);
        if (cep->GetContrastPos() != 0)
            AdjustImageContrast(cep->GetContrastPos(), copy);
    }
    m_xImg = MakePicture(copy);
}

void VxCacheStuff::RemoveXimg() {
    RemovePicture(m_xImg);
}

void VxCacheStuff::PreparePanoramic() {
    RemovePanoramic();
    if (m_panoramicImg != nullptr)
        return;
    VxPatientInfo* info = PatientInfo(m_model);
    const CImage* image = info != nullptr ? info->GetPanoramicImg() : nullptr;
    if (image == nullptr)
        return;
    CImage copy;
    if (ImageCopy(*image, copy) == 0)
        return;
    const VxPanMeasure* pan = m_model->GetPanMeasure();
    if (pan != nullptr) {
        if (pan->GetBrightPos() != 0)
            AdjustImageBrightness(pan->GetBrightPos(), copy);
        if (pan->GetContrastPos() != 0)
            AdjustImageContrast(pan->GetContrastPos(), copy);
    }
    m_panoramicImg = MakePicture(copy);
    if (m_panoramicImg == nullptr || pan == nullptr || !pan->HasData())
        return;
    for (const PanAttribute& a : pan->GetDatas()) {
        auto* marker = new VxAuxMarker();
        marker->SetHitable(false);
        CString label;
        switch (a.kind) {
        case 1:
            label.Format(L"%d", a.number);
            marker->SetFillColor(VxColor(255, 0, 0, 100));
            break;
        case 2:
            label.Format(L"%d", a.number - 3);
            marker->SetFillColor(VxColor(49, 196, 9, 100));
            break;
        case 3:
            label.Format(L"%d", a.number - 13);
            marker->SetFillColor(VxColor(243, 98, 47, 100));
            break;
        case 4:
            label.Format(L"%d", a.number - 17);
            marker->SetFillColor(VxColor(53, 51, 200, 100));
            break;
        case 5:
            label.Format(L"%d", a.number - 22);
            marker->SetFillColor(VxColor(132, 50, 200, 100));
            break;
        case 6:
            marker->SetFillColor(VxColor(19, 222, 241, 100));
            break;
        case 7:
            label = CString(L"?");
            marker->SetFillColor(VxColor(91, 89, 89, 100));
            break;
        default:
            marker->SetVisible(0);
            break;
        }
        marker->SetCircle(CalScreenPt(a.point), 10.0);
        marker->SetText(label);
        m_panMarkers.push_back(marker);
        AuxRender()->AddAuxObject(marker);
    }
    // The markers follow the picture through drags and zooms.
    m_panoramicImg->SetMarkers(m_panMarkers);
}

void VxCacheStuff::RemovePanoramic() {
    if (m_panoramicImg != nullptr)
        AuxRender()->RemoveAuxObject(m_panoramicImg, false);
    for (VxAuxMarker* marker : m_panMarkers)
        AuxRender()->RemoveAuxObject(marker, true);
    m_panMarkers.clear();
    delete m_panoramicImg;
    m_panoramicImg = nullptr;
}

CPoint VxCacheStuff::CalScreenPt(const VxPoint& point) {
    if (m_panoramicImg == nullptr)
        return CPoint();
    const CPoint c0 = m_panoramicImg->GetScreenPtns(0);
    const CPoint c1 = m_panoramicImg->GetScreenPtns(1);
    const CPoint c2 = m_panoramicImg->GetScreenPtns(2);
    return CPoint(int(point[0] * (c2.x - c1.x)) + c0.x, c0.y - int(point[1] * (c0.y - c1.y)));
}

void VxCacheStuff::UpdatePicture() {
    UpdateXImg();
    UpdateFrontImg();
    UpdateProfile();
    UpdatePanoramic();
}

void VxCacheStuff::UpdateXImg() {
    if (m_xImg != nullptr) {
        RemoveXimg();
        PrepareXImg();
    }
}

void VxCacheStuff::UpdateFrontImg() {
    if (m_frontImg != nullptr) {
        RemoveFrontImg();
        PrepareFrontImg();
    }
}

void VxCacheStuff::UpdateProfile() {
    if (m_profileImg != nullptr) {
        RemoveProfile();
        PrepareProfile();
    }
}

void VxCacheStuff::UpdatePanoramic() {
    if (m_panoramicImg != nullptr) {
        RemovePanoramic();
        PreparePanoramic();
    }
}

// --- image tools ---------------------------------------------------------------------------

void VxCacheStuff::AdjustImageBrightness(int delta, CImage& image) {
    size_t count = 0;
    unsigned char* p = WalkStart(image, count);
    if (p == nullptr)
        return;
    for (size_t i = 0; i < count; ++i) {
        const int v = p[i] + delta;
        p[i] = static_cast<unsigned char>(delta < 0 ? std::max(v, 0) : std::min(v, 255));
    }
}

void VxCacheStuff::AdjustImageContrast(int contrast, CImage& image) {
    size_t count = 0;
    unsigned char* p = WalkStart(image, count);
    if (p == nullptr)
        return;
    int c = contrast;
    int u = 255 - c;
    if (u < c) {
        c = 120;
        u = 127;
    }
    if (c < -127)
        c = -120;
    const int d = 2 * c;
    for (size_t i = 0; i < count; ++i) {
        const int v = p[i];
        int out = 0;
        if (c < 0)
            out = v * (d + 255) / 255 - c;
        else if (v <= c)
            out = 0;
        else if (v <= u)
            out = (v - c) * 255 / (255 - d);
        else
            out = 255;
        p[i] = static_cast<unsigned char>(std::max(0, std::min(255, out)));
    }
}

int VxCacheStuff::ImageCopy(const CImage& source, CImage& target) {
    if (source.IsNull())
        return 0;
    if (!target.IsNull())
        target.Destroy();
    const int w = source.GetWidth();
    const int h = source.GetHeight();
    const int bpp = source.GetBPP();
    if (!target.Create(w, h, bpp, bpp == 32 ? CImage::createAlphaChannel : 0))
        return 0;
    if (bpp <= 8 && source.IsIndexed()) {
        const int n = source.GetMaxColorTableEntries();
        std::vector<RGBQUAD> table(size_t(std::max(n, 0)));
        if (n > 0) {
            source.GetColorTable(0, UINT(n), table.data());
            target.SetColorTable(0, UINT(n), table.data());
        }
    }
    const size_t row = size_t(std::abs(source.GetPitch()));
    for (int y = 0; y < h; ++y)
        std::memcpy(target.GetPixelAddress(0, y), source.GetPixelAddress(0, y), row);
    return 1;
}

bool VxCacheStuff::CreateCimage(const CString& path, CImage& image) {
    CImage source;
    if (source.Load(path) != S_OK || source.IsNull())
        return false;
    const int W = source.GetWidth() & ~1;
    const int H = source.GetHeight() & ~1;
    const int bytes = source.GetBPP() / 8;
    if (!image.IsNull())
        image.Destroy();
    if (W <= 0 || H <= 0 || bytes < 1 || !image.Create(W, H, 24))
        return false;
    // Upside down and with the first and third byte swapped: rows from the bottom up in R, G, B
    // order, as the texture upload takes them.
    for (int j = 0; j < H; ++j) {
        for (int i = 0; i < W; ++i) {
            const auto* s = static_cast<const unsigned char*>(source.GetPixelAddress(i, j));
            auto* t = static_cast<unsigned char*>(image.GetPixelAddress(i, H - 1 - j));
            if (bytes == 1) {
                t[0] = t[1] = t[2] = s[0];
            } else {
                t[0] = s[2];
                t[1] = s[1];
                t[2] = s[0];
            }
        }
    }
    return true;
}

BYTE* VxCacheStuff::MakeTransparent(int width, int height, const BYTE* bytes, VxColor color) {
    if (width <= 0 || height <= 0)
        return nullptr;
    const size_t n = size_t(width) * size_t(height);
    BYTE* out = new BYTE[n * 4]();
    if (bytes == nullptr)
        return out;
    for (size_t i = 0; i < n; ++i) {
        const BYTE* s = bytes + i * 4;
        out[i * 4 + 0] = BYTE(color.GetR());
        out[i * 4 + 1] = BYTE(color.GetG());
        out[i * 4 + 2] = BYTE(color.GetB());
        out[i * 4 + 3] = BYTE((s[0] + s[1] + s[2]) / 3);
    }
    return out;
}

CBitmap* VxCacheStuff::CreateBitmapFromText(const CString& text, bool small) {
    const int s = small ? 96 : 175;
    CFont font;
    font.CreateFontA(-72, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 16, "Arial");
    const std::vector<BYTE> mask = DrawMask(s, [&](CDC& dc) {
        if (font.GetSafeHandle() != nullptr)
            dc.SelectObject(&font);
        dc.TextOut(0, 0, text);
    });
    if (mask.empty())
        return nullptr;
    BYTE* bytes = MakeTransparent(s, s, mask.data(), VxColor(0, 0, 255, 100));
    auto* bitmap = new CBitmap();
    bitmap->CreateBitmap(s, s, 1, 32, bytes);
    delete[] bytes;
    return bitmap;
}

CBitmap* VxCacheStuff::CreateCircleBitmap(const VxColor& color, bool small) {
    const int s = small ? 96 : 175;
    const std::vector<BYTE> mask = DrawMask(s, [&](CDC& dc) {
        dc.SelectStockObject(WHITE_BRUSH);
        dc.Ellipse(0, 0, s, s);
    });
    if (mask.empty())
        return nullptr;
    BYTE* bytes = MakeTransparent(s, s, mask.data(), color);
    auto* bitmap = new CBitmap();
    bitmap->CreateBitmap(s, s, 1, 32, bytes);
    delete[] bytes;
    return bitmap;
}
