// VxFixedDrawSteps: the steps the six fixed-function drawers share: the jaw-mask show test, the
// choice of placements by display mode and step, the placement matrix, the see-through set-up of
// a limited placement, the rasterisation of a mesh's buffers by display mode, the optional
// bitmap texture, and the selection drawing with object names. The drawers decide colour and
// order; nothing here keeps state between frames but the bitmap images and the saved projection
// of the pick in progress.
#pragma once

#include <interfaces/CPoint.h>
#include <interfaces/VxMatrix.h>

#include <vector>

class VxEntity;
class VxMesh;
class VxModel;
class VxObject;
class VxVBOHandle;
class VxViewRegion;
struct VxDIBImage;

// One rasterisation: with or without a placement matrix, see-through or not.
struct VxPlacement {
    bool hasMatrix = false;
    VxMatrix matrix;
    bool limited = false;
};

class VxFixedDrawSteps {
public:
    // Which entries of the DrawInfo_s set a draw uses.
    enum PlacementRule : int {
        Placement_All,         // every entry with its flag; none: once without matrix
        Placement_Once,        // once, without matrix
        Placement_LimitedOnly, // the flagged entries, opaque; none: once without matrix
        Placement_Nothing,
    };
    // The kinds with a row of their own in the display-mode table.
    enum Kind : int { Kind_Tooth, Kind_Gum, Kind_Attachment, Kind_Jaw };

    // The rule for a kind in a view (display mode of VxViewManager, step of the view). isCmp is
    // the comparison flag of a gum or attachment. A null view counts as a normal view.
    static PlacementRule RuleFor(Kind kind, const VxViewRegion* view, bool isCmp);
    static std::vector<VxPlacement> Placements(VxEntity* entity, PlacementRule rule);

    // The jaw-mask test: shelters the object and answers false when its jaw's bit is clear,
    // unshelters it and answers true otherwise. A null view shows everything.
    static bool ShowTest(VxObject* object, const VxViewRegion* view, bool up, unsigned int upBit,
                         unsigned int lowBit);
    // The shelter flags that drawing the view would leave on the model's visible, undeleted
    // entities (teeth, gums, jaws, attachments of visible teeth, wedges), without drawing.
    // Selection follows the jaws that the last drawn view showed; a host picking in a view of a
    // multi-view layout calls this after the frame, which is the same as drawing that view last.
    static void ShelterAsShownIn(VxModel* model, const VxViewRegion* view);

    // Puts the current colour back at the end of a scope. Mesa (seen on llvmpipe) loses the
    // restore of GL_CURRENT_BIT when a colour set after the push is followed by the pop of an
    // enable group (the see-through push, or the attachment's 0x6041): the pop brings back the
    // stale colour of its vertex cache instead. Used where a drawer sets a colour inside such a
    // push.
    class CurrentColourKeeper {
    public:
        CurrentColourKeeper();
        ~CurrentColourKeeper();
        CurrentColourKeeper(const CurrentColourKeeper&) = delete;
        CurrentColourKeeper& operator=(const CurrentColourKeeper&) = delete;

    private:
        float m_colour[4];
    };

    // glPushMatrix + glMultMatrixd on the model-view stack; nothing without a matrix.
    static void PushPlacement(const VxPlacement& placement);
    static void PopPlacement(const VxPlacement& placement);
    // Enable and colour-buffer push, colour material, alpha blending.
    static void BeginLimited();
    static void EndLimited();

    // An optional bitmap texture ("teeth.bmp" or "gum.bmp"): the image is loaded once per
    // process, at the first draw that finds the file; the texture name is made at the first
    // textured draw.
    struct Bitmap {
        const wchar_t* suffix;
        VxDIBImage* image = nullptr;
        unsigned int texture = 0;
        bool tried = false;
        explicit Bitmap(const wchar_t* s) : suffix(s) {}
        // The file is there (asked at every call) and its image could be read.
        bool Active();
    };

    // Steps 7 to 9 for the buffers of a handle: faces (with the bitmap bound when one is given)
    // in the two solid modes, black edges in solid-edges and edges, red points of size 5 in
    // points. faceCount is the number of triangles to draw. Array client states are the caller's.
    static void Rasterise(const VxVBOHandle& handle, VxMesh* mesh, int faceCount, Bitmap* bitmap);
    // Only the line styles of steps 8 and 9, no faces: black edges in solid-edges and edges, red
    // points in points. The shader-path drawers put the faces on screen their own way.
    static void RasteriseLines(const VxVBOHandle& handle, VxMesh* mesh);
    // The same for an attachment: the standard shape's faces once per part matrix.
    static void RasteriseParts(const VxVBOHandle& handle, VxMesh* stdMesh,
                               const std::vector<VxMatrix>& parts);

    // The selection drawing every drawer shares: per unflagged placement, the entity under its
    // own name, then faces, edges and near vertices under theirs, as the select types ask.
    static void DrawForSelect(VxEntity* entity, VxMesh* mesh, const CPoint& point);
    // The projection the pick saved before it loaded its pick window; the near-vertex search
    // projects with it. Null (the default) uses whatever projection is loaded.
    static void SetSelectProjection(const double* projection16);
};
