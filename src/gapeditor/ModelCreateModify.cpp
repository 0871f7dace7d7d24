#include <gapeditor/ModelCreateModify.h>

#include <gapeditor/EventInfoCreateModify.h>

#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxFace.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxVertex.h>

#include <algorithm>
#include <cmath>

ModelCreateModify* ModelCreateModify::m_ModelCreateModify = nullptr;

ModelCreateModify* ModelCreateModify::getInstance() {
    if (!m_ModelCreateModify) {
        m_ModelCreateModify = new ModelCreateModify();
    }
    return m_ModelCreateModify;
}

namespace {

// A NaN from the host would fall through every limit; it is shown as no gap instead.
float StoredValue(double v) {
    return std::isnan(v) ? 0.0f : static_cast<float>(v);
}

size_t RecordCount(size_t gaps, size_t listed) {
    return std::min({gaps, listed, static_cast<size_t>(ModelCreateModify::kMaxRecordsPerJaw)});
}

} // namespace

std::vector<VxPoint> ModelCreateModify::GetGumGapStartPointList(VxModel* model, bool up) {
    std::vector<VxPoint> upper;
    std::vector<VxPoint> lower;
    const auto anchor = [](const VxGum* gum, int segment, std::vector<VxPoint>& out) {
        const VxFace* face = gum->GetFace(gum->GetSegmentFirstFaces()[segment]);
        if (!face) {
            return;
        }
        int v0 = 0, v1 = 0, v2 = 0;
        face->Get3VtxId(v0, v1, v2);
        if (const VxVertex* vertex = gum->GetVertex(v1)) {
            out.push_back(vertex->GetPos());
        }
    };
    if (model) {
        // The upper gum's segments run the other way round the arch from the lower's.
        if (const VxGum* gum = model->GetGum(true)) {
            const int n = static_cast<int>(gum->GetSegmentFirstFaces().size());
            for (int s = n - 1; s >= 0; --s) {
                anchor(gum, s, upper);
            }
        }
        if (const VxGum* gum = model->GetGum(false)) {
            const int n = static_cast<int>(gum->GetSegmentFirstFaces().size());
            for (int s = 0; s < n; ++s) {
                anchor(gum, s, lower);
            }
        }
    }
    return up ? upper : lower;
}

CPoint ModelCreateModify::ToScreen(const VxPoint& p) const {
    if (m_screenMapping) {
        return m_screenMapping(p);
    }
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    return render ? render->MapModelPointToScreen(p) : CPoint(0, 0);
}

VxPoint ModelCreateModify::generateEndPt(VxPoint point, bool upper) {
    const VxPoint c = m_model ? m_model->GetBBox().Center() : VxPoint(0, 0, 0);
    VxVector a(0, -1, 0);
    if (m_model) {
        if (const VxTooth* tooth = m_model->GetTooth(upper ? 11 : 31)) {
            a = tooth->GetFrame().DirZ();
        }
    }
    VxVector d = point - c;
    d.Normalize();
    a.Normalize();
    d = d + a * 0.75;
    d.Normalize();
    d = d * 1.5;
    // Cards on the screen's left of the centre reach further out than those on its right.
    const CPoint sc = ToScreen(c);
    const CPoint sp = ToScreen(point);
    return sc.x >= sp.x ? point + d * 14.0 : point + d * 9.0;
}

VxPoint ModelCreateModify::generateEndPt(VxPoint point) {
    return generateEndPt(point, true);
}

VxPoint ModelCreateModify::generateEndPtforDownGum(VxPoint point) {
    return generateEndPt(point, false);
}

std::vector<VxPoint> ModelCreateModify::generatePts(VxPoint start) {
    const VxPoint end = generateEndPt(start);
    return {start, start, end, end};
}

std::vector<VxPoint> ModelCreateModify::generatePtsforDownGum(VxPoint start) {
    const VxPoint end = generateEndPtforDownGum(start);
    return {start, start, end, end};
}

VxPoint ModelCreateModify::generateRelativePt(float, float, float, VxPoint) {
    return VxPoint();
}

void ModelCreateModify::RebuildStartPoints(VxModel* model) {
    m_upObjects.clear();
    m_downObjects.clear();
    m_model = model;
    m_upStartPoints = GetGumGapStartPointList(model, true);
    m_downStartPoints = GetGumGapStartPointList(model, false);
}

