// VxMeasureGrid: building the per-pixel lines once and choosing the visible ones per zoom.
#include <overlays/VxMeasureGrid.h>

#include <aux/VxAuxLine2D.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxText.h>
#include <overlays/VxOverlayLayout.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <cstdlib>

namespace {

const VxColor kLineColor(126, 128, 131, 100);
const VxColor kBarColor(0, 0, 0, 255);

VxAuxLine2D* NewLine(const CPoint& start, const CPoint& stop) {
    auto* line = new VxAuxLine2D();
    line->SetPoint(start, stop);
    line->SetVisible(0);
    line->SetHitable(false);
    line->SetColor(kLineColor);
    return line;
}

} // namespace

VxMeasureGrid::VxMeasureGrid(VxAuxRender* auxRender) : m_auxRender(auxRender) {}

VxMeasureGrid::~VxMeasureGrid() {
    if (m_auxRender != nullptr) {
        std::vector<VxAuxObject*> all = AllObjects();
        all.insert(all.end(), m_spareObjects0.begin(), m_spareObjects0.end());
        all.insert(all.end(), m_spareObjects1.begin(), m_spareObjects1.end());
        // Thousands of lines: one pass over the registry rather than one search each.
        m_auxRender->RemoveAuxObjects(all, true);
    }
}

std::vector<VxAuxObject*> VxMeasureGrid::AllObjects() const {
    std::vector<VxAuxObject*> all;
    for (const auto& entry : m_viewGrids) {
        const ViewGrid& g = entry.second;
        all.insert(all.end(), g.horizontal.begin(), g.horizontal.end());
        all.insert(all.end(), g.vertical.begin(), g.vertical.end());
        for (VxAuxObject* o :
             {static_cast<VxAuxObject*>(g.text), static_cast<VxAuxObject*>(g.leftTick),
              static_cast<VxAuxObject*>(g.bar), static_cast<VxAuxObject*>(g.rightTick)}) {
            if (o != nullptr) {
                all.push_back(o);
            }
        }
    }
    return all;
}

void VxMeasureGrid::Build() {
    // Without a registry the lines would have no owner and nobody to draw them.
    if (m_built || m_auxRender == nullptr) {
        return;
    }
    int totalWidth = 0;
    int totalHeight = 0;
    VxViewManager* views = VxViewManager::GetInstance();
    views->GetTotalViewSize(totalWidth, totalHeight);
    for (VxViewRegion* view : views->GetAllViews()) {
        if (view != nullptr && m_viewGrids.count(view) == 0) {
            BuildView(view, totalHeight);
        }
    }
    m_built = true;
}

void VxMeasureGrid::BuildView(VxViewRegion* view, int H) {
    const int ox = view->Origin().x;
    const int oy = view->Origin().y;
    const int w = view->Width();
    const int h = view->Height();
    ViewGrid& grid = m_viewGrids[view];
    // Screen pixels count y from the top; the view's origin counts from the bottom.
    grid.vertical.reserve(static_cast<size_t>(w > 0 ? w : 0));
    for (int x = 0; x < w; ++x) {
        VxAuxLine2D* line =
            NewLine(CPoint(ox + x + 1, H - (h + oy) - 1), CPoint(ox + x + 1, H - oy + 1));
        if (x % 10 == 0) {
            line->SetWidth(2.0f);
        }
        m_auxRender->AddAuxObject(line);
        grid.vertical.push_back(line);
    }
    grid.horizontal.reserve(static_cast<size_t>(h > 0 ? h : 0));
    for (int y = 0; y < h; ++y) {
        const int sy = H - (h + oy) + y + 1;
        VxAuxLine2D* line = NewLine(CPoint(ox + 1, sy), CPoint(ox + w - 1, sy));
        if (y % 10 == 0) {
            line->SetWidth(2.0f);
        }
        m_auxRender->AddAuxObject(line);
        grid.horizontal.push_back(line);
    }
    grid.text = new VxAuxText();
    grid.text->SetTextType(Text_OnScreenOnce);
    grid.text->SetSize(15);
    grid.text->SetColor(VxColor(255, 255, 0, 100));
    grid.text->SetVisible(0);
    grid.text->SetHighLight(1);
    m_auxRender->AddAuxObject(grid.text);
    for (VxAuxLine2D** part : {&grid.leftTick, &grid.bar, &grid.rightTick}) {
        *part = NewLine(CPoint(0, 0), CPoint(0, 0));
        (*part)->SetHighLight(1);
        m_auxRender->AddAuxObject(*part);
    }
}

