// VxScheme: one treatment scheme: the number of steps, where every tooth stands at each step,
// the planned arch line and occlusal plane of each jaw, and the interproximal reductions. A plain
// container that a host or case-file loader fills; it does not plan, interpolate or check that
// the steps are consistent.
#pragma once

#include <interfaces/VxArchForm.h>
#include <interfaces/VxIPR.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxOcclusalPlane.h>
#include <interfaces/VxTreatStep.h>

#include <map>
#include <optional>
#include <vector>

class VxTooth;

class VxScheme {
public:
    VxScheme() = default;

    // Number of treatment steps, step 0 being the start. Never lower than one past the highest
    // step that has a placement.
    int GetStepCount() const { return m_stepCount; }
    void SetStepCount(int count);

    // Arch lines and occlusal planes; null when the scheme has none for that jaw.
    VxArchForm* GetUpArch() { return m_upArch ? &*m_upArch : nullptr; }
    VxArchForm* GetLowArch() { return m_lowArch ? &*m_lowArch : nullptr; }
    const VxArchForm* GetUpArch() const { return m_upArch ? &*m_upArch : nullptr; }
    const VxArchForm* GetLowArch() const { return m_lowArch ? &*m_lowArch : nullptr; }
    VxOcclusalPlane* GetUpOccPlane() { return m_upOcc ? &*m_upOcc : nullptr; }
    VxOcclusalPlane* GetLowOccPlane() { return m_lowOcc ? &*m_lowOcc : nullptr; }
    const VxOcclusalPlane* GetUpOccPlane() const { return m_upOcc ? &*m_upOcc : nullptr; }
    const VxOcclusalPlane* GetLowOccPlane() const { return m_lowOcc ? &*m_lowOcc : nullptr; }
    void SetUpArch(const VxArchForm& arch) { m_upArch = arch; }
    void SetLowArch(const VxArchForm& arch) { m_lowArch = arch; }
    void SetUpOccPlane(const VxOcclusalPlane& plane) { m_upOcc = plane; }
    void SetLowOccPlane(const VxOcclusalPlane& plane) { m_lowOcc = plane; }
    void ClearArches() {
        m_upArch.reset();
        m_lowArch.reset();
    }
    void ClearOccPlanes() {
        m_upOcc.reset();
        m_lowOcc.reset();
    }

    // Stores a tooth's placement at a step (VxTreatStep tells what the matrix means), replacing
    // one at the same tooth and step. A negative step is refused (null). The pointer stays
    // valid until that step is replaced or removed, or the scheme dies.
    VxTreatStep* AddTreatStep(const VxTreatStep& step);
    bool RemoveTreatStep(int fdi, int step);
    // Null when the tooth has no placement at that step.
    VxTreatStep* GetTreatStep(int fdi, int step);
    const VxTreatStep* GetTreatStep(int fdi, int step) const;
    // Every placement, by FDI number, then by step.
    void GetAllTreatSteps(std::vector<VxTreatStep*>& steps);
    // The tooth's placements in step order, replacing the vector's content; empty for a tooth
    // without any. Steps the tooth skips are simply absent (a tooth extracted midway ends
    // early), so list index and step number differ in general: read VxTreatStep::GetStep.
    void GetToothAllSteps(int fdi, std::vector<VxTreatStep*>& steps);
    // The same as bare placement matrices.
    void GetToothAllSteps(int fdi, std::vector<VxMatrix>& placements) const;

    // Interproximal reductions, in the order they were added.
    const std::vector<VxIPR>& GetIPRInfo() const { return m_iprs; }
    // Those done at one step, replacing the vector's content.
    void GetIPRInfo(int step, std::vector<VxIPR>& iprs) const;
    // Those that involve one tooth, replacing the vector's content.
    void GetToothIPRInfo(const VxTooth* tooth, std::vector<VxIPR>& iprs) const;
    void SetIPRInfo(const std::vector<VxIPR>& iprs) { m_iprs = iprs; }
    void AddIPR(const VxIPR& ipr) { m_iprs.push_back(ipr); }

private:
    int m_stepCount = 0;
    std::optional<VxArchForm> m_upArch;
    std::optional<VxArchForm> m_lowArch;
    std::optional<VxOcclusalPlane> m_upOcc;
    std::optional<VxOcclusalPlane> m_lowOcc;
    // FDI -> step -> placement. Node-based so handed-out pointers survive later insertions.
    std::map<int, std::map<int, VxTreatStep>> m_steps;
    std::vector<VxIPR> m_iprs;
};
