// VxSelectNames: addresses as names where they fit, a per-pick table where they do not.
#include <mesh/VxSelectNames.h>

#include <interfaces/VxObject.h>

namespace {
struct Table {
    std::unordered_map<const VxObject*, unsigned int> names;
    std::vector<const VxObject*> objects; // objects[name - 1]
};
Table& TheTable() {
    static Table table;
    return table;
}
} // namespace

unsigned int VxSelectNames::NameOf(const VxObject* object) {
    if (object == nullptr) {
        return 0;
    }
    if (kAddressNames) {
        return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(object));
    }
    Table& t = TheTable();
    auto it = t.names.find(object);
    if (it != t.names.end()) {
        return it->second;
    }
    t.objects.push_back(object);
    const unsigned int name = static_cast<unsigned int>(t.objects.size());
    t.names.emplace(object, name);
    return name;
}

VxObject* VxSelectNames::ObjectOf(unsigned int name) {
    if (name == 0) {
        return nullptr;
    }
    if (kAddressNames) {
        return reinterpret_cast<VxObject*>(static_cast<std::uintptr_t>(name));
    }
    const Table& t = TheTable();
    if (name > t.objects.size()) {
        return nullptr;
    }
    // The drawers named objects they were handed as non-const; the table only stores them const.
    return const_cast<VxObject*>(t.objects[name - 1]);
}

void VxSelectNames::Reset() {
    Table& t = TheTable();
    t.names.clear();
    t.objects.clear();
}

std::size_t VxSelectNames::Count() {
    return TheTable().objects.size();
}
