// VxTreatStep: where one tooth stands at one treatment step, and the movement between two such
// steps. The placement is the tooth's own frame at that step in model space: a rigid 4 x 4
// matrix whose first three columns are the tooth's axes and whose last column is its centre
// (the host composes the step's placement with the tooth's local frame). Movements are read in
// the tooth's frame at the earlier step, so "x" is always the tooth's own x axis.
// It does not interpolate between steps and holds no pointer to the tooth.
#pragma once

#include <interfaces/VxMatrix.h>
#include <interfaces/VxVector.h>

class VxTreatStep {
public:
    // Identity placement, step 0, no tooth.
    VxTreatStep();
    // A placement that is not 4 x 4 is replaced by the identity.
    VxTreatStep(int fdi, int step, const VxMatrix& placement);
    VxTreatStep(const VxTreatStep&) = default;
    VxTreatStep& operator=(const VxTreatStep&) = default;

    int GetFDI() const { return m_fdi; }
    int GetStep() const { return m_step; }
    const VxMatrix& GetPlacement() const { return m_placement; }
    void SetFDI(int fdi) { m_fdi = fdi; }
    void SetStep(int step) { m_step = step; }
    void SetPlacement(const VxMatrix& placement);

    // Translation from `from` to `to`, in millimetres along the axes of `from`. A null step or
    // a singular placement gives the zero vector.
    static VxVector GetTransMove(const VxTreatStep* from, const VxTreatStep* to);
    // Rotation from `from` to `to` as a rotation vector in the axes of `from`: its direction is
    // the rotation axis, its length the angle in degrees (0 to 180). Component i is then the
    // rotation about the tooth's axis i, with no Euler order to choose. Null or singular: zero.
    static VxVector GetTransRotate(const VxTreatStep* from, const VxTreatStep* to);
    // The same on bare placements.
    static VxVector GetTransMove(const VxMatrix& from, const VxMatrix& to);
    static VxVector GetTransRotate(const VxMatrix& from, const VxMatrix& to);

private:
    int m_fdi = 0;
    int m_step = 0;
    VxMatrix m_placement;
};