void ModelCreateModify::InitData(VxModel* model, std::vector<std::tuple<int, int, double>> up,
                                 std::vector<std::tuple<int, int, double>> down) {
    RebuildStartPoints(model);
    const auto build = [](const std::tuple<int, int, double>& t, std::vector<VxPoint> points) {
        GumGapGraphicsObject record;
        record.points = std::move(points);
        record.firstId = std::get<0>(t);
        record.secondId = std::get<1>(t);
        record.value = StoredValue(std::get<2>(t));
        record.lockState = 3;
        record.ApplyValueStates();
        return record;
    };
    for (size_t i = 0; i < RecordCount(m_upStartPoints.size(), up.size()); ++i) {
        m_upObjects.push_back(build(up[i], generatePts(m_upStartPoints[i])));
    }
    for (size_t i = 0; i < RecordCount(m_downStartPoints.size(), down.size()); ++i) {
        m_downObjects.push_back(build(down[i], generatePtsforDownGum(m_downStartPoints[i])));
    }
}

void ModelCreateModify::InitDatawithLock(VxModel* model,
                                         std::vector<std::tuple<int, int, bool, double>> up,
                                         std::vector<std::tuple<int, int, bool, double>> down) {
    RebuildStartPoints(model);
    const auto build = [](const std::tuple<int, int, bool, double>& t,
                          std::vector<VxPoint> points) {
        GumGapGraphicsObject record;
        record.points = std::move(points);
        record.firstId = std::get<0>(t);
        record.secondId = std::get<1>(t);
        record.lockState = std::get<2>(t) ? 1 : 3;
        record.value = StoredValue(std::get<3>(t));
        record.ApplyValueStates();
        return record;
    };
    for (size_t i = 0; i < RecordCount(m_upStartPoints.size(), up.size()); ++i) {
        m_upObjects.push_back(build(up[i], generatePts(m_upStartPoints[i])));
    }
    for (size_t i = 0; i < RecordCount(m_downStartPoints.size(), down.size()); ++i) {
        m_downObjects.push_back(build(down[i], generatePtsforDownGum(m_downStartPoints[i])));
    }
}

void ModelCreateModify::UpdateDatajustLock(VxModel*,
                                           std::vector<std::tuple<int, int, bool, double>> up,
                                           std::vector<std::tuple<int, int, bool, double>> down) {
    for (size_t i = 0; i < std::min(m_upObjects.size(), up.size()); ++i) {
        m_upObjects[i].lockState = std::get<2>(up[i]) ? 1 : 3;
    }
    for (size_t i = 0; i < std::min(m_downObjects.size(), down.size()); ++i) {
        m_downObjects[i].lockState = std::get<2>(down[i]) ? 1 : 3;
    }
}

GumGapGraphicsObject* ModelCreateModify::Record(int id) {
    return const_cast<GumGapGraphicsObject*>(
        static_cast<const ModelCreateModify*>(this)->Record(id));
}

const GumGapGraphicsObject* ModelCreateModify::Record(int id) const {
    if (id < 0) {
        return nullptr;
    }
    if (id < kMaxRecordsPerJaw) {
        return static_cast<size_t>(id) < m_upObjects.size() ? &m_upObjects[id] : nullptr;
    }
    const size_t index = static_cast<size_t>(id - kMaxRecordsPerJaw);
    return index < m_downObjects.size() ? &m_downObjects[index] : nullptr;
}

void ModelCreateModify::SetCurIPR(int, int id) {
    EventIPRinfo info;
    if (const GumGapGraphicsObject* record = Record(id)) {
        info.isUp = id < kMaxRecordsPerJaw;
        info.index = info.isUp ? id : id - kMaxRecordsPerJaw;
        info.firstId = record->firstId;
        info.secondId = record->secondId;
        info.value = record->value;
    }
    EventInfoCreateModify::getInstance()->SetIPRInfo(info);
}

void ModelCreateModify::UpdateData(int value, int id) {
    if (GumGapGraphicsObject* record = Record(id)) {
        record->buttonState = value;
    }
}

void ModelCreateModify::UpdateData(int value, int id, Enumerationofpng element) {
    GumGapGraphicsObject* record = Record(id);
    if (!record) {
        return;
    }
    switch (element) {
    case PngBtnAddNormal:
    case PngBtnDelNormal:
        record->buttonState = value;
        break;
    case PngBtnLockNormal:
    case PngBtnLockHover:
    case PngBtnUnlockNormal:
    case PngBtnUnlockHover:
        record->lockState = value;
        break;
    case PngBtnUpNormal:
        record->upState = value;
        break;
    case PngBtnDownNormal:
        record->downState = value;
        break;
    case PngRowFirst:
        if (record->listState == 3 || record->listState == 6 || record->listState == 8) {
            record->listState -= 1;
        }
        break;
    case PngRowSecond:
        if (record->listState == 4) {
            record->listState = 2;
        }
        break;
    default:
        break;
    }
}

