// VxCacheStuff: the process-wide holder of the clinical overlays. Each overlay is a set of aux
// objects built from the current model, reference data and scheme when the host turns it on,
// and thrown away when the host turns it off; nothing here watches the model.
//
// Three kinds of ownership, one per overlay:
//  - registered objects belong to the aux registry from AddAuxObject on and leave it through
//    RemoveAuxObject(object, true);
//  - tooth labels, movement marks and Facc curves stay out of the registry, are owned here and
//    reach the screen only through GetDisplayStuffByTooth, drawn inside the tooth's placement;
//  - the four pictures are registered but deleted here: RemoveAuxObject(object, false), then
//    delete.
#pragma once

#include <interfaces/CPoint.h>
#include <interfaces/CString.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxGdi.h>
#include <interfaces/VxPoint.h>
#include <overlays/VxAttachAnchorGrid.h>

#include <map>
#include <vector>

class CBitmap;
class CImage;
class VxAttachment;
class VxAuxMarker;
class VxAuxObject;
class VxAuxPipeLine;
class VxAuxPlane;
class VxAuxPoint;
class VxAuxTexture;
class VxGapInfo;
class VxIPR;
class VxMeasureGrid;
class VxModel;
class VxTextHelper;
class VxTooth;
class VxToothRef;

class VxCacheStuff {
public:
    static VxCacheStuff* GetInstance();
    virtual ~VxCacheStuff();
    // Memberwise: a copy shares every overlay object with its source. The host has no reason
    // to copy the singleton.
    VxCacheStuff(const VxCacheStuff&) = default;
    VxCacheStuff& operator=(const VxCacheStuff&) = default;

    // Stores the pointer only; the host calls Clear first when it replaces a model.
    void SetModel(VxModel* model);
    VxModel* GetModel() const { return m_model; }
    // Removes every overlay but the arch wire, the IPR labels, the attachment labels and the
    // measure grid, and forgets the anchor grids.
    void Clear();

    // Appends the objects that travel with the tooth: its label, its Facc curve, its movement
    // mark, each only if present. The vector keeps what it held.
    void GetDisplayStuffByTooth(VxTooth* tooth, std::vector<VxAuxObject*>& stuff) const;

    // Tooth annotations.
    void SetShowToothFDI(bool show);
    void SetShowToothRef(bool show);
    void SetShowFacc(bool show);
    void SetShowMoveDiff(bool show);
    void SetShowKeyPoint(bool show);
    // Re-evaluates the visibility of the reference overlay after jaws or teeth were hidden.
    void UpdateToothRef();
    VxPoint GetFApnt(VxTooth* tooth, int which);
    int GetFApntIndex(VxTooth* tooth, int which);
    VxPoint GetFApntIndex(VxTooth* tooth, bool side, int& index);
    void GetSeeCenterPoint(VxTooth* tooth, VxPoint& point);

    // Reference planes and curves.
    void SetShowArchWire(bool show);
    void SetShowMiddlePlane(bool show);
    void SetShowBackBoundaryPlane(bool show);
    void SetShowBeautyPlane(bool show);
    void SetShowUpJawPlane(bool show);
    void SetShowDownJawPlane(bool show);
    void SetShowUpToothLine(bool show);
    void SetShowDownToothLine(bool show);

    // Patient pictures.
    void SetShowXImg(bool show);
    void SetShowFrontImg(bool show);
    void SetShowProfile(bool show);
    void SetShowPanoramic(bool show);
    // Rebuilds the pictures that are shown, X-ray, front, profile, panoramic.
    void UpdatePicture();
    void AdjustImageBrightness(int delta, CImage& image);
    void AdjustImageContrast(int contrast, CImage& image);
    bool CreateCimage(const CString& path, CImage& image);
    int ImageCopy(const CImage& source, CImage& target);

    // Interproximal reduction labels.
    void ShowRemoveGlaze(VxIPR ipr, VxPoint ref);
    void ShowRemoveGlazeWithStartPoint(VxPoint start, VxIPR ipr, VxPoint ref);
    void ShowRemoveGlazeWithStartPoint(VxTooth first, VxTooth second, int number, double value,
                                       VxPoint start, VxIPR ipr, VxPoint ref);
    void ShowRemoveGlazeWithStartPointwithMark(int mark, VxPoint start, VxIPR ipr, VxPoint ref);
    void ShowRemoveGlazeWithStartPointwithMark(VxTooth first, VxTooth second, int number,
                                               double value, int mark, VxPoint start, VxIPR ipr,
                                               VxPoint ref);
    void NuRenderShowRemoveGlazeWithStartPoint(const VxTooth& first, const VxTooth& second,
                                               int number, double value, VxPoint start,
                                               const VxIPR& ipr, VxPoint ref);
    void NuRenderShowRemoveGlazeWithStartPointwithMark(const VxTooth& first, const VxTooth& second,
                                                       int number, double value, int mark,
                                                       VxPoint start, const VxIPR& ipr,
                                                       VxPoint ref);
    void UpdateRemoveGlazeInfo(bool isUp, int show);
    void HideRemoveGlazeInfo();
    void ClearRemoveGlazeInfo();
    void NuRenderUpdateRemoveGlazeInfo(bool isUp, int show);
    void NuRenderHideRemoveGlazeInfo();
    void NuRenderClearRemoveGlazeInfo();

    // Collision faces and labels.
    void ShowCollisionInfo(const std::vector<VxGapInfo*>& gaps);
    void ShowCollisionInfoInWorkDesignWedge(const std::vector<VxGapInfo*>& gaps, double threshold);
    void RemoveCollisionStuff();

