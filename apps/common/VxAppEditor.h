// VxAppEditor: the programs' host of the in-view gap editor. It keeps a small plan (a value and a
// lock for each gap between neighbouring teeth, FDI pairs), turns the editor on with both of its
// switches, passes the mouse to the editor's controller, reads each event with its gap, applies
// it to the plan and rebuilds the editor's records from the plan. What happened is returned as a
// line such as "IPR 11|21 0.3 -> 0.4 mm".
//
// The editor is meant for a single full-window view; the records are built from the matrices of
// the last frame, so Start and every rebuild come after a frame.
#pragma once

#include <interfaces/CPoint.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

class VxModel;
class VxViewRegion;

class VxAppEditor {
public:
    struct Gap {
        int first = 0;
        int second = 0;
        double value = 0.0; // mm; above zero a reduction, below zero a space
        bool locked = false;
    };

    // Turns the single view to the front and zooms it onto the crowns, as a clinician works with
    // the editor: the cards keep their size in pixels while the gaps spread with the zoom, so
    // neighbouring cards stand clear of each other. Does nothing in a view of no size.
    static void FrameDentition(VxModel& model, VxViewRegion* view);

    // Turns the editor on for the model: pairs each gum gap with its two nearest teeth, seeds the
    // plan with a few reductions and spaces when it is empty, and builds the records.
    void Start(VxModel* model);
    // Turns both switches off and forgets the records (the plan stays).
    void Stop();
    bool IsOn() const { return m_on; }

    // Mouse in window pixels, y down.
    void Move(int x, int y, VxViewRegion* view);
    // The click; returns what happened, or an empty string when the click was not the editor's.
    std::string Release(int x, int y, VxViewRegion* view);
    // Whether the last release was taken by a button of the editor.
    bool TookClick() const { return m_tookClick; }

    std::vector<Gap> Gaps(bool upper) const;
    void SetGapValue(int first, int second, double value);
    // Rebuilds the records from the plan.
    void Rebuild();

private:
    std::vector<std::pair<int, int>> PairGaps(bool upper) const;

    VxModel* m_model = nullptr;
    bool m_on = false;
    bool m_tookClick = false;
    std::vector<std::pair<int, int>> m_upPairs;
    std::vector<std::pair<int, int>> m_downPairs;
    std::map<std::pair<int, int>, Gap> m_plan;
};
