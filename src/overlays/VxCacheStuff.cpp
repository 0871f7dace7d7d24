// VxCacheStuff: the singleton, the show switches, Clear, the per-tooth hook and the anchor grids.
#include <overlays/VxCacheStuff.h>

#include <aux/VxAuxObject.h>
#include <aux/VxAuxPoint.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxTexture.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/CIniReader.h>
#include <interfaces/VxTooth.h>

#include <sstream>
#include <string>

VxCacheStuff* VxCacheStuff::GetInstance() {
    static VxCacheStuff instance;
    return &instance;
}

VxCacheStuff::VxCacheStuff() {
    // The registry must outlive the cache at exit: statics die in reverse order of construction,
    // so it is built first.
    VxRenderStatus::GetInstance();
}

VxCacheStuff::~VxCacheStuff() {
    Clear();
}

void VxCacheStuff::SetModel(VxModel* model) {
    m_model = model;
}

void VxCacheStuff::Clear() {
    RemoveToothRef();
    RemoveToothFDI();
    RemoveToothMoveDiff();
    RemoveFacc();
    RemoveMiddlePlane();
    RemoveBackBoundaryPlane();
    RemoveBeautyPlane();
    RemoveXimg();
    RemoveFrontImg();
    RemoveProfile();
    RemovePanoramic();
    RemoveKeyPoint();
    RemoveUpJawPlane();
    RemoveUpToothLine();
    RemoveDownJawPlane();
    RemoveDownToothLine();
    delete m_frontImg;
    m_frontImg = nullptr;
    delete m_profileImg;
    m_profileImg = nullptr;
    delete m_keyPoint;
    m_keyPoint = nullptr;
    RemoveCollisionStuff();
    m_anchorGrids.clear();
}

void VxCacheStuff::GetDisplayStuffByTooth(VxTooth* tooth, std::vector<VxAuxObject*>& stuff) const {
    for (const auto* map : {&m_toothLabels, &m_faccCurves, &m_moveMarks}) {
        const auto it = map->find(tooth);
        if (it != map->end() && it->second != nullptr)
            stuff.push_back(it->second);
    }
}

void VxCacheStuff::SetShowToothFDI(bool show) {
    show ? PrepareToothFDI() : RemoveToothFDI();
}
void VxCacheStuff::SetShowToothRef(bool show) {
    show ? PrepareToothRef() : RemoveToothRef();
}
void VxCacheStuff::SetShowFacc(bool show) {
    show ? PrepareFacc() : RemoveFacc();
}
void VxCacheStuff::SetShowMoveDiff(bool show) {
    show ? PrepareToothMoveDiff() : RemoveToothMoveDiff();
}
void VxCacheStuff::SetShowKeyPoint(bool show) {
    show ? PrepareKeyPoint() : RemoveKeyPoint();
}
void VxCacheStuff::SetShowArchWire(bool show) {
    show ? PreparArchWire() : RemoveArchWire();
}
void VxCacheStuff::SetShowMiddlePlane(bool show) {
    show ? PrepareMiddlePlane() : RemoveMiddlePlane();
}
void VxCacheStuff::SetShowBackBoundaryPlane(bool show) {
    show ? PrepareBackBoundaryPlane() : RemoveBackBoundaryPlane();
}
void VxCacheStuff::SetShowBeautyPlane(bool show) {
    show ? PrepareBeautyPlane() : RemoveBeautyPlane();
}
void VxCacheStuff::SetShowUpJawPlane(bool show) {
    show ? PrepareUpJawPlane() : RemoveUpJawPlane();
}
void VxCacheStuff::SetShowDownJawPlane(bool show) {
    show ? PrepareDownJawPlane() : RemoveDownJawPlane();
}
void VxCacheStuff::SetShowUpToothLine(bool show) {
    show ? PrepareUpToothLine() : RemoveUpToothLine();
}
void VxCacheStuff::SetShowDownToothLine(bool show) {
    show ? PrepareDownToothLine() : RemoveDownToothLine();
}
void VxCacheStuff::SetShowXImg(bool show) {
    show ? PrepareXImg() : RemoveXimg();
}
void VxCacheStuff::SetShowFrontImg(bool show) {
    show ? PrepareFrontImg() : RemoveFrontImg();
}
void VxCacheStuff::SetShowProfile(bool show) {
    show ? PrepareProfile() : RemoveProfile();
}
void VxCacheStuff::SetShowPanoramic(bool show) {
    show ? PreparePanoramic() : RemovePanoramic();
}

// --- anchor grids -------------------------------------------------------------------------

void VxCacheStuff::AddAttachAnchorGrids(VxTooth* tooth, VxAttachAnchorGrid grid) {
    // An earlier grid of the tooth stays.
    m_anchorGrids.emplace(tooth, std::move(grid));
}

void VxCacheStuff::GetAttachGrids(VxTooth* tooth, std::vector<VxPoint>& points) {
    const auto it = m_anchorGrids.find(tooth);
    if (it != m_anchorGrids.end())
        points = it->second.GetGridPoints();
}

void VxCacheStuff::GetAttachGrids(VxTooth* tooth, bool side, std::vector<VxPoint>& points) {
    points.clear();
    const auto it = m_anchorGrids.find(tooth);
    if (it == m_anchorGrids.end() || tooth == nullptr)
        return;
    const auto& sides = it->second.GetSideMaps();
    const auto own = sides.find(tooth->GetFDI());
    if (own == sides.end())
        return;
    for (const auto& entry : own->second) {
        if ((side && entry.first == 0) || (!side && entry.first == 1))
            continue;
        points = std::get<1>(entry.second);
    }
}

void VxCacheStuff::GetAttachGrids2(VxTooth* tooth, std::vector<VxPoint>& points) {
    const auto it = m_anchorGrids.find(tooth);
    if (it == m_anchorGrids.end() || tooth == nullptr)
        return;
    const auto& sides = it->second.GetSideMaps();
    const auto own = sides.find(tooth->GetFDI());
    if (own == sides.end())
        return;
    for (const auto& entry : own->second) {
        const auto& list = std::get<1>(entry.second);
        points.insert(points.end(), list.begin(), list.end());
    }
}

void VxCacheStuff::GetAttachCenterLipsGrids(VxTooth* tooth, std::vector<VxPoint>& points) {
    const auto it = m_anchorGrids.find(tooth);
    if (it != m_anchorGrids.end())
        points = it->second.GetCenterLipsGrids();
}

void VxCacheStuff::GetAttachCenterTongueGrids(VxTooth* tooth, std::vector<VxPoint>& points) {
    const auto it = m_anchorGrids.find(tooth);
    if (it != m_anchorGrids.end())
        points = it->second.GetCenterTongueGrids();
}

// --- colour file --------------------------------------------------------------------------

void VxCacheStuff::ReadConfigFile() {
    // The IPR label keeps its fixed colour: the values are read and dropped.
    CIniReader reader;
    if (!reader.Load("ColorConfig.ini"))
        return;
    int rgb[3] = {0, 0, 0};
    const char* keys[3] = {"R", "G", "B"};
    for (int i = 0; i < 3; ++i) {
        const std::string& value = reader.Get("REMOVEGLAZE_LINE", keys[i]);
        if (value.empty())
            continue;
        std::istringstream in(value);
        in >> rgb[i];
    }
    (void)rgb;
}
