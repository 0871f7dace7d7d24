// VxTransformMatrix: per-entity, per-step placement sets.
#include <interfaces/VxTransformMatrix.h>

VxTransformMatrix* VxTransformMatrix::GetInstance() {
    static VxTransformMatrix instance;
    return &instance;
}

VxTransformMatrix::~VxTransformMatrix() = default;

std::set<DrawInfo_s> VxTransformMatrix::GetDrawInfos(VxEntity* entity) const {
    return GetDrawInfos(entity, m_currentStep);
}

std::set<DrawInfo_s> VxTransformMatrix::GetDrawInfos(VxEntity* entity, int step) const {
    const auto e = m_infos.find(entity);
    if (entity == nullptr || e == m_infos.end()) {
        return {};
    }
    const auto s = e->second.find(step);
    if (s == e->second.end()) {
        return {};
    }
    return s->second;
}

void VxTransformMatrix::SetDrawInfos(VxEntity* entity, int step,
                                     const std::set<DrawInfo_s>& infos) {
    if (entity == nullptr) {
        return;
    }
    if (infos.empty()) {
        const auto e = m_infos.find(entity);
        if (e != m_infos.end()) {
            e->second.erase(step);
            if (e->second.empty()) {
                m_infos.erase(e);
            }
        }
        return;
    }
    m_infos[entity][step] = infos;
}

void VxTransformMatrix::RemoveEntity(VxEntity* entity) {
    m_infos.erase(entity);
}

void VxTransformMatrix::Clear() {
    m_infos.clear();
    m_currentStep = 0;
}
