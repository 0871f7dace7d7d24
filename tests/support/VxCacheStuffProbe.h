// VxCacheStuffProbe: the tests' window into the overlay cache's containers and private builders.
// The cache names it as a friend; nothing in the library uses it.
#pragma once

#include <aux/VxAuxTexture.h>
#include <overlays/VxCacheStuff.h>

#include <map>

class VxCacheStuffProbe {
public:
    static size_t Labels() { return C()->m_toothLabels.size(); }
    static size_t Marks() { return C()->m_moveMarks.size(); }
    static size_t FaccCurves() { return C()->m_faccCurves.size(); }
    static size_t RefObjects() { return C()->m_toothRefObjects.size(); }
    static size_t ArchWires() { return C()->m_archWire.size(); }
    static size_t BeautyPoints() { return C()->m_beautyPoints.size(); }
    static size_t PanMarkers() { return C()->m_panMarkers.size(); }
    static size_t AnchorGrids() { return C()->m_anchorGrids.size(); }
    static VxAuxTexture* Label(VxTooth* t) { return Find<VxAuxTexture>(C()->m_toothLabels, t); }
    static VxAuxTexture* Mark(VxTooth* t) { return Find<VxAuxTexture>(C()->m_moveMarks, t); }
    static VxAuxObject* Facc(VxTooth* t) { return Find<VxAuxObject>(C()->m_faccCurves, t); }
    static VxAuxPoint* KeyPoint() { return C()->m_keyPoint; }
    static const std::vector<VxAuxObject*>& ArchWire() { return C()->m_archWire; }
    static const std::vector<VxAuxMarker*>& Markers() { return C()->m_panMarkers; }
    static const std::vector<VxAuxObject*>& Beauty() { return C()->m_beautyPoints; }
    // 0 middle, 1 back boundary, 2 beauty, 3 upper jaw, 4 lower jaw.
    static VxAuxPlane* Plane(int which) {
        VxCacheStuff* c = C();
        VxAuxPlane* planes[5] = {c->m_middlePlane, c->m_backBoundaryPlane, c->m_beautyPlane,
                                 c->m_upJawPlane, c->m_downJawPlane};
        return planes[which];
    }
    static VxAuxPipeLine* ToothLine(bool up) {
        return up ? C()->m_upToothLine : C()->m_downToothLine;
    }
    // 0 X-ray, 1 front, 2 profile, 3 panoramic.
    static VxAuxTexture* Picture(int which) {
        VxCacheStuff* c = C();
        VxAuxTexture* p[4] = {c->m_xImg, c->m_frontImg, c->m_profileImg, c->m_panoramicImg};
        return p[which];
    }
    static CBitmap* TextBitmap(const CString& text, bool small) {
        return C()->CreateBitmapFromText(text, small);
    }
    static CBitmap* CircleBitmap(const VxColor& colour, bool small) {
        return C()->CreateCircleBitmap(colour, small);
    }
    static BYTE* MakeTransparent(int w, int h, const BYTE* bytes, const VxColor& colour) {
        return C()->MakeTransparent(w, h, bytes, colour);
    }
    static void FDIPosition(VxTooth* t, VxPoint* corners, bool small) {
        C()->CalculateFDIPosition(t, corners, small);
    }
    static VxPoint SeeCenter(VxTooth* t) { return C()->GetToothSeeCenter(t); }
    static void ReadConfigFile() { C()->ReadConfigFile(); }

private:
    static VxCacheStuff* C() { return VxCacheStuff::GetInstance(); }
    template <typename T> static T* Find(const std::map<VxTooth*, VxAuxObject*>& m, VxTooth* t) {
        const auto it = m.find(t);
        return it == m.end() ? nullptr : static_cast<T*>(it->second);
    }
};
