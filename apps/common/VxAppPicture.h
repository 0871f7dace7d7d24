// VxAppPicture: one of the case's patient pictures laid over the patient as a picture overlay
// (a VxAuxTexture fitted to the first view, movable type), the panoramic film with its landmark
// markers, which follow the picture. The registry owns what is shown; this object remembers it
// so that it can take it away again.
#pragma once

#include "VxAppTypes.h"

#include <string>
#include <vector>

class VxAuxMarker;
class VxAuxRender;
class VxAuxTexture;
class VxCase;
class VxViewRegion;

class VxAppPicture {
public:
    // Replaces what is shown by `kind` of the case's pictures, over `view`. None removes. False
    // with `error` set (and nothing shown) when the case has no such picture or it cannot be
    // uploaded. Needs the GL context current.
    bool Show(VxCase* c, VxAppPictureKind kind, VxAuxRender* aux, VxViewRegion* view,
              std::string& error);
    // Takes the picture and its markers out of the registry and deletes them.
    void Remove(VxAuxRender* aux);
    // The registry was cleared and deleted them: only the pointers go.
    void Forget();
    // A layout change makes new views: the picture is drawn in the first one.
    void FollowView(VxViewRegion* view);
    VxAppPictureKind Kind() const { return m_kind; }
    VxAuxTexture* Texture() const { return m_texture; }
    const std::vector<VxAuxMarker*>& Markers() const { return m_markers; }
    // The kind after `kind` in the cycle none, front, profile, xray, panoramic.
    static VxAppPictureKind Next(VxAppPictureKind kind);

private:
    VxAppPictureKind m_kind = VxAppPictureKind::None;
    VxAuxTexture* m_texture = nullptr;
    std::vector<VxAuxMarker*> m_markers;
};
