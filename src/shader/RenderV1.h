// RenderV1: the shader path's renderer, one process-wide object. It owns the GLSL programs (each
// compiled lazily at its first draw and kept for the life of the process, but for the mesh
// program of the immediate draw, which is compiled anew for every call), the decoded images and
// the font the path draws with, the glyph stores, the draw queues and the vertex-buffer caches.
// Making it (GetInstance) reads the images and the font from beside the library and makes no GL
// call, so it may happen before any context exists; every drawing operation needs the context
// current. Failures are printed to standard output and the renderer goes on without the thing
// that failed. Split by concern: RenderV1.cpp (making, assets), RenderV1Programs.cpp (program
// slots), RenderV1Materials.cpp (materials, transforms and lights into a program),
// RenderV1MeshPasses.cpp (vertex buffers, immediate mesh draws and the batched tooth queue).
#pragma once

#include <gapeditor/Enumerationofpng.h>
#include <shader/Character.h>
#include <shader/NuBillboardItem.h>
#include <shader/NuDrawItem.h>
#include <shader/NuMeshBuffer.h>
#include <shader/NuPngImage.h>
#include <shader/NuRenderMaterial.h>
#include <shader/NuTriColorItem.h>

#include <interfaces/CPoint.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxVector.h>

#include <glm/glm.hpp>

#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

class Shader;
class NuTextureFont;
class VxEntity;
class VxMatrix;
class VxModel;
class VxViewRegion;

// FreeType's handle types, declared as FreeType declares them, so this header does not pull in
// FreeType's.
typedef struct FT_LibraryRec_* FT_Library;
typedef struct FT_FaceRec_* FT_Face;

class RenderV1 {
public:
    static RenderV1* GetInstance();
    ~RenderV1();

    // Reads the gum images, opens the font and reads the editor images, all from beside the
    // library. Makes no GL call. Called by the constructor.
    void SetUpdata();

    // Forgets the tooth and coloured-triangle buffer caches (not the gum's) without deleting the
    // GL buffers: for a context that has gone away, whose names mean nothing any more.
    void ClearMapofVBOID();

    // ---- mesh passes; every one needs the context current and leaves GL state as it found it
    // (program 0, no array buffer, no array object bound) ----
    // Immediate lit draw of a mesh under `matrix` (placed in the view). Compiles its program
    // anew at every call, the plain or back-and-front mesh program (a gum's from the gum
    // sources), and deletes it after the draw.
    void DrawWithMaterialWithMatrix(VxEntity* entity, NuRenderMaterial material, glm::mat4 matrix);
    // The textured gum, with both gum images uploaded for this draw and deleted after it; the plain
    // mesh program once the textured flag of OpenGLVersion is off.
    void DrawGumWithMaterialWithMatrix(VxEntity* entity, NuRenderMaterial material,
                                       glm::mat4 matrix);
    // A gum in one colour (selected, or a host that never shows the textured gum).
    void DrawGumSelectedWithMaterialWithMatrix(VxEntity* entity, NuRenderMaterial material,
                                               glm::mat4 matrix);
    // Queue a tooth (or an attachment part) for the batch; builds its buffer, draws nothing.
    void SendMaterialMatrix(VxEntity* entity, NuRenderMaterial material, glm::mat4 matrix,
                            bool limited, const VxMatrix* xform);
    void SendAttachMaterialMatrix(VxEntity* entity, NuRenderMaterial material, glm::mat4 matrix,
                                  bool limited, const VxMatrix* xform);
    // Queues a block of coloured triangles; nothing in the library draws this queue.
    void SendWithMaterialWithMatrixTriandColor(float* data, int triangles, glm::mat4 matrix);
    // Coloured triangles, 18 floats each (position, colour), cached by their first float.
    void DrawWithMaterialWithMatrixTriandColor(float* data, int triangles, glm::mat4 matrix);
    // The queued teeth under one program and one array object, stencil value 2; then each one's
    // own overlay objects inside its placement. Does not empty the queue.
    void DrawGraphicObjects();
    // The queued attachment parts the same way, stencil value 6; no second pass, queue kept.
    void DrawGraphicAttachObjects();
    bool GraphicObjectsEmpty() const { return objectQueue.empty(); }

    void Setthemodel(VxModel* model) { theModel = model; }
    VxModel* Getthemodel() { return theModel; }

    // Program slots, in this order. All start null; the kept ones are filled once and live until
    // the process ends.
    Shader* currentMeshShader = nullptr; // compiled for each immediate mesh draw
    Shader* meshShader = nullptr;
    Shader* toothShader = nullptr;
    Shader* gumShader = nullptr;
    Shader* attachShader = nullptr;
    Shader* billboardShader = nullptr;
    Shader* triandcolorShader = nullptr;
    Shader* quadrTextureShader = nullptr;
    Shader* quadrSelectionShader = nullptr;
    Shader* quadrTextureForPngShader = nullptr;
    Shader* lineShader = nullptr;
    Shader* textShader = nullptr;
    Shader* textChineseShader = nullptr;

