// VxAuxRender: routing, drawing per view and the hit walk of the auxiliary objects.
#include <aux/VxAuxRender.h>

#include <GL/glew.h>

#include <aux/VxAuxBillBoard3d.h>
#include <aux/VxAuxObject.h>
#include <aux/VxAuxText.h>
#include <aux/VxAuxTexture.h>
#include <mesh/VxVBOHandleMgr.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <algorithm>
#include <functional>
#include <unordered_set>

bool AuxObjectCompare::operator()(const VxAuxObject* a, const VxAuxObject* b) const {
    const int pa = a->GetHitPriority();
    const int pb = b->GetHitPriority();
    if (pa != pb) {
        return pa > pb;
    }
    return std::greater<const VxAuxObject*>()(a, b);
}

bool VxAuxRender::Holds(const VxAuxObject* object) const {
    return object != nullptr && std::any_of(m_objects.begin(), m_objects.end(),
                                            [object](const VxAuxObject* o) { return o == object; });
}

VxAuxRender::VxAuxRender() {
    // Pipes and meshes free their buffers through the buffer manager when the registry deletes
    // them. Reaching it here builds it first, so it is destroyed after the registry at exit.
    VxVBOHandleMgr::GetInstance();
}

VxAuxRender::~VxAuxRender() {
    Clear();
}

std::vector<VxAuxObject*>* VxAuxRender::VectorFor(const VxAuxObject* object) {
    // A billboard is also a text: testing it first keeps it out of the texts.
    if (object->IsKindOf(ObjectType_AuxTexture)) {
        return &m_textures;
    }
    if (object->IsKindOf(ObjectType_AuxBillBoard3d)) {
        return &m_billboards;
    }
    if (object->IsKindOf(ObjectType_AuxLine2D)) {
        return &m_screenLines;
    }
    if (object->IsKindOf(ObjectType_AuxText)) {
        return &m_texts;
    }
    return nullptr;
}

void VxAuxRender::AddAuxObject(VxAuxObject* object) {
    if (object == nullptr) {
        return;
    }
    std::vector<VxAuxObject*>* v = VectorFor(object);
    if (v == nullptr) {
        m_objects.insert(object);
    } else if (std::find(v->begin(), v->end(), object) == v->end()) {
        // A second pointer to the same object would be deleted twice by Clear.
        v->push_back(object);
    }
}

void VxAuxRender::RemoveAuxObject(VxAuxObject* object, bool deleteObject) {
    if (object == nullptr) {
        return;
    }
    std::vector<VxAuxObject*>* v = VectorFor(object);
    bool found = false;
    if (v == nullptr) {
        found = m_objects.erase(object) != 0;
    } else {
        auto it = std::find(v->begin(), v->end(), object);
        if (it != v->end()) {
            v->erase(it);
            found = true;
        }
    }
    if (!found) {
        return;
    }
    if (m_hitObject == object) {
        m_hitObject = nullptr;
    }
    if (deleteObject) {
        delete object;
    }
}

void VxAuxRender::RemoveAuxObjects(const std::vector<VxAuxObject*>& objects, bool deleteObject) {
    std::unordered_set<VxAuxObject*> wanted(objects.begin(), objects.end());
    wanted.erase(nullptr);
    if (wanted.empty()) {
        return;
    }
    std::unordered_set<VxAuxObject*> found;
    for (std::vector<VxAuxObject*>* v : {&m_textures, &m_billboards, &m_screenLines, &m_texts}) {
        v->erase(std::remove_if(v->begin(), v->end(),
                                [&](VxAuxObject* o) {
                                    if (wanted.count(o) == 0) {
                                        return false;
                                    }
                                    found.insert(o);
                                    return true;
                                }),
                 v->end());
    }
    for (VxAuxObject* o : wanted) {
        if (found.count(o) == 0 && VectorFor(o) == nullptr && m_objects.erase(o) != 0) {
            found.insert(o);
        }
    }
    if (m_hitObject != nullptr && found.count(m_hitObject) != 0) {
        m_hitObject = nullptr;
    }
    if (deleteObject) {
        for (VxAuxObject* o : found) {
            delete o;
        }
    }
}

