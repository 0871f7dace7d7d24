// VxToothRef: the reference data of one tooth: its number and kind, the jaw it belongs to, its
// Facc curve, its middle curve and its feature points. The host (or the case-file loader) builds
// it from its landmark analysis; this class only keeps it. The jaw and the vertices the landmarks
// point at belong to the host's model.
#pragma once

#include <interfaces/VxFDI.h>
#include <interfaces/VxFacc.h>
#include <interfaces/VxFeaturePoint.h>
#include <interfaces/VxMidCurve.h>
#include <interfaces/VxModelEnums.h>

#include <vector>

class VxJaw;

class VxToothRef {
public:
    VxToothRef() = default;
    explicit VxToothRef(int fdi, ToothKind_e kind = ToothKind_Normal, VxJaw* ownJaw = nullptr)
        : m_fdi(fdi), m_kind(kind), m_ownJaw(ownJaw) {}

    int GetFDI() const { return m_fdi; }
    VxFDI GetFDIEx() const { return VxFDI(m_fdi); }
    ToothKind_e GetToothKind() const { return m_kind; }
    // The jaw whose visibility decides the reference overlay's; may be null.
    VxJaw* GetOwnJaw() const { return m_ownJaw; }
    // The Facc and middle curve always exist; their curves may not (GetCurve gives null then).
    VxFacc& GetFacc() { return m_facc; }
    const VxFacc& GetFacc() const { return m_facc; }
    VxMidCurve& GetMidCurve() { return m_midCurve; }
    const VxMidCurve& GetMidCurve() const { return m_midCurve; }
    const std::vector<VxFeaturePoint>& GetFeaturePoint() const { return m_featurePoints; }

    void SetFDI(int fdi) { m_fdi = fdi; }
    void SetToothKind(ToothKind_e kind) { m_kind = kind; }
    void SetOwnJaw(VxJaw* jaw) { m_ownJaw = jaw; }
    void SetFacc(const VxFacc& facc) { m_facc = facc; }
    void SetMidCurve(const VxMidCurve& curve) { m_midCurve = curve; }
    // Points without a vertex are dropped: readers take each point's vertex position.
    void SetFeaturePoint(const std::vector<VxFeaturePoint>& points);
    void AddFeaturePoint(const VxFeaturePoint& point);

private:
    int m_fdi = 0;
    ToothKind_e m_kind = ToothKind_Normal;
    VxJaw* m_ownJaw = nullptr; // not owned
    VxFacc m_facc;
    VxMidCurve m_midCurve;
    std::vector<VxFeaturePoint> m_featurePoints;
};
