// VxAuxObject: base of the auxiliary drawables (points, lines, planes, markers...) that the
// library draws over the patient's meshes. It holds what every such object shares: the renderer
// used for screen mapping, the colour, the front and draw-hidden flags, whether the registry may
// hit it and its hit priority. It draws nothing itself; the shared depth-mode contract lives here
// as protected helpers so that every class applies it the same way.
#pragma once

#include <interfaces/VxColor.h>
#include <interfaces/VxObject.h>

class VxOpenGLRender;

// Sort key of the registry: a greater number draws and is hit first. Only the order matters.
enum AuxObject_HitPriority : int {
    AuxHitPriority_Lowest = 0,
    AuxHitPriority_Low = 1,
    AuxHitPriority_Normal = 2,
    AuxHitPriority_High = 3,
    AuxHitPriority_Highest = 4,
};

class VxAuxObject : public VxObject {
public:
    VxAuxObject();
    VxAuxObject(const VxAuxObject& other);
    VxAuxObject& operator=(const VxAuxObject& other);
    ~VxAuxObject() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    virtual void Draw() {}
    // The hit object's extra drawing, on top of everything in every view.
    virtual void DrawHighlight() {}
    // x and y are window pixels, y from the top.
    virtual bool HitTest(int x, int y);
    // True: a hit on this object ends the registry's search.
    virtual bool StopHit() { return true; }

    void SetColor(const VxColor& color) { m_color = color; }
    const VxColor& GetColor() const { return m_color; }
    void SetDrawHidden(bool drawHidden) { m_drawHidden = drawHidden; }
    bool IsDrawHidden() const { return m_drawHidden; }
    void SetIsFront(bool front) { m_front = front; }
    bool IsFront() const { return m_front; }
    void SetHitable(bool hitable) { m_hitable = hitable; }
    bool IsHitable() const { return m_hitable; }
    // Set it before AddAuxObject: the registry's set is ordered by it.
    void SetHitPriority(AuxObject_HitPriority priority) { m_hitPriority = priority; }
    AuxObject_HitPriority GetHitPriority() const { return m_hitPriority; }
    VxOpenGLRender* GetRender() const { return m_render; }

    // Channels scaled and truncated to a byte, alpha included (the dimmed hidden pass).
    static VxColor Scaled(const VxColor& c, double factor);
    static void GLColor(const VxColor& c);
    static void GLColor(const VxColor& c, int alpha);

protected:
    // Attribute groups every pass saves: enough to undo the depth mode, the hidden pass's blend
    // and depth mask, the colour, widths, sizes, stipples and lights the classes change.
    static constexpr unsigned kPassAttribs =
        0x00000001 /*GL_CURRENT_BIT*/ | 0x00000002 /*GL_POINT_BIT*/ | 0x00000004 /*GL_LINE_BIT*/ |
        0x00000008 /*GL_POLYGON_BIT*/ | 0x00000040 /*GL_LIGHTING_BIT*/ |
        0x00000100 /*GL_DEPTH_BUFFER_BIT*/ | 0x00002000 /*GL_ENABLE_BIT*/ |
        0x00004000 /*GL_COLOR_BUFFER_BIT*/;

    // The passes of a model-space object: nothing when invisible; front draws once with depth
    // test off (mode GL_NEVER); otherwise GL_LEQUAL, then GL_GREATER if hidden parts are drawn.
    template <typename Pass> void DrawPasses(Pass pass) {
        if (!IsVisible()) {
            return;
        }
        if (m_front) {
            pass(kModeFront);
        } else {
            pass(kModeVisible);
            if (m_drawHidden) {
                pass(kModeHidden);
            }
        }
    }
    // Depth test, depth function and, for the hidden pass, the blend that lets the scene show
    // through. Call inside the pass's glPushAttrib.
    static void ApplyDepthMode(int mode);
    // glPopAttrib that also brings back the current colour when the pass set a colour and drew
    // nothing after it: Mesa keeps such a colour pending and would write it over the restored
    // one, so the frame's next background would take the object's colour.
    static void PopPass();
    // The pass colour: dimmed to 0.3 in the hidden pass, the selection amber for a selected
    // object when useSelected, else the object's colour.
    VxColor PassColor(int mode, bool useSelected) const;

    static constexpr int kModeFront = 0x0200;   // GL_NEVER: depth test off
    static constexpr int kModeVisible = 0x0203; // GL_LEQUAL
    static constexpr int kModeHidden = 0x0204;  // GL_GREATER

    VxOpenGLRender* m_render = nullptr;
    bool m_front = false;
    VxColor m_color;
    bool m_drawHidden = false;
    bool m_hitable = true;
    AuxObject_HitPriority m_hitPriority = AuxHitPriority_Normal;
};
