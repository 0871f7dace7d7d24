// VxScheme: step bookkeeping and the per-tooth and per-step queries.
#include <interfaces/VxScheme.h>

#include <algorithm>

void VxScheme::SetStepCount(int count) {
    int highest = -1;
    for (const auto& tooth : m_steps)
        if (!tooth.second.empty())
            highest = std::max(highest, tooth.second.rbegin()->first);
    m_stepCount = std::max(count, highest + 1);
}

VxTreatStep* VxScheme::AddTreatStep(const VxTreatStep& step) {
    if (step.GetStep() < 0)
        return nullptr;
    VxTreatStep& stored = m_steps[step.GetFDI()][step.GetStep()];
    stored = step;
    m_stepCount = std::max(m_stepCount, step.GetStep() + 1);
    return &stored;
}

bool VxScheme::RemoveTreatStep(int fdi, int step) {
    auto tooth = m_steps.find(fdi);
    if (tooth == m_steps.end() || tooth->second.erase(step) == 0)
        return false;
    if (tooth->second.empty())
        m_steps.erase(tooth);
    return true;
}

VxTreatStep* VxScheme::GetTreatStep(int fdi, int step) {
    return const_cast<VxTreatStep*>(static_cast<const VxScheme*>(this)->GetTreatStep(fdi, step));
}

const VxTreatStep* VxScheme::GetTreatStep(int fdi, int step) const {
    auto tooth = m_steps.find(fdi);
    if (tooth == m_steps.end())
        return nullptr;
    auto it = tooth->second.find(step);
    return it == tooth->second.end() ? nullptr : &it->second;
}

void VxScheme::GetAllTreatSteps(std::vector<VxTreatStep*>& steps) {
    steps.clear();
    for (auto& tooth : m_steps)
        for (auto& s : tooth.second)
            steps.push_back(&s.second);
}

void VxScheme::GetToothAllSteps(int fdi, std::vector<VxTreatStep*>& steps) {
    steps.clear();
    auto tooth = m_steps.find(fdi);
    if (tooth == m_steps.end())
        return;
    for (auto& s : tooth->second)
        steps.push_back(&s.second);
}

void VxScheme::GetToothAllSteps(int fdi, std::vector<VxMatrix>& placements) const {
    placements.clear();
    auto tooth = m_steps.find(fdi);
    if (tooth == m_steps.end())
        return;
    for (const auto& s : tooth->second)
        placements.push_back(s.second.GetPlacement());
}

void VxScheme::GetIPRInfo(int step, std::vector<VxIPR>& iprs) const {
    iprs.clear();
    for (const VxIPR& ipr : m_iprs)
        if (ipr.GetStep() == step)
            iprs.push_back(ipr);
}

void VxScheme::GetToothIPRInfo(const VxTooth* tooth, std::vector<VxIPR>& iprs) const {
    iprs.clear();
    for (const VxIPR& ipr : m_iprs)
        if (ipr.Involves(tooth))
            iprs.push_back(ipr);
}
