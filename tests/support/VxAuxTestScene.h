// VxAuxTestScene: the library brought up the way a host does it, for the aux-object tests: the
// renderer's context on an off-screen window, one view looking down -z (x right, y up) at a
// chosen number of pixels per millimetre, and a grey slab (a jaw mesh) under the left half of
// the picture, so that depth passes have something to be hidden behind. Frame() draws the
// scene; aux objects are drawn after it, as the host would. Screen points count y from the top.
#pragma once

#include "VxTestImage.h"

#include <interfaces/CPoint.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxPoint.h>

class VxAuxRender;
class VxOpenGLRender;

class VxAuxTestScene {
public:
    // Opens the context once per process; false where EGL gives none.
    // whitePage: a plain white picture behind everything; otherwise the window is black, as the
    // library paints it without a picture. Once per process; the first call decides.
    static bool Open(int width, int height, bool whitePage = true);
    static int Width();
    static int Height();

    // The slab spans x in [-20, 0], y in [-20, 20], z in [-1, slabTop]. No slab when `slab` is
    // false (the model is then an invisible speck far behind, so the camera has a model).
    VxAuxTestScene(double pxPerMm, bool slab = true, double slabTop = 1.0);
    ~VxAuxTestScene();
    VxAuxTestScene(const VxAuxTestScene&) = delete;
    VxAuxTestScene& operator=(const VxAuxTestScene&) = delete;

    // RenderScene(true): clears and draws the slab, stores the view's matrix.
    void Frame();
    // Frame, then the registry's Render, then the picture.
    VxTestImage FrameWithAux();
    static VxTestImage Read();
    CPoint ToScreen(const VxPoint& p) const;
    double PxPerMm() const { return m_pxPerMm; }
    static VxOpenGLRender* Render();
    static VxAuxRender* Aux();
    // Saves a picture under the test output folder for a person to look at.
    static void Save(const VxTestImage& image, const std::string& name);

    VxModel model;
    VxJaw slab{false};

private:
    double m_pxPerMm;
};

// Colour helpers on a read picture.
inline bool IsRedDominant(const std::uint8_t* p) {
    return p[0] > 120 && p[0] > p[1] + 60 && p[0] > p[2] + 60;
}
