// VxTextHelper: one label of the overlays: a billboard pin from an anchor point on the model to
// the label's place, with its text. The billboard belongs to the aux registry once shown; the
// helper keeps a pointer to take it out again.
//
// The back and text colours are kept for the callers that set them, but the billboard always
// shows in the one label green: nothing reads them.
#pragma once

#include <interfaces/CString.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxPoint.h>

class VxAuxBillBoard3d;
class VxAuxRender;

class VxTextHelper {
public:
    explicit VxTextHelper(VxAuxRender* auxRender);
    // Deletes nothing: the billboard is the registry's.
    virtual ~VxTextHelper();

    void SetIsUp(bool isUp) { m_isUp = isUp; }
    bool IsUp() const { return m_isUp; }
    void SetBackColor(const VxColor& color) { m_backColor = color; }
    const VxColor& GetBackColor() const { return m_backColor; }
    void SetTextColor(const VxColor& color) { m_textColor = color; }
    const VxColor& GetTextColor() const { return m_textColor; }
    VxAuxBillBoard3d* GetBillBoard() const { return m_billboard; }

    // Builds the billboard from anchor to labelPos and registers it. A label left of its anchor
    // on screen grows away from it to the left.
    void Show(VxPoint anchor, VxPoint labelPos, CString text);
    // The same, with a mark and a centre for the shader-path billboards.
    void Show(VxPoint centre, int mark, VxPoint anchor, VxPoint labelPos, CString text);
    // Forwards to the billboard; nothing before Show.
    void SetVisible(int visible);
    // Takes the billboard out of the registry and deletes it.
    void Remove();

private:
    void Build(const VxPoint* centre, int mark, const VxPoint& anchor, const VxPoint& labelPos,
               const CString& text);

    VxAuxRender* m_auxRender = nullptr;      // not owned
    VxAuxBillBoard3d* m_billboard = nullptr; // the registry's once added
    unsigned m_reserved = 0;
    // Left unset by the constructor in the older code; false here so that a pair across the
    // jaws reads as a lower label rather than as whatever the memory held.
    bool m_isUp = false;
    VxColor m_backColor{55, 25, 125, 100};
    VxColor m_textColor{4, 44, 125, 100};
    VxColor m_thirdColor;
};
