// VxOverlayLayout: the arithmetic of the IPR, collision, attachment and grid overlays, apart from
// the objects that show it: label texts, where a leader ends, the colour of a contact depth and
// the cell of the measuring grid at a zoom. Every function is pure and total: a zero direction,
// a non-finite number or an unknown tooth gives a quiet neutral result, never a fault, so that
// bad model data costs a label its place but never the frame.
#pragma once

#include <interfaces/CString.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

class VxOverlayLayout {
public:
    // " %d(%.1f)": the record's number and its amount in millimetres, led by a blank.
    static CString IprText(int number, double value);
    // "%.1f" without a lone leading zero: 0.3 reads ".3", 1.2 stays "1.2", -0.3 stays "-0.3".
    static CString IprShortText(double value);
    // End of the leader of a label read from the record alone: out from `ref` through the gap,
    // 9 units when `ref` stands left of the gap on the screen, else 14.
    static VxPoint IprLabelFlat(const VxPoint& gap, const VxPoint& ref, bool refLeftOfGap);
    // End of the leader of a label given its teeth: the outward direction tilted towards the two
    // teeth's z axes (0.75 of their mean), scaled by 1.5, 11 of those out: 16.5 units.
    static VxPoint IprLabelTilted(const VxPoint& gap, const VxPoint& ref, const VxVector& firstZ,
                                  const VxVector& secondZ);

    // Blue at no depth, green at half a millimetre, red from one on; alpha 100.
    static VxColor CollisionDepthColor(double depth);
    // Label colours: a gap, a contact across the jaws, a contact within one jaw.
    static VxColor CollisionTextColor(bool isGap, bool acrossJaws);

    // " %d(%d)": the first and last step an attachment is worn.
    static CString AttachText(int startStep, int endStep);
    // True when the identifier names one of the families whose label always stands 10 out.
    static bool IsFixedDistanceAttach(const CString& identifier);
    // Leader length of an attachment label. `side` is the tooth's y axis dotted with the
    // attachment's offset from the tooth's see-centre.
    static double AttachLabelDistance(const CString& identifier, int fdi, double side);
    // End of the leader: away from `centre` through the attachment, doubled when the centre does
    // not stand left of the attachment on the screen.
    static VxPoint AttachLabelPos(const VxPoint& attach, const VxPoint& centre, double distance,
                                  bool centreLeftOfAttach);

    // Pixels of one grid cell at `pixelsPerMm`, and its caption: one millimetre when that is at
    // least 10 pixels, else ten millimetres. Below one pixel (or for a ratio that is not a finite
    // positive number) the answer is 0 and the grid is not shown.
    static int GridStep(double pixelsPerMm, CString* caption);
};
