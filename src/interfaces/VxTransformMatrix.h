// VxTransformMatrix: the placements of each entity at each treatment step, as the host has set
// them, and the step the frames are drawn at. The renderer only asks GetDrawInfos; everything
// else is the host's. Entities are keys only: never dereferenced, never freed.
#pragma once

#include <interfaces/DrawInfo_s.h>

#include <map>
#include <set>

class VxEntity;

class VxTransformMatrix {
public:
    static VxTransformMatrix* GetInstance();

    // The placements of `entity` at the current step. Empty means drawn where it is (also for an
    // unknown entity or step, and for null).
    std::set<DrawInfo_s> GetDrawInfos(VxEntity* entity) const;
    // The placements at a given step.
    std::set<DrawInfo_s> GetDrawInfos(VxEntity* entity, int step) const;

    void SetCurrentStep(int step) { m_currentStep = step; }
    int GetCurrentStep() const { return m_currentStep; }
    // Replaces the placements of an entity at a step; an empty set removes the entry.
    void SetDrawInfos(VxEntity* entity, int step, const std::set<DrawInfo_s>& infos);
    // Forgets an entity (the host calls this before freeing it).
    void RemoveEntity(VxEntity* entity);
    // Forgets everything; the current step goes back to 0.
    void Clear();

    VxTransformMatrix(const VxTransformMatrix&) = delete;
    VxTransformMatrix& operator=(const VxTransformMatrix&) = delete;
    virtual ~VxTransformMatrix();

private:
    VxTransformMatrix() = default;

    int m_currentStep = 0;
    std::map<VxEntity*, std::map<int, std::set<DrawInfo_s>>> m_infos;
};