    // Attachment labels, anchor grids and the measuring grid.
    void ShowAttachmentInfo(const std::vector<VxAttachment*>& attachments, VxPoint& centre);
    void UpdateAttachmentInfo(bool isUp, int show);
    void HideAttachmentInfo();
    void RemoveAttachmentHelper();
    void AddAttachAnchorGrids(VxTooth* tooth, VxAttachAnchorGrid grid);
    void GetAttachGrids(VxTooth* tooth, std::vector<VxPoint>& points);
    void GetAttachGrids(VxTooth* tooth, bool side, std::vector<VxPoint>& points);
    void GetAttachGrids2(VxTooth* tooth, std::vector<VxPoint>& points);
    void GetAttachCenterLipsGrids(VxTooth* tooth, std::vector<VxPoint>& points);
    void GetAttachCenterTongueGrids(VxTooth* tooth, std::vector<VxPoint>& points);
    void DrawGrid(int show);
    void DeleteGrid();
    void RefreshMeshBenchmark(double ratio);

private:
    friend class VxCacheStuffProbe; // tests reach the private builders through it

    VxCacheStuff();

    void PrepareToothFDI();
    void RemoveToothFDI();
    void PrepareToothRef();
    void RemoveToothRef();
    void PrepareFacc();
    void RemoveFacc();
    void PrepareToothMoveDiff();
    void RemoveToothMoveDiff();
    void PrepareKeyPoint();
    void RemoveKeyPoint();
    void CalculateFDIPosition(VxTooth* tooth, VxPoint* corners, bool small);
    void CalculateMDPosition(VxTooth* tooth, VxPoint* corners, bool small);
    VxPoint GetToothSeeCenter(VxTooth* tooth);

    void PreparArchWire();
    void RemoveArchWire();
    void PrepareMiddlePlane();
    void RemoveMiddlePlane();
    void PrepareBackBoundaryPlane();
    void RemoveBackBoundaryPlane();
    void PrepareBeautyPlane();
    void RemoveBeautyPlane();
    void PrepareUpJawPlane();
    void RemoveUpJawPlane();
    void PrepareDownJawPlane();
    void RemoveDownJawPlane();
    void PrepareUpToothLine();
    void RemoveUpToothLine();
    void PrepareDownToothLine();
    void RemoveDownToothLine();

    void PrepareXImg();
    void RemoveXimg();
    void PrepareFrontImg();
    void RemoveFrontImg();
    void PrepareProfile();
    void RemoveProfile();
    void PreparePanoramic();
    void RemovePanoramic();
    void UpdateXImg();
    void UpdateFrontImg();
    void UpdateProfile();
    void UpdatePanoramic();
    CPoint CalScreenPt(const VxPoint& point);
    CBitmap* CreateBitmapFromText(const CString& text, bool small);
    CBitmap* CreateCircleBitmap(const VxColor& color, bool small);
    BYTE* MakeTransparent(int width, int height, const BYTE* bytes, VxColor color);

    void ShowCollisionFaces(VxGapInfo* gap, int i);
    void ShowCollisionText(VxGapInfo* gap);
    void ShowCollisionTextInWorkDesignWedge(VxGapInfo* gap);

    void ShowAttachmentHelper(VxAttachment* attachment, VxPoint& centre);

    void ReadConfigFile();

    VxModel* m_model = nullptr;                // not owned
    VxAuxPlane* m_middlePlane = nullptr;       // registered
    VxAuxPlane* m_backBoundaryPlane = nullptr; // registered
    VxAuxObject* m_spare0 = nullptr;           // no overlay uses these two
    VxAuxObject* m_spare1 = nullptr;
    VxAuxPoint* m_keyPoint = nullptr;         // taken out of the registry but kept on Remove
    VxAuxPlane* m_upJawPlane = nullptr;       // registered
    VxAuxPlane* m_downJawPlane = nullptr;     // registered
    VxAuxPipeLine* m_upToothLine = nullptr;   // registered
    VxAuxPipeLine* m_downToothLine = nullptr; // registered
    VxAuxPlane* m_beautyPlane = nullptr;      // registered
    std::vector<VxAuxObject*> m_beautyPoints; // registered
    VxAuxTexture* m_xImg = nullptr;           // registered, deleted here
    VxAuxTexture* m_frontImg = nullptr;       // registered, deleted here
    VxAuxTexture* m_profileImg = nullptr;     // registered, deleted here
    VxAuxTexture* m_panoramicImg = nullptr;   // registered, deleted here
    std::vector<VxAuxObject*> m_archWire;     // registered, one pipe a jaw
    std::vector<VxAuxMarker*> m_panMarkers;   // registered
    std::map<VxAuxObject*, VxToothRef*> m_toothRefObjects; // registered
    std::map<VxTooth*, VxAuxObject*> m_toothLabels;        // owned here
    std::map<VxTooth*, VxAuxObject*> m_moveMarks;          // owned here
    std::map<VxTooth*, VxAuxObject*> m_faccCurves;         // owned here
    std::map<VxTooth*, VxAttachAnchorGrid> m_anchorGrids;
    std::vector<VxAuxObject*> m_collisionObjects; // registered
    std::vector<VxTextHelper*> m_iprLabels;
    std::vector<VxTextHelper*> m_attachLabels;
    VxMeasureGrid* m_measureGrid = nullptr; // created on first DrawGrid
    VxColor m_color0;                       // seven colours no overlay reads
    VxColor m_color1;
    VxColor m_color2;
    VxColor m_color3;
    VxColor m_color4;
    VxColor m_color5;
    VxColor m_color6;
};