    // Face count of the mesh being drawn.
    int faceCount = 0;
    // Any-size text store; null until GenTextureFont.
    NuTextureFont* textureFont = nullptr;
    // The font beside the library, opened at a pixel height of 48; null when it could not be.
    FT_Library ftLibrary = nullptr;
    FT_Face ftFace = nullptr;
    std::map<char, Character> asciiCharacters;
    std::map<char16_t, Character> wideCharacters;

    // Glyph text (RenderV1Text.cpp). Every form needs a current context and draws nothing
    // visible when the font could not be opened. The model-space forms go through the view's
    // transforms; RenderText3 writes in window pixels, y down, from the any-size store, and
    // draws nothing before GenTextureFont.
    void GenTextureFont();
    void RenderText(std::string text, float x, float y, float scale, glm::vec3 color);
    void RenderText(VxPoint origin, VxPoint alongEnd, VxPoint upEnd, VxPoint upStart,
                    std::string text, float a, float b, float scale, glm::vec3 color);
    void RenderText2(VxPoint origin, VxPoint alongEnd, VxPoint upEnd, VxPoint upStart,
                     const wchar_t* text, float a, float b, float scale, glm::vec3 color);
    void RenderText2New(VxPoint origin, VxVector along, VxVector up, const wchar_t* text,
                        float scale, glm::vec3 color, bool positiveUp, float widthFactor,
                        float vectorFactor, float unused, float distanceDivisor);
    void RenderText3(CPoint position, float z, const wchar_t* text, glm::vec3 color,
                     float orthoWidth, float orthoHeight, float orthoNear, float orthoFar,
                     int pixelSize, int charsPerLine);

    // Screen-space primitives (RenderV1Primitives.cpp). The "3" forms take window pixels with y
    // down inside an orthographic box of width x height; the others take model points through
    // the view's transforms.
    void DrawLine(VxPoint a, VxPoint b);
    void DrawLineNew(VxPoint a, VxPoint b, VxColor color);
    void DrawQuadrangle(VxPoint a, VxPoint b, VxPoint c, VxPoint d);
    void DrawLine3(CPoint a, CPoint b, float z, glm::vec3 color, float width, float height,
                   float nearPlane, float farPlane);
    void DrawTriangle3(CPoint a, CPoint b, CPoint c, float z, glm::vec3 color, float width,
                       float height, float nearPlane, float farPlane);
    void DrawQuadrangle3(CPoint a, CPoint b, CPoint c, CPoint d, float z, glm::vec3 color,
                         float width, float height, float nearPlane, float farPlane);
    void SendBillBoard(VxPoint a, VxPoint b, CString text);
    void DrawBillBoard(VxPoint a, VxPoint b, CString text);
    void DrawGraphicBillBoard3d();
    CPoint Divider(CPoint p, int n);
    CPoint Multiplyer(CPoint p, int n);
    // Placement tests of the gap editor, against the current view's transforms.
    bool DisplayJudge(VxViewRegion* region, VxPoint p);
    bool DisplayJudgeforgap(VxViewRegion* region, VxPoint p, bool upper);
    VxPoint ChangePoint(VxViewRegion* region, VxPoint base, VxPoint p);

    // Editor images (RenderV1Png.cpp): textures made once, and a keyed image quad whose
    // near-white shows what lies behind it. Corners a, b, c, d run top-left, top-right,
    // bottom-right, bottom-left.
    void PrepareDrawcreatemodify();
    void DrawQuadrangle3forPng(Enumerationofpng image, CPoint a, CPoint b, CPoint c, CPoint d,
                               float z, glm::vec3 color, float width, float height, float nearPlane,
                               float farPlane);

    // The in-view gap editor (RenderV1Editor.cpp), drawn last in each view on this path and only
    // while ModelCreateModify's IsShowIPR is on. Model-anchored buttons are quads of constant
    // screen size; cards, arrows, locks and list rows are drawn in window pixels. Depth testing
    // is off for the editor: it lies over the model, and the later element lies over the
    // earlier, the same order the pick pass draws in. Open lists come after every record, so
    // they lie on top. Leaves GL state as it found it.
    void Drawcreatemodify(VxViewRegion* region);
    void Drawcreatemodify(VxPoint anchor, VxViewRegion* region, Enumerationofpng element,
                          float sizeX, float sizeY, bool centred, bool lift);
    void DrawcreatemodifyforDisplay(VxPoint anchor, VxPoint changed, VxViewRegion* region,
                                    Enumerationofpng element, float sizeX, float sizeY, bool first,
                                    bool second, float value);
    void DrawcreatemodifyforDisplayforPng(VxPoint anchor, VxPoint changed, VxViewRegion* region,
                                          Enumerationofpng element, float sizeX, float sizeY,
                                          bool first, bool second, float value, int firstTooth,
                                          int secondTooth);
    // Colour picking of the editor: every shown element once more in a flat code colour (element,
    // record id, row code) into an off-screen buffer without depth, one pixel read back at the
    // mouse (window pixels, y down). Only while IsOnCreateModified is on. Returns the three bytes
    // in pickResult, or null for a null region; zeros for an empty region or a buffer GL will not
    // complete. Leaves the default frame buffer bound and the depth test off.
    unsigned char* ObjectSelected(VxViewRegion* region, int x, int y);
    void DrawSelectioncreatemodify(VxPoint anchor, VxViewRegion* region, int id,
                                   Enumerationofpng element, float sizeX, float sizeY, bool lift);
    void DrawSelectioncreatemodifyforDisplayforPng(VxPoint anchor, VxPoint changed,
                                                   VxViewRegion* region, int id,
                                                   Enumerationofpng element, float sizeX,
                                                   float sizeY, bool first, bool second,
                                                   float value, int firstTooth, int secondTooth);
    unsigned char pickResult[4] = {0, 0, 0, 0};

