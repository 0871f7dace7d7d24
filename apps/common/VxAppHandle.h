// VxAppHandle: a manipulator on one tooth, driven the way a host drives it. The frame handle or
// the position handle is placed on the tooth's frame at its current placement and added to the
// aux registry; a drag step asks the handle for its matrix and applies it to the tooth's
// placement at the shown step (a turn about the handle's origin, a move as it is). vxview cycles
// it with a key, vxrender draws it for a picture.
#pragma once

#include <interfaces/CPoint.h>

#include <string>

class VxAppScene;
class VxAuxFrame;
class VxAuxPosition;
class VxTooth;

struct VxAppHandleChoice {
    enum class Kind { Off, Frame, Rotate, Position };
    Kind kind = Kind::Off;
    int moveMode = 7; // position handle: 0 .. 7
};

// "frame", "rotate" (the frame handle with its turn ring showing), "position" (all moves) or
// "position:N" with N from 0 to 7. False on anything else.
bool VxAppParseHandle(const std::string& text, VxAppHandleChoice& out);
// "frame handle", "position handle, mode 3 (turn about Z)", ...
std::string VxAppHandleName(const VxAppHandleChoice& choice);

class VxAppHandle {
public:
    VxAppHandle() = default;
    VxAppHandle(const VxAppHandle&) = delete;
    VxAppHandle& operator=(const VxAppHandle&) = delete;
    ~VxAppHandle();

    // Puts the handle on tooth `fdi` of the scene's case, replacing the one before; Off only
    // takes it away. False with `error` set when the case has no such tooth. For Rotate the turn
    // ball is hit at once, so the ring shows from the second frame on.
    bool Attach(VxAppScene& scene, int fdi, const VxAppHandleChoice& choice, std::string& error);
    void Detach();
    bool IsAttached() const { return Live() != nullptr; }
    const VxAppHandleChoice& Choice() const { return m_choice; }
    int Tooth() const { return m_fdi; }
    // vxview's key: off, frame handle, position handle modes 0 to 7, off again. Returns the new
    // state in words.
    std::string Cycle(VxAppScene& scene, int fdi);

    // Hit test of the handle at a pixel (y from the top) after a frame: true when a grip is
    // under it, which then leads the next drag steps.
    bool Grab(const CPoint& pixel);
    // One step of a drag: the handle's matrix, applied to the tooth's placement. slow: a tenth.
    void Drag(const CPoint& from, const CPoint& to, bool slow);

    // Zooms the single view onto the handle (a picture of it), as the aux sample does.
    void FocusView(double zoom);

    // The tooth a handle goes on when none is named: the first selected tooth, else a first
    // molar (36, 46, 16, 26), else the first tooth; 0 for a case without teeth.
    static int DefaultTooth(VxAppScene& scene);

private:
    // Puts the frame handle into its turning state: a turn ball is hit as a cursor would,
    // choosing the one whose ring faces the viewer best.
    void StartTurning();
    // The handle while the registry still holds it (turning the aux sample on clears it).
    VxAuxFrame* Live() const;

    VxAuxFrame* m_frame = nullptr;
    VxAuxPosition* m_position = nullptr; // the same object when it is a position handle
    VxAppScene* m_scene = nullptr;
    VxTooth* m_tooth = nullptr;
    int m_fdi = 0;
    VxAppHandleChoice m_choice;
};