void VxMeasureGrid::Refresh(int show) {
    int totalWidth = 0;
    int totalHeight = 0;
    VxViewManager* views = VxViewManager::GetInstance();
    views->GetTotalViewSize(totalWidth, totalHeight);
    for (VxViewRegion* view : views->GetAllViews()) {
        if (view == nullptr) {
            continue;
        }
        if (!RefreshView(view, m_viewGrids[view], totalHeight, show)) {
            return;
        }
    }
}

void VxMeasureGrid::RefreshBuiltViews() {
    int totalWidth = 0;
    int totalHeight = 0;
    VxViewManager* views = VxViewManager::GetInstance();
    views->GetTotalViewSize(totalWidth, totalHeight);
    for (VxViewRegion* view : views->GetAllViews()) {
        auto it = m_viewGrids.find(view);
        if (it == m_viewGrids.end()) {
            continue;
        }
        if (!RefreshView(view, it->second, totalHeight, 1)) {
            return;
        }
    }
}

bool VxMeasureGrid::RefreshView(VxViewRegion* view, ViewGrid& grid, int H, int show) {
    CString caption;
    const int step = VxOverlayLayout::GridStep(view->GetpixelmodelRatio(), &caption);
    if (step < 1) {
        return false;
    }
    const int ox = view->Origin().x;
    const int oy = view->Origin().y;
    const int w = view->Width();
    const int h = view->Height();
    // Screen y counts from the window's top, the view's origin from its bottom: this is the
    // view's top row on screen.
    const int top = H - (h + oy);
    // Where no line falls near the mark the bar keeps to the mark itself rather than to a
    // stale or undefined place.
    int barX = ox + w - 80;
    int barY = top + 80;
    for (size_t i = 0; i < grid.horizontal.size(); ++i) {
        VxAuxLine2D* line = grid.horizontal[i];
        line->SetVisible(0);
        if (i % static_cast<size_t>(step) == 0) {
            line->SetVisible(show);
            const int y = line->GetStartPoint().y;
            // The bar's mark: 80 pixels down from the view's top, where the scale is read
            // beside the axis cross's opposite corner and clear of the teeth. The bar goes a
            // step above the line nearest to it, so that its caption fits below it.
            if (step >= std::abs(y - top - 80)) {
                barY = y - step;
            }
        }
    }
    for (size_t j = 0; j < grid.vertical.size(); ++j) {
        VxAuxLine2D* line = grid.vertical[j];
        line->SetVisible(0);
        if (j % static_cast<size_t>(step) == 0) {
            line->SetVisible(show);
            const int x = line->GetStartPoint().x;
            if (step > std::abs(x - (ox + w - 80))) {
                barX = x - 2 * step;
            }
        }
    }
    struct Part {
        VxAuxLine2D* line;
        CPoint start;
        CPoint stop;
    };
    const Part parts[] = {
        {grid.bar, CPoint(barX, barY), CPoint(barX + step, barY)},
        {grid.leftTick, CPoint(barX, barY), CPoint(barX, barY - 5)},
        {grid.rightTick, CPoint(barX + step, barY), CPoint(barX + step, barY - 5)},
    };
    for (const Part& part : parts) {
        if (part.line == nullptr) {
            continue;
        }
        part.line->SetPoint(part.start, part.stop);
        part.line->SetColor(kBarColor);
        part.line->SetWidth(2.0f);
        part.line->SetHighLight(1);
        part.line->SetVisible(show);
    }
    if (grid.text != nullptr) {
        grid.text->SetTextPos(CPoint(barX + step / 2, barY + 15));
        grid.text->SetColor(kBarColor);
        // Rasterising the caption is the one costly call; a zoom that keeps it skips it.
        if (grid.text->GetSize() != 12 || grid.text->GetText() != caption) {
            grid.text->SetSize(12);
            grid.text->SetText(caption);
        }
        grid.text->SetVisible(show);
    }
    return true;
}
