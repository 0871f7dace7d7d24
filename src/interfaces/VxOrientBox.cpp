// VxOrientBox: corners of a box held in a frame of its own. The frame is used as it stands,
// valid or not.
#include <interfaces/VxOrientBox.h>

void VxOrientBox::Get8Corners(VxPoint* corners) const {
    if (corners == nullptr) {
        return;
    }
    for (int i = 0; i < 8; ++i) {
        const double sx = (i & 1) ? 1.0 : -1.0;
        const double sy = (i & 2) ? 1.0 : -1.0;
        const double sz = (i & 4) ? 1.0 : -1.0;
        corners[i] = m_frame.ToWorld(VxPoint(sx * m_half[0], sy * m_half[1], sz * m_half[2]));
    }
}
