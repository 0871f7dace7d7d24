// VxAppPicture: upload of the case's picture as it is held (the overlay layout), and the
// panoramic landmarks placed by their shares of the picture, coloured and numbered by kind.
#include "VxAppPicture.h"

#include <VxCase.h>

#include <aux/VxAuxMarker.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxTexture.h>
#include <interfaces/CBitmap.h>
#include <interfaces/CImage.h>
#include <interfaces/CString.h>

namespace {

CImage* PictureOf(VxCase& c, VxAppPictureKind kind) {
    VxPatientInfo& info = c.patientInfo;
    switch (kind) {
    case VxAppPictureKind::Front:
        return info.GetFrontalSmileImg();
    case VxAppPictureKind::Profile:
        return info.GetProfileImg();
    case VxAppPictureKind::Xray:
        return info.GetCephalometricImg();
    case VxAppPictureKind::Panoramic:
        return info.GetPanoramicImg();
    case VxAppPictureKind::None:
        break;
    }
    return nullptr;
}

// A landmark's label and fill by its kind: the number less the kind's offset, or a mark.
// Unknown kinds get an invisible marker.
VxAuxMarker* Landmark(const PanAttribute& a, const CPoint& at) {
    auto* m = new VxAuxMarker();
    m->SetHitable(false);
    std::wstring label;
    VxColor fill;
    bool shown = true;
    switch (a.kind) {
    case 1:
        label = std::to_wstring(a.number);
        fill = VxColor(255, 0, 0, 100);
        break;
    case 2:
        label = std::to_wstring(a.number - 3);
        fill = VxColor(49, 196, 9, 100);
        break;
    case 3:
        label = std::to_wstring(a.number - 13);
        fill = VxColor(243, 98, 47, 100);
        break;
    case 4:
        label = std::to_wstring(a.number - 17);
        fill = VxColor(53, 51, 200, 100);
        break;
    case 5:
        label = std::to_wstring(a.number - 22);
        fill = VxColor(132, 50, 200, 100);
        break;
    case 6:
        fill = VxColor(19, 222, 241, 100);
        break;
    case 7:
        label = L"?";
        fill = VxColor(91, 89, 89, 100);
        break;
    default:
        shown = false;
        break;
    }
    m->SetCircle(at, 10.0);
    m->SetText(CString(label));
    if (shown) {
        m->SetFillColor(fill);
    } else {
        m->SetVisible(0);
    }
    return m;
}

} // namespace

bool VxAppPicture::Show(VxCase* c, VxAppPictureKind kind, VxAuxRender* aux, VxViewRegion* view,
                        std::string& error) {
    Remove(aux);
    if (kind == VxAppPictureKind::None) {
        return true;
    }
    CImage* image = c != nullptr ? PictureOf(*c, kind) : nullptr;
    if (image == nullptr || image->IsNull()) {
        error = std::string("the case has no ") + VxAppNameOf(kVxAppPictures, kind) + " picture";
        return false;
    }
    auto* texture = new VxAuxTexture(view);
    texture->SetType(AuxTexture_Movable);
    // The picture lends its bitmap for the upload only.
    CBitmap bitmap;
    bitmap.Attach(image->Detach());
    const bool uploaded = texture->SetTexture(bitmap);
    image->Attach(bitmap.Detach());
    if (!uploaded) {
        delete texture;
        error = std::string("the ") + VxAppNameOf(kVxAppPictures, kind) +
                " picture could not be uploaded";
        return false;
    }
    texture->SetVisible(1);
    aux->AddAuxObject(texture);
    m_texture = texture;
    m_kind = kind;

    if (kind == VxAppPictureKind::Panoramic && c->panMeasure.HasData()) {
        // Shares of the picture's width from its left, of its height from its bottom.
        const CPoint c0 = texture->GetScreenPtns(0);
        const CPoint c1 = texture->GetScreenPtns(1);
        const CPoint c2 = texture->GetScreenPtns(2);
        for (const PanAttribute& a : c->panMeasure.GetDatas()) {
            const CPoint at(int(a.point[0] * (c2.x - c1.x)) + c0.x,
                            c0.y - int(a.point[1] * (c0.y - c1.y)));
            VxAuxMarker* m = Landmark(a, at);
            aux->AddAuxObject(m);
            m_markers.push_back(m);
        }
        texture->SetMarkers(m_markers);
    }
    return true;
}

void VxAppPicture::Remove(VxAuxRender* aux) {
    for (VxAuxMarker* m : m_markers) {
        aux->RemoveAuxObject(m, true);
    }
    if (m_texture != nullptr) {
        aux->RemoveAuxObject(m_texture, true);
    }
    Forget();
}

void VxAppPicture::Forget() {
    m_markers.clear();
    m_texture = nullptr;
    m_kind = VxAppPictureKind::None;
}

void VxAppPicture::FollowView(VxViewRegion* view) {
    if (m_texture != nullptr && view != nullptr) {
        m_texture->SetRelatedView(view);
    }
}

VxAppPictureKind VxAppPicture::Next(VxAppPictureKind kind) {
    for (std::size_t i = 0; i < kVxAppPictures.size(); ++i) {
        if (kVxAppPictures[i].value == kind) {
            return kVxAppPictures[(i + 1) % kVxAppPictures.size()].value;
        }
    }
    return VxAppPictureKind::None;
}
