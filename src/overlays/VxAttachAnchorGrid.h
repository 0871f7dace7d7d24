// VxAttachAnchorGrid: the host's precomputed candidate points for attachments on one tooth: all
// grid points, the two facial-axis (FA) points among them, per-side point lists keyed by FDI
// number and side, and the centre points on the lip and tongue sides. The host fills it and hands
// it in by value; the library only stores and reads it.
#pragma once

#include <interfaces/VxPoint.h>

#include <map>
#include <tuple>
#include <vector>

class VxAttachAnchorGrid {
public:
    // One side of a tooth: the FA index into its point list, and the list.
    using SideEntry = std::tuple<int, std::vector<VxPoint>>;
    // Side key (0 or 1) to its entry.
    using SideMap = std::map<int, SideEntry>;

    VxAttachAnchorGrid() = default;
    VxAttachAnchorGrid(const VxAttachAnchorGrid&) = default;
    VxAttachAnchorGrid& operator=(const VxAttachAnchorGrid&) = default;
    virtual ~VxAttachAnchorGrid();

    const std::vector<VxPoint>& GetGridPoints() const { return m_gridPoints; }
    void SetGridPoints(const std::vector<VxPoint>& points) { m_gridPoints = points; }
    int GetFirstFAIndex() const { return m_firstFAIndex; }
    int GetSecondFAIndex() const { return m_secondFAIndex; }
    void SetFAIndices(int first, int second) {
        m_firstFAIndex = first;
        m_secondFAIndex = second;
    }
    // Keyed by the FDI number of the tooth.
    const std::map<int, SideMap>& GetSideMaps() const { return m_sideMaps; }
    std::map<int, SideMap>& GetSideMaps() { return m_sideMaps; }
    void SetSide(int fdi, int side, int faIndex, const std::vector<VxPoint>& points) {
        m_sideMaps[fdi][side] = SideEntry(faIndex, points);
    }
    const std::vector<VxPoint>& GetCenterLipsGrids() const { return m_centerLips; }
    void SetCenterLipsGrids(const std::vector<VxPoint>& points) { m_centerLips = points; }
    const std::vector<VxPoint>& GetCenterTongueGrids() const { return m_centerTongue; }
    void SetCenterTongueGrids(const std::vector<VxPoint>& points) { m_centerTongue = points; }

private:
    std::vector<VxPoint> m_gridPoints;
    int m_firstFAIndex = 0;
    int m_secondFAIndex = 0;
    std::map<int, SideMap> m_sideMaps;
    std::vector<VxPoint> m_centerLips;
    std::vector<VxPoint> m_centerTongue;
    int m_spare0 = 0; // copied with the object, read by nobody here
    int m_spare1 = 0;
};
