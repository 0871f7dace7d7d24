// VxMeasureGrid: a millimetre grid over every view with a scale bar. One screen line is built
// for every pixel row and column of each view, once; a zoom only chooses which of them show (every
// step-th, where a step is one cell in pixels), so refreshing allocates nothing and costs a pass
// of flag writes. The bar, one cell long with a tick at each end and its caption ("1mm" or
// "10mm"), stands a step or two in from the bottom right corner of each view, left of and above
// the point 80 pixels in from it, ticks up and caption below. The lines belong to the registry; the
// grid hands them back to it, deleted, when it is destroyed.
#pragma once

#include <interfaces/VxColor.h>
#include <interfaces/VxPoint.h>

#include <map>
#include <vector>

class VxAuxLine2D;
class VxAuxObject;
class VxAuxRender;
class VxAuxText;
class VxViewRegion;

class VxMeasureGrid {
public:
    // The lines of one view, by pixel row and column, and its scale bar.
    struct ViewGrid {
        std::vector<VxAuxLine2D*> horizontal;
        std::vector<VxAuxLine2D*> vertical;
        VxAuxText* text = nullptr;
        VxAuxLine2D* leftTick = nullptr;
        VxAuxLine2D* bar = nullptr;
        VxAuxLine2D* rightTick = nullptr;
    };

    explicit VxMeasureGrid(VxAuxRender* auxRender);
    // Owns registered objects through the registry: copying would hand them back twice.
    VxMeasureGrid(const VxMeasureGrid&) = delete;
    VxMeasureGrid& operator=(const VxMeasureGrid&) = delete;
    virtual ~VxMeasureGrid();

    void SetCellSize(int width, int height) {
        m_cellWidth = width;
        m_cellHeight = height;
    }
    int GetCellWidth() const { return m_cellWidth; }
    int GetCellHeight() const { return m_cellHeight; }
    bool IsBuilt() const { return m_built; }

    // Lines, caption and bar for every view of the view manager, all hidden. Once: a grid that
    // is built builds nothing more.
    void Build();
    // Shows the lines of the current step and places the bar, view by view, from each view's
    // pixel ratio. A view the grid was not built for gets an empty entry and shows nothing. A
    // zoom too far out for one cell a pixel ends the refresh there, later views included.
    void Refresh(int show);
    // The same, shown, for the views that have lines; other views are left alone.
    void RefreshBuiltViews();

    const std::map<VxViewRegion*, ViewGrid>& GetViewGrids() const { return m_viewGrids; }
    // Every object the grid holds, lines first, in registration order.
    std::vector<VxAuxObject*> AllObjects() const;

private:
    void BuildView(VxViewRegion* view, int totalHeight);
    // False when the zoom gives no cell: the caller stops.
    bool RefreshView(VxViewRegion* view, ViewGrid& grid, int totalHeight, int show);

    VxPoint m_origin;
    int m_cellWidth = 10;
    int m_cellHeight = 10;
    bool m_built = false;
    VxAuxRender* m_auxRender = nullptr; // not owned
    VxColor m_firstColor{55, 25, 125, 100};
    VxColor m_secondColor{4, 44, 125, 100};
    std::vector<VxAuxObject*> m_spareObjects0;
    std::vector<VxAuxObject*> m_spareObjects1;
    std::map<VxViewRegion*, ViewGrid> m_viewGrids;
    std::vector<VxPoint> m_spare0;
    std::vector<VxPoint> m_spare1;
    double m_spareWidth = 20.0;
    double m_spareHeight = 20.0;
    int m_reserved = 0;
};
