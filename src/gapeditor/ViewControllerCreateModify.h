// ViewControllerCreateModify: the gap editor's input machine. The host passes the mouse in; on a
// move the controller asks what lies under the cursor (one pick pass) and marks that element as
// hovered, undoing the mark of the element it left; on a release it carries out the click on the
// hovered element through ModelCreateModify's update family, which raises the event the host
// reads from EventInfoCreateModify. The press does nothing: all action lies in the release.
//
// The pick goes through a replaceable function (by default RenderV1::ObjectSelected), so the
// machine can be driven without GL.
#pragma once

#include <gapeditor/Enumerationofpng.h>
#include <gapeditor/ObjectSelected.h>

#include <array>
#include <functional>

class VxViewRegion;

class ViewControllerCreateModify {
public:
    // Element code, record id, row code at a window pixel (y down) of a view.
    using Pick = std::function<std::array<unsigned char, 3>(VxViewRegion*, int, int)>;

    // Made on first use and never freed.
    static ViewControllerCreateModify* getInstance();
    static ViewControllerCreateModify* m_ViewControllerCreateModify;

    ViewControllerCreateModify() = default;
    ViewControllerCreateModify& operator=(const ViewControllerCreateModify&) = default;
    ~ViewControllerCreateModify() {}

    void SetupCurrentMouseState(int x, int y, VxViewRegion* view);
    void MouseLeftMoving();
    void MousePressed() {}
    void MouseLeftReleased();

    ObjectSelected GetObjectHovered() const { return m_hovered; }
    bool GetsomeSelected() const { return m_someSelected; }
    int GetMousePos_x() const { return m_mouseX; }
    int GetMousePos_y() const { return m_mouseY; }
    VxViewRegion* GetRelatedView() const { return m_view; }

    // A pick code as an element: 5 stands for 58, codes outside the editor's set give -1.
    Enumerationofpng TransformfromInt(int code) const;
    // With a row code: 101 and 105 name the list rows, any other row gives 0.
    Enumerationofpng TransformfromInt(int code, int row) const;

    void SetPick(Pick pick) { m_pick = std::move(pick); }

private:
    std::array<unsigned char, 3> PickAt() const;

    int m_mouseX = 0;
    int m_mouseY = 0;
    VxViewRegion* m_view = nullptr;
    bool m_someSelected = false;
    bool m_hoverActive = false;
    ObjectSelected m_hovered;
    int m_lastId = -1;
    Enumerationofpng m_lastElement = static_cast<Enumerationofpng>(-1);
    Pick m_pick;
};
