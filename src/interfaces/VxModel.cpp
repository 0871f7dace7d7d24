// VxModel: the entity list and its typed look-ups. Everything is a linear walk: a model holds a
// few dozen entities, and the walks keep the host's order without any index to keep in step.
#include <interfaces/VxModel.h>

#include <interfaces/VxEdge.h>
#include <interfaces/VxEntity.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxSkull.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxVertex.h>

#include <algorithm>
#include <functional>

namespace {
// True when p points into the array [first, first + count); std::less gives a total order on
// pointers into different arrays.
template <class T> bool PointsInto(const T* p, const T* first, size_t count) {
    if (count == 0) {
        return false;
    }
    return !std::less<const T*>()(p, first) && std::less<const T*>()(p, first + count);
}
} // namespace

VxModel::~VxModel() = default;

bool VxModel::AddEntity(VxEntity* entity) {
    if (entity == nullptr ||
        std::find(m_entities.begin(), m_entities.end(), entity) != m_entities.end()) {
        return false;
    }
    m_entities.push_back(entity);
    return true;
}

bool VxModel::RemoveEntity(VxEntity* entity) {
    const auto it = std::find(m_entities.begin(), m_entities.end(), entity);
    if (it == m_entities.end()) {
        return false;
    }
    m_entities.erase(it);
    return true;
}

void VxModel::Clear() {
    m_entities.clear();
}

void VxModel::GetEntities(std::vector<VxEntity*>& entities) const {
    entities = m_entities;
}

VxBBox VxModel::GetBBox() const {
    VxBBox box;
    for (VxEntity* e : m_entities) {
        if (!e->IsDeleted()) {
            const VxBBox b = e->GetBBox();
            if (!b.IsEmpty()) {
                box.Add(b);
            }
        }
    }
    return box;
}

std::vector<VxJaw*> VxModel::GetJaws() const {
    std::vector<VxJaw*> out;
    for (VxEntity* e : m_entities) {
        if (auto* j = dynamic_cast<VxJaw*>(e)) {
            out.push_back(j);
        }
    }
    return out;
}

std::vector<VxTooth*> VxModel::GetTeeth() const {
    std::vector<VxTooth*> out;
    for (VxEntity* e : m_entities) {
        if (auto* t = dynamic_cast<VxTooth*>(e)) {
            out.push_back(t);
        }
    }
    return out;
}

std::vector<VxGum*> VxModel::GetGums() const {
    std::vector<VxGum*> out;
    for (VxEntity* e : m_entities) {
        if (auto* g = dynamic_cast<VxGum*>(e)) {
            out.push_back(g);
        }
    }
    return out;
}

VxJaw* VxModel::GetJaw(bool up) const {
    for (VxEntity* e : m_entities) {
        auto* j = dynamic_cast<VxJaw*>(e);
        if (j != nullptr && j->IsUp() == up) {
            return j;
        }
    }
    return nullptr;
}

VxGum* VxModel::GetGum(bool up) const {
    VxGum* cmp = nullptr;
    for (VxEntity* e : m_entities) {
        auto* g = dynamic_cast<VxGum*>(e);
        if (g == nullptr || g->IsUp() != up) {
            continue;
        }
        if (!g->IsCmp()) {
            return g;
        }
        if (cmp == nullptr) {
            cmp = g;
        }
    }
    return cmp;
}

VxTooth* VxModel::GetTooth(int fdi) const {
    for (VxEntity* e : m_entities) {
        auto* t = dynamic_cast<VxTooth*>(e);
        if (t != nullptr && t->GetFDI() == fdi) {
            return t;
        }
    }
    return nullptr;
}

VxSkull* VxModel::GetSkull() const {
    for (VxEntity* e : m_entities) {
        if (auto* s = dynamic_cast<VxSkull*>(e)) {
            return s;
        }
    }
    return nullptr;
}

VxMesh* VxModel::GetParentMesh(const VxVertex* vertex) const {
    if (vertex == nullptr) {
        return nullptr;
    }
    for (VxEntity* e : m_entities) {
        auto* m = dynamic_cast<VxMesh*>(e);
        if (m != nullptr && PointsInto(vertex, m->GetVertices().data(), m->GetVertices().size())) {
            return m;
        }
    }
    return nullptr;
}

VxMesh* VxModel::GetParentMesh(const VxEdge* edge) const {
    if (edge == nullptr) {
        return nullptr;
    }
    for (VxEntity* e : m_entities) {
        auto* m = dynamic_cast<VxMesh*>(e);
        if (m != nullptr && PointsInto(edge, m->GetEdges().data(), m->GetEdges().size())) {
            return m;
        }
    }
    return nullptr;
}
