// ModelCreateModify: the gap editor's data, one GumGapGraphicsObject a tooth gap for each jaw,
// built from the host's lists and moved by the controller's update operations. Pure state: the
// renderer draws and picks it, the host reads the decisions back from EventInfoCreateModify and
// rebuilds the records from its own plan.
//
// Record ids: 0..99 index the upper records, 100 + i the lower record i; a negative id, or one
// past the end of its jaw, names no record and changes nothing. A jaw holds at most 100 records
// (the ids travel in one byte of the pick buffer); gaps past the hundredth are left out.
//
// The leader end of a card depends on where the gap lies on screen, so the records are built
// while a view is current. That mapping goes through a replaceable function, so the model can
// be exercised without GL.
#pragma once

#include <gapeditor/Enumerationofpng.h>
#include <gapeditor/GumGapGraphicsObject.h>

#include <interfaces/CPoint.h>
#include <interfaces/VxPoint.h>

#include <cstdint>
#include <functional>
#include <tuple>
#include <vector>

class VxModel;

class ModelCreateModify {
public:
    static constexpr int kMaxRecordsPerJaw = 100;
    using ScreenMapping = std::function<CPoint(const VxPoint&)>;

    // Made on first use and never freed.
    static ModelCreateModify* getInstance();
    static ModelCreateModify* m_ModelCreateModify;

    ModelCreateModify() = default;
    ModelCreateModify(const ModelCreateModify&) = default;
    ModelCreateModify& operator=(const ModelCreateModify&) = default;
    ~ModelCreateModify() = default;

    // Rebuild every record from the host's (first id, second id, value) lists, paired by index
    // with the gum segments; all hover and list state is dropped. A list shorter than the gaps
    // leaves the gaps past its end out.
    void InitData(VxModel* model, std::vector<std::tuple<int, int, double>> up,
                  std::vector<std::tuple<int, int, double>> down);
    // The same with a lock flag: true shows the record locked.
    void InitDatawithLock(VxModel* model, std::vector<std::tuple<int, int, bool, double>> up,
                          std::vector<std::tuple<int, int, bool, double>> down);
    // Only the lock states of the existing records; values, hover and lists stay.
    void UpdateDatajustLock(VxModel* model, std::vector<std::tuple<int, int, bool, double>> up,
                            std::vector<std::tuple<int, int, bool, double>> down);

    std::vector<GumGapGraphicsObject> GetUpGumGapGraphicsObjects() const { return m_upObjects; }
    std::vector<GumGapGraphicsObject> GetDownGumGapGraphicsObjects() const { return m_downObjects; }
    std::vector<VxPoint> GetupGumGapStartPointList() const { return m_upStartPoints; }
    std::vector<VxPoint> GetdownGumGapStartPointList() const { return m_downStartPoints; }

    bool GetIsOnCreateModified() const { return m_isOnCreateModified; }
    void SetIsOnCreateModified(bool on) { m_isOnCreateModified = on; }
    bool GetIsShowIPR() const { return m_isShowIPR; }
    void SetIsShowIPR(bool show) { m_isShowIPR = show; }
    bool GetupGumIsVisible() const { return m_upGumVisible; }
    void SetupGumIsVisible(bool visible) { m_upGumVisible = visible; }
    bool GetdownGumIsVisible() const { return m_downGumVisible; }
    void SetdownGumIsVisible(bool visible) { m_downGumVisible = visible; }

    // Publishes the record's data as the current EventIPRinfo (the first argument is unused).
    void SetCurIPR(int unused, int id);

    // The update family the controller drives; see the controller for when each runs.
    void UpdateData(int value, int id);
    void UpdateData(int value, int id, Enumerationofpng element);
    void UpdateData(Enumerationofpng element, int id, int mode);
    void UpdateDataforlistpop(Enumerationofpng element, int id, int mode);
    void UpdateDataforLeftReleased(int unused, int id);
    void UpdateDataforLeftReleasedforbtnupdown(int step, int id);
    void UpdateDataforLeftReleasedforlock(int state, int id);
    void UpdateDataforLeftReleasedforrecttext(int row, int id);
    void UpdateDataforLeftReleasedmoveout(int state, int id);

    // The record an id names, or null.
    GumGapGraphicsObject* Record(int id);
    const GumGapGraphicsObject* Record(int id) const;

    // Where a model point lands on screen (pixels, y down). By default the renderer's mapping of
    // the current view; tests and tools may put their own.
    void SetScreenMapping(ScreenMapping mapping) { m_screenMapping = std::move(mapping); }

private:
    std::vector<VxPoint> GetGumGapStartPointList(VxModel* model, bool up);
    std::vector<VxPoint> generatePts(VxPoint start);
    std::vector<VxPoint> generatePtsforDownGum(VxPoint start);
    VxPoint generateEndPt(VxPoint point);
    VxPoint generateEndPt(VxPoint point, bool upper);
    VxPoint generateEndPtforDownGum(VxPoint point);
    VxPoint generateRelativePt(float, float, float, VxPoint);
    CPoint ToScreen(const VxPoint& p) const;
    void RebuildStartPoints(VxModel* model);

    bool m_isOnCreateModified = false;
    VxModel* m_model = nullptr;
    std::uint32_t m_reserved = 0;
    bool m_upGumVisible = true;
    bool m_downGumVisible = true;
    bool m_isShowIPR = false;
    std::vector<VxPoint> m_upStartPoints;
    std::vector<VxPoint> m_downStartPoints;
    std::vector<GumGapGraphicsObject> m_upObjects;
    std::vector<GumGapGraphicsObject> m_downObjects;
    ScreenMapping m_screenMapping;
};
