// VxIPR: one planned interproximal reduction between two neighbouring teeth: the pair, the
// treatment step it is done at, the amount of enamel removed, the largest gap it opens and where
// that gap lies in model space. A plain record the host fills; it does not measure anything and
// does not own the teeth.
#pragma once

#include <interfaces/VxPoint.h>

class VxTooth;

class VxIPR {
public:
    VxIPR() = default;
    VxIPR(VxTooth* first, VxTooth* second, int step, double value, double maxGapValue,
          const VxPoint& gapPos);
    VxIPR(const VxIPR&) = default;
    VxIPR& operator=(const VxIPR&) = default;

    // Copies the two teeth into *first and *second (either may be null to skip it) and gives the
    // step and the reduction amount. False, with nothing written, when the record has no pair.
    bool GetIPRInfo(VxTooth* first, VxTooth* second, int& step, double& value) const;
    VxTooth* GetFirstTooth() const { return m_first; }
    VxTooth* GetSecondTooth() const { return m_second; }
    int GetStep() const { return m_step; }
    double GetValue() const { return m_value; }
    double GetmaxGapValue() const { return m_maxGapValue; }
    VxPoint GetGapPos() const { return m_gapPos; }
    // True when the tooth is one of the pair (pointer identity).
    bool Involves(const VxTooth* tooth) const {
        return tooth != nullptr && (tooth == m_first || tooth == m_second);
    }

    void SetTeeth(VxTooth* first, VxTooth* second) {
        m_first = first;
        m_second = second;
    }
    void SetStep(int step) { m_step = step; }
    void SetValue(double value) { m_value = value; }
    void SetmaxGapValue(double value) { m_maxGapValue = value; }
    void SetGapPos(const VxPoint& pos) { m_gapPos = pos; }

private:
    VxTooth* m_first = nullptr; // not owned
    VxTooth* m_second = nullptr;
    int m_step = 0;
    double m_value = 0.0;       // millimetres of enamel removed
    double m_maxGapValue = 0.0; // millimetres; what the label shows
    VxPoint m_gapPos;
};
