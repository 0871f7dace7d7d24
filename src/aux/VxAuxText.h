// VxAuxText: a text over the scene, either as a one-bit bitmap placed in window pixels or as
// outline glyphs in model space that always face the viewer. The costly part is SetText, which
// rasterises the bitmap or compiles one display list per character; drawing only replays them.
// The text type must be set before the text, since SetText builds the form the type asks for.
#pragma once

#include <aux/VxAuxObject.h>
#include <interfaces/CPoint.h>
#include <interfaces/CString.h>
#include <interfaces/VxGdi.h>
#include <interfaces/VxPoint.h>

#include <vector>

class CDC;
class VxViewRegion;

enum Text_Type : int {
    Text_OnScreen = 0,     // bitmap at window pixels; negative coordinates count from the far edge
    Text_ModelDepth = 1,   // outline glyphs at a model point, hidden by what lies in front
    Text_ModelNoDepth = 2, // outline glyphs at a model point, over everything
    Text_Hidden = 3,       // drawn by no form
    Text_OnScreenOnce = 4, // bitmap, drawn once for the whole window by the registry
};

class VxAuxText : public VxAuxObject {
public:
    VxAuxText();
    // Display lists cannot be shared between two owners.
    VxAuxText(const VxAuxText&) = delete;
    VxAuxText& operator=(const VxAuxText&) = delete;
    ~VxAuxText() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    void Draw() override;
    virtual void Draw(VxViewRegion* view);
    // Answers the hitable flag wherever the cursor is.
    bool HitTest(int x, int y) override;

    // Builds the bitmap (types 0 and 4) or the glyph lists (other types), freeing the lists of
    // the text before. Model-space text needs a current GL context.
    void SetText(const CString& text);
    // Stores the text only: the shader path draws it itself.
    void SetTextforNuBillboard(const CString& text) { m_text = text; }
    const CString& GetText() const { return m_text; }
    void SetSize(int size) { m_size = size; }
    int GetSize() const { return m_size; }
    void SetTextType(Text_Type type) { m_textType = type; }
    Text_Type GetTextType() const { return m_textType; }
    void SetTextPos(const CPoint& p);
    void SetTextPos(const VxPoint& p);
    VxPoint GetTextPos() const { return VxPoint(m_pos[0], m_pos[1], m_pos[2]); }
    void SetIsUp(bool up) { m_isUp = up; }
    bool GetIsUp() const { return m_isUp; }

    // What SetText built, for callers that measure or account for it.
    int GetBitmapWidth() const { return m_bitmapWidth; }
    int GetBitmapHeight() const { return m_bitmapHeight; }
    unsigned GetListBase() const { return m_listBase; }
    int GetLineCount() const { return m_lineCount; }

    static constexpr unsigned kNoList = 0xFFFFFFFFu;
    static constexpr int kMaxLines = 5;
    static constexpr int kMaxLineChars = 32;
    // A text this long or longer gets no glyph lists.
    static constexpr int kMaxListChars = 161;

protected:
    void DrawOnScreen();
    void DrawOnScreen(VxViewRegion* view);
    bool createBufferFromBmp(const CDC& dc, HBITMAP bitmap);
    // Zeroes the buffer for rows of `width` bits (a multiple of 32) and `height` rows.
    void resize(int width, int height, int trueWidth, int trueHeight);
    // Rotation that turns the glyphs' x and y into the window's right and up, in the model
    // coordinates of the view (column-major); false without a renderer.
    bool ScreenFacingMatrix(VxViewRegion* view, double out[16]) const;

    int m_size = 15;
    Text_Type m_textType = Text_OnScreen;
    double m_pos[3] = {0.0, 0.0, 0.0};
    CString m_text;
    std::vector<BYTE> m_glyphBuffer;
    int m_bitmapWidth = 0;
    int m_bitmapHeight = 0;
    BYTE m_lineGlyphs[kMaxLines][kMaxLineChars] = {};
    unsigned m_listBase = kNoList;
    int m_listCount = 0;
    int m_lineCount = 1;
    int m_lineLengths[10] = {};
    bool m_isUp = false;

private:
    void CreateLists();
    void FreeLists();
    void BuildBitmap();
    static std::vector<std::wstring> SetStringLine(const std::wstring& text);
    void DrawInModelCoord(bool depth);
    void DrawInModelCoord(bool depth, VxViewRegion* view);
};
