#include <gapeditor/ViewControllerCreateModify.h>

#include <gapeditor/ModelCreateModify.h>
#include <shader/RenderV1.h>

ViewControllerCreateModify* ViewControllerCreateModify::m_ViewControllerCreateModify = nullptr;

ViewControllerCreateModify* ViewControllerCreateModify::getInstance() {
    if (!m_ViewControllerCreateModify) {
        m_ViewControllerCreateModify = new ViewControllerCreateModify();
    }
    return m_ViewControllerCreateModify;
}

namespace {
constexpr Enumerationofpng kNone = static_cast<Enumerationofpng>(-1);
}

void ViewControllerCreateModify::SetupCurrentMouseState(int x, int y, VxViewRegion* view) {
    m_mouseX = x;
    m_mouseY = y;
    m_view = view;
}

Enumerationofpng ViewControllerCreateModify::TransformfromInt(int code) const {
    if (code == 5) {
        return PngListGapRow;
    }
    if ((code >= 11 && code <= 14) || (code >= 21 && code <= 24) || (code >= 31 && code <= 36) ||
        code == 41 || (code >= 50 && code <= 57) || (code >= 61 && code <= 63)) {
        return static_cast<Enumerationofpng>(code);
    }
    return kNone;
}

Enumerationofpng ViewControllerCreateModify::TransformfromInt(int code, int row) const {
    if (row == 0) {
        return TransformfromInt(code);
    }
    if (row == PngRowFirst || row == PngRowSecond) {
        return static_cast<Enumerationofpng>(row);
    }
    return static_cast<Enumerationofpng>(0);
}

std::array<unsigned char, 3> ViewControllerCreateModify::PickAt() const {
    if (m_pick) {
        return m_pick(m_view, m_mouseX, m_mouseY);
    }
    std::array<unsigned char, 3> bytes{0, 0, 0};
    if (const unsigned char* read =
            RenderV1::GetInstance()->ObjectSelected(m_view, m_mouseX, m_mouseY)) {
        bytes = {read[0], read[1], read[2]};
    }
    return bytes;
}

void ViewControllerCreateModify::MouseLeftMoving() {
    ModelCreateModify* model = ModelCreateModify::getInstance();
    const std::array<unsigned char, 3> bytes = PickAt();
    m_hovered.element = TransformfromInt(bytes[0], bytes[2]);
    m_hovered.id = bytes[1];

    // Leaving a record undoes the mark on it. Ids are compared first, so moving between two
    // elements of one record keeps both marked, and the background (id 0) never unmarks record 0.
    if (m_lastId != bytes[1]) {
        const Enumerationofpng entered = TransformfromInt(bytes[0]);
        if (m_lastElement != entered && m_hoverActive) {
            switch (m_lastElement) {
            case PngBtnAddNormal:
                model->UpdateData(1, m_lastId);
                break;
            case PngBtnDelNormal:
                model->UpdateData(3, m_lastId);
                break;
            case PngBtnLockNormal:
            case PngBtnLockHover:
                model->UpdateData(1, m_lastId, m_lastElement);
                break;
            case PngBtnUnlockNormal:
            case PngBtnUnlockHover:
                model->UpdateData(3, m_lastId, m_lastElement);
                break;
            case PngBtnUpNormal:
            case PngBtnDownNormal:
            case PngRowFirst:
            case PngRowSecond:
                model->UpdateData(1, m_lastId, m_lastElement);
                break;
            default:
                break;
            }
        }
    }

    // A normal code is marked once; from the next pass on the pick finds its hover code, which
    // is passed over here, so the mark is never doubled.
    switch (m_hovered.element) {
    case PngBtnAddNormal:
    case PngBtnDelNormal:
    case PngBtnLockNormal:
    case PngBtnUnlockNormal:
    case PngBtnUpNormal:
    case PngBtnDownNormal:
        model->UpdateData(m_hovered.element, m_hovered.id, 1);
        m_lastId = m_hovered.id;
        m_lastElement = m_hovered.element;
        m_hoverActive = true;
        break;
    case PngBtnUpDisabled:
    case PngBtnDownDisabled:
        m_lastId = -1;
        m_lastElement = kNone;
        m_someSelected = false;
        m_hoverActive = false;
        break;
    case PngRowFirst:
    case PngRowSecond:
        model->UpdateDataforlistpop(m_hovered.element, m_hovered.id, 1);
        m_lastId = m_hovered.id;
        m_lastElement = m_hovered.element;
        m_hoverActive = true;
        break;
    default:
        break;
    }
}

void ViewControllerCreateModify::MouseLeftReleased() {
    ModelCreateModify* model = ModelCreateModify::getInstance();
    switch (m_hovered.element) {
    case PngBtnAddHover:
    case PngBtnDelHover:
        model->UpdateDataforLeftReleased(2, m_hovered.id);
        m_someSelected = true;
        break;
    case PngBtnLockHover:
        model->UpdateDataforLeftReleasedforlock(3, m_hovered.id);
        m_someSelected = true;
        break;
    case PngBtnUnlockHover:
        model->UpdateDataforLeftReleasedforlock(1, m_hovered.id);
        m_someSelected = true;
        break;
    case PngBtnUpHover:
        model->UpdateDataforLeftReleasedforbtnupdown(1, m_hovered.id);
        m_someSelected = true;
        break;
    case PngBtnDownHover:
        model->UpdateDataforLeftReleasedforbtnupdown(-1, m_hovered.id);
        m_someSelected = true;
        break;
    case PngRowFirst:
        model->UpdateDataforLeftReleasedforrecttext(1, m_hovered.id);
        m_someSelected = false;
        break;
    case PngRowSecond:
        model->UpdateDataforLeftReleasedforrecttext(-1, m_hovered.id);
        m_someSelected = false;
        break;
    default:
        break;
    }

    // A click away from the marked element closes that record's list and clears the event; it
    // runs last, so it wins over an event the click itself raised.
    if (m_lastId != m_hovered.id && m_lastElement != m_hovered.element && m_hoverActive) {
        const int e = m_lastElement;
        if ((e >= 11 && e <= 14) || (e >= 21 && e <= 24) || (e >= 31 && e <= 34) ||
            (e >= 52 && e <= 58) || e == PngRowFirst || e == PngRowSecond) {
            model->UpdateDataforLeftReleasedmoveout(1, m_lastId);
        }
    }
}