void ModelCreateModify::UpdateData(Enumerationofpng element, int id, int mode) {
    GumGapGraphicsObject* record = Record(id);
    if (!record) {
        return;
    }
    if (mode == 1) {
        switch (element) {
        case PngBtnAddNormal:
        case PngBtnDelNormal:
            record->buttonState += 1;
            break;
        case PngBtnLockNormal:
        case PngBtnUnlockNormal:
            record->lockState += 1;
            break;
        case PngBtnUpNormal:
        case PngRowFirst:
            record->upState += 1;
            break;
        case PngBtnDownNormal:
        case PngRowSecond:
            record->downState += 1;
            break;
        default:
            break;
        }
    } else if (mode == 2) {
        switch (element) {
        case PngBtnAddHover:
        case PngBtnDelHover:
            record->buttonState -= 1;
            break;
        case PngBtnLockNormal:
        case PngBtnUnlockNormal:
            record->lockState -= 1;
            break;
        default:
            break;
        }
    }
}

void ModelCreateModify::UpdateDataforlistpop(Enumerationofpng element, int id, int mode) {
    GumGapGraphicsObject* record = Record(id);
    if (!record || mode != 1) {
        return;
    }
    int& list = record->listState;
    if (element == PngRowFirst) {
        if (list == 2 || list == 4) {
            list = 3;
        } else if (list == 5) {
            list = 6;
        } else if (list == 7) {
            list = 8;
        }
    } else if (element == PngRowSecond) {
        if (list == 2 || list == 3) {
            list = 4;
        }
    }
}

void ModelCreateModify::UpdateDataforLeftReleased(int, int id) {
    GumGapGraphicsObject* record = Record(id);
    if (!record) {
        return;
    }
    // The info of the previous event stays: an opened list has no value to report yet.
    EventInfoCreateModify::getInstance()->SetEventInfo(EventListOpened);
    if (record->buttonState == 1 || record->buttonState == 2) {
        record->listState = 2;
    } else if (record->cardState == 1) {
        record->listState = 5;
    } else if (record->cardState == 2) {
        record->listState = 7;
    }
}

void ModelCreateModify::UpdateDataforLeftReleasedforbtnupdown(int step, int id) {
    GumGapGraphicsObject* record = Record(id);
    if (!record) {
        return;
    }
    SetCurIPR(0, id);
    EventInfoCreateModify::getInstance()->SetEventInfo(step < 1 ? EventValueDown : EventValueUp);
    // Up always means a larger magnitude, whatever the sign. No clamp: the limits act through
    // the disabled buttons.
    const double v = record->value;
    record->value = static_cast<float>(v < 0 ? v - 0.1 * step : v + 0.1 * step);
}

void ModelCreateModify::UpdateDataforLeftReleasedforlock(int state, int id) {
    GumGapGraphicsObject* record = Record(id);
    if (!record) {
        return;
    }
    SetCurIPR(0, id);
    EventInfoCreateModify::getInstance()->SetEventInfo(state == 3 ? EventUnlocked : EventLocked);
    record->lockState = state;
}

void ModelCreateModify::UpdateDataforLeftReleasedforrecttext(int row, int id) {
    if (!Record(id)) {
        return;
    }
    SetCurIPR(0, id);
    EventInfoCreateModify* events = EventInfoCreateModify::getInstance();
    if (row < 1) {
        events->SetEventInfo(EventAddGap);
        return;
    }
    // Compared as the record stores it, so a value of exactly 0.05 still counts as no gap.
    const float v = static_cast<float>(events->GetIPRInfo().value);
    if (v > 0.05f) {
        events->SetEventInfo(EventDeleteReduction);
    } else if (v < -0.05f) {
        events->SetEventInfo(EventDeleteGap);
    } else {
        events->SetEventInfo(EventAddReduction);
    }
}

void ModelCreateModify::UpdateDataforLeftReleasedmoveout(int state, int id) {
    GumGapGraphicsObject* record = Record(id);
    if (!record) {
        return;
    }
    EventInfoCreateModify::getInstance()->SetEventInfo(EventNone);
    record->listState = state;
}