void VxAuxRender::Clear() {
    for (VxAuxObject* o : m_objects) {
        delete o;
    }
    m_objects.clear();
    for (std::vector<VxAuxObject*>* v : {&m_textures, &m_billboards, &m_screenLines, &m_texts}) {
        for (VxAuxObject* o : *v) {
            delete o;
        }
        v->clear();
    }
    // The pointer would dangle; Render and DoSelect would touch a freed object.
    m_hitObject = nullptr;
}

namespace {

void LoadView(VxViewRegion* view) {
    glViewport(view->Origin().x, view->Origin().y, view->Width(), view->Height());
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadMatrixd(view->GetModelViewMatrix());
}

} // namespace

void VxAuxRender::Render() {
    for (VxViewRegion* view : VxViewManager::GetInstance()->GetAllViews()) {
        LoadView(view);
        // A picture belongs to one view and is drawn only there; a pin label is placed for
        // the view it is drawn in.
        for (VxAuxObject* o : m_textures) {
            auto* texture = dynamic_cast<VxAuxTexture*>(o);
            if (texture == nullptr) {
                o->Draw();
            } else if (texture->GetRelatedView() == view) {
                texture->Draw();
            }
        }
        for (VxAuxObject* o : m_billboards) {
            if (auto* billboard = dynamic_cast<VxAuxBillBoard3d*>(o)) {
                billboard->SetRelatedView(view);
            }
            o->Draw();
        }
        // Texts draw in the view they are given; whole-window texts wait for the end. An object
        // that only answers the text kind, without being one, draws plainly.
        for (VxAuxObject* o : m_texts) {
            auto* text = dynamic_cast<VxAuxText*>(o);
            if (text == nullptr) {
                o->Draw();
            } else if (text->GetTextType() != Text_OnScreenOnce) {
                text->Draw(view);
            }
        }
        for (VxAuxObject* o : m_objects) {
            o->Draw();
        }
        if (m_hitObject != nullptr) {
            m_hitObject->DrawHighlight();
        }
        glPopMatrix();
    }
    // Screen lines are drawn once for the whole window, not per view.
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    for (VxAuxObject* o : m_screenLines) {
        o->Draw();
    }
    glPopMatrix();
    glPushMatrix();
    for (VxAuxObject* o : m_texts) {
        auto* text = dynamic_cast<VxAuxText*>(o);
        if (text != nullptr && text->GetTextType() == Text_OnScreenOnce) {
            text->Draw(nullptr);
        }
    }
    glPopMatrix();
}

void VxAuxRender::DrawAuxObject(VxAuxObject* object) {
    VxViewRegion* view = VxViewManager::GetInstance()->GetActiveView();
    if (view != nullptr) {
        DrawAuxObject(view, object);
    }
}

void VxAuxRender::DrawAuxObject(VxViewRegion* view, VxAuxObject* object) {
    if (view == nullptr || object == nullptr) {
        return;
    }
    glPushAttrib(GL_VIEWPORT_BIT);
    LoadView(view);
    object->Draw();
    glPopMatrix();
    glPopAttrib();
}

void VxAuxRender::HitTest(const CPoint& point) {
    m_hitObject = nullptr;
    for (VxAuxObject* o : m_objects) {
        if (!o->IsVisible() || !o->IsHitable()) {
            continue;
        }
        if (o->HitTest(point.x, point.y)) {
            m_hitObject = o;
            if (o->StopHit()) {
                break;
            }
        }
    }
    // Textures and billboards: the last added lies on top; their flags are not consulted.
    for (std::vector<VxAuxObject*>* v : {&m_textures, &m_billboards}) {
        if (m_hitObject != nullptr) {
            return;
        }
        for (auto it = v->rbegin(); it != v->rend(); ++it) {
            if ((*it)->HitTest(point.x, point.y)) {
                m_hitObject = *it;
                break;
            }
        }
    }
}

void VxAuxRender::DoSelect(const CPoint&) {
    if (m_hitObject != nullptr) {
        m_hitObject->SetSelected(!m_hitObject->IsSelected());
    }
}
