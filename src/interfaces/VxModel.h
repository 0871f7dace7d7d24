// VxModel: the host's patient model as the renderer sees it: a list of entities in the order the
// host added them, typed look-ups over that list (jaws, teeth, gums, skull), and pointers to the
// patient's records (images and measures). It owns nothing: the host creates, keeps and frees
// every entity and record, and removes an entity here before freeing it.
#pragma once

#include <interfaces/VxBBox.h>

#include <vector>

class VxCepMeasure;
class VxEdge;
class VxEntity;
class VxGum;
class VxJaw;
class VxMesh;
class VxPanMeasure;
class VxPatientInfo;
class VxSkull;
class VxTooth;
class VxVertex;

class VxModel {
public:
    VxModel() = default;
    VxModel(const VxModel&) = default;
    VxModel& operator=(const VxModel&) = default;
    virtual ~VxModel();

    // Appends an entity; null and an entity already in the model are ignored (false).
    bool AddEntity(VxEntity* entity);
    // False when the entity is not in the model.
    bool RemoveEntity(VxEntity* entity);
    // Forgets all entities (the records stay).
    void Clear();

    // All entities, in the order they were added. The vector is cleared first.
    void GetEntities(std::vector<VxEntity*>& entities) const;
    int GetEntityCount() const { return static_cast<int>(m_entities.size()); }
    // Union of the boxes of the entities that are not deleted, in their own coordinates
    // (placements are not applied). Empty for an empty model.
    VxBBox GetBBox() const;

    // Typed lists, in the order of addition.
    std::vector<VxJaw*> GetJaws() const;
    std::vector<VxTooth*> GetTeeth() const;
    std::vector<VxGum*> GetGums() const;
    // The first jaw whose IsUp equals `up`; null when there is none.
    VxJaw* GetJaw(bool up) const;
    // The first gum of that side that is not a comparison gum, else the first comparison gum of
    // that side; null when there is none.
    VxGum* GetGum(bool up) const;
    // The first tooth with that FDI number; null when there is none.
    VxTooth* GetTooth(int fdi) const;
    // The first skull; null when there is none.
    VxSkull* GetSkull() const;

    // The mesh entity whose vertex (edge) array holds this object; null for anything else.
    VxMesh* GetParentMesh(const VxVertex* vertex) const;
    VxMesh* GetParentMesh(const VxEdge* edge) const;

    // The patient's records, set by the host; null until set.
    VxPatientInfo* GetPatientInfo() const { return m_patientInfo; }
    void SetPatientInfo(VxPatientInfo* info) { m_patientInfo = info; }
    VxPanMeasure* GetPanMeasure() const { return m_panMeasure; }
    void SetPanMeasure(VxPanMeasure* measure) { m_panMeasure = measure; }
    VxCepMeasure* GetCepMeasure() const { return m_cepMeasure; }
    void SetCepMeasure(VxCepMeasure* measure) { m_cepMeasure = measure; }

private:
    std::vector<VxEntity*> m_entities;
    VxPatientInfo* m_patientInfo = nullptr;
    VxPanMeasure* m_panMeasure = nullptr;
    VxCepMeasure* m_cepMeasure = nullptr;
};
