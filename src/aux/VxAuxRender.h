// VxAuxRender: the one registry of live auxiliary objects. It owns what is added, draws it in
// every view after the scene (so the depth passes compare against the scene's depth buffer),
// and answers which object lies under the cursor. Textures, billboards, screen lines and texts
// are kept apart from the rest because they draw and hit by rules of their own; everything else
// sits in one set ordered by hit priority, which is both the drawing and the hit order.
// The library never calls Render, HitTest or DoSelect itself: the host does.
#pragma once

#include <interfaces/CPoint.h>

#include <set>
#include <vector>

class VxAuxObject;
class VxViewRegion;

// Strict order of the set: higher priority first, then the higher address first. The order
// among equals means nothing beyond being stable while the objects live.
struct AuxObjectCompare {
    bool operator()(const VxAuxObject* a, const VxAuxObject* b) const;
};

class VxAuxRender {
public:
    using ObjectSet = std::set<VxAuxObject*, AuxObjectCompare>;

    VxAuxRender();
    // Owning containers of objects that cannot be cloned: copying would free twice.
    VxAuxRender(const VxAuxRender&) = delete;
    VxAuxRender& operator=(const VxAuxRender&) = delete;
    virtual ~VxAuxRender();

    // Takes ownership. A null pointer, or an object already registered, is ignored.
    void AddAuxObject(VxAuxObject* object);
    // Unregisters; deletes when `deleteObject`. An object that is not registered is neither
    // deleted nor does it change the hit object.
    void RemoveAuxObject(VxAuxObject* object, bool deleteObject);
    // The same for many objects at once: one pass over each list, the rest keeping their order.
    // What thousands of single removals would cost grows with the square of the count.
    void RemoveAuxObjects(const std::vector<VxAuxObject*>& objects, bool deleteObject);
    // Deletes everything registered and forgets the hit object.
    void Clear();

    // Draws every object in every view; restores the model-view matrix, leaves the last view's
    // viewport in force.
    void Render();
    // One object at once in the active view, or in a given one; it need not be registered.
    void DrawAuxObject(VxAuxObject* object);
    void DrawAuxObject(VxViewRegion* view, VxAuxObject* object);

    // The object under a window pixel (y from the top) becomes the hit object, or null.
    void HitTest(const CPoint& point);
    // Inverts the selected flag of the hit object; the point is not used.
    void DoSelect(const CPoint& point);
    void SetHitObject(VxAuxObject* object) { m_hitObject = object; }
    VxAuxObject* GetHitObject() const { return m_hitObject; }

    const ObjectSet& GetAuxObjects() const { return m_objects; }
    // Whether the registry holds this very object. Compares addresses only, so a pointer to an
    // object the registry has already freed may be asked about (a find() on the set would read
    // the object's priority through it).
    bool Holds(const VxAuxObject* object) const;
    const std::vector<VxAuxObject*>& GetTexture() const { return m_textures; }
    const std::vector<VxAuxObject*>& GetBillBoards() const { return m_billboards; }
    const std::vector<VxAuxObject*>& GetScreenLines() const { return m_screenLines; }
    const std::vector<VxAuxObject*>& GetTexts() const { return m_texts; }

private:
    // The vector an object of this kind belongs in, or null for the set.
    std::vector<VxAuxObject*>* VectorFor(const VxAuxObject* object);

    ObjectSet m_objects;
    VxAuxObject* m_hitObject = nullptr;
    // Typed as the base until the texture, billboard, screen-line and text classes exist; the
    // routing already uses their kind tags.
    std::vector<VxAuxObject*> m_textures;
    std::vector<VxAuxObject*> m_billboards;
    std::vector<VxAuxObject*> m_screenLines;
    std::vector<VxAuxObject*> m_texts;
};