    std::vector<NuDrawItem> objectQueue;
    std::vector<NuDrawItem> attachQueue;
    std::vector<NuBillboardItem> billboardQueue;
    std::vector<NuTriColorItem> triColorQueue;

    // Vertex buffers by (entity, face count); coloured triangles by their first float, with the
    // triangle count the buffer was made for (no draw reads past it); gums by (entity, face
    // count, shape checksum).
    std::map<std::pair<VxEntity*, int>, NuMeshBuffer> mapOfVBOID;
    std::map<float, NuMeshBuffer> mapOfTriColorVBO;
    std::map<std::tuple<VxEntity*, int, double>, NuMeshBuffer> mapOfGumVBO;

    VxModel* theModel = nullptr;

    // "GumImageredwhite.png" (colour) and "GumImagebump.png" (normal map), RGB; null pixels
    // when a file was missing or unreadable.
    unsigned char* gumImagePixels = nullptr;
    int gumImageWidth = 0;
    int gumImageHeight = 0;
    unsigned char* gumBumpPixels = nullptr;
    int gumBumpWidth = 0;
    int gumBumpHeight = 0;

    // The editor's images by element; their textures are made at the first editor draw.
    std::map<Enumerationofpng, NuPngImage> editorImages;
    bool editorTexturesMade = false;

private:
    friend class RenderV1Probe; // the tests' window onto the private passes

    RenderV1();
    RenderV1(const RenderV1&) = delete;
    RenderV1& operator=(const RenderV1&) = delete;

    // The kept programs, each with its pair of sources.
    enum KeptProgram_e {
        Kept_Mesh,
        Kept_Tooth,
        Kept_Gum,
        Kept_Attach,
        Kept_Billboard,
        Kept_TriAndColor,
        Kept_QuadrTexture,
        Kept_QuadrSelection,
        Kept_QuadrTextureForPng,
        Kept_Line,
        Kept_Text,
        Kept_TextChinese,
        Kept_Count
    };
    // The slot's program, compiled from the table when the slot is still null.
    Shader* KeptProgram(KeptProgram_e which);
    // The immediate mesh draw's program, compiled anew: the mesh vertex source with the plain or
    // back-and-front fragment source; for a gum, compiled a second time from the gum sources,
    // which replace the first without deleting its GL program.
    Shader* CompileCurrentMeshShader(bool backAndFront, bool gum);

    // Everything a lit program reads, into `shader` (which must be current): viewPos,
    // projection, model (the view's transform times `matrix`), view, both light rigs, the
    // material and alphaforblimited. A program without one of those names ignores it.
    void PreparingDataForShader(Shader* shader, NuRenderMaterial material, glm::mat4 matrix);
    // The same into currentMeshShader, without the gum rig.
    void PreparingDataForShader(NuRenderMaterial material, glm::mat4 matrix);
    void BindTransformAndLightUniformToShader(glm::mat4 matrix);
    void BindMaterialUniformToShader(NuRenderMaterial material);

    // The plain buffer of the entity, built or rebuilt as needed and left bound to
    // GL_ARRAY_BUFFER; sets faceCount.
    void PreparingVertexData(VxEntity* entity);
    // The gum buffer, keyed by shape as well, left bound.
    void PreparingVertexDataforGum(VxEntity* entity);
    // The first pass of the two batches.
    void DrawQueue(const std::vector<NuDrawItem>& queue, Shader* shader, int stencil);
    // Both editor passes walk the records through this, so they draw the same elements in the
    // same order; `pick` chooses the code forms.
    void WalkEditor(VxViewRegion* region, bool pick);
    // The button quad's four model-space corners.
    void EditorQuad(VxPoint anchor, VxViewRegion* region, Enumerationofpng element, float sizeX,
                    float sizeY, bool lift, VxPoint corners[4]);
    // One list's rows, visible or in codes.
    void DrawEditorList(VxPoint changed, VxViewRegion* region, int id, Enumerationofpng element,
                        bool wide, int firstTooth, int secondTooth, bool pick);
    // The card's parts (triangles, lock), visible or in codes.
    void DrawEditorCardPart(VxPoint changed, VxViewRegion* region, int id, Enumerationofpng element,
                            bool wide, bool pick);
};
