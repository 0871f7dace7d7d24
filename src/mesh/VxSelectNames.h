// VxSelectNames: the GL selection names the drawers push for an object, and the way back from a
// name found in the selection buffer to the object. A name stands for the object's address.
//
// Why a table: a GL name is a 32-bit unsigned int. Where an address fits in one (32-bit builds)
// the name is the address itself, as it always was. On a 64-bit build an address does not fit,
// and a truncated address could name another object or none, so each object pushed during a pick
// gets a small serial number instead (1, 2, ...; 0 stays the base name the pick leaves on the
// stack and is never an object), and ObjectOf maps it back. The table lives from one Reset to the
// next: the pick's set-up resets it, and nothing else does. It never dereferences what it holds.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

class VxObject;

class VxSelectNames {
public:
    // The name to push for an object; the same name for the same object until Reset.
    static unsigned int NameOf(const VxObject* object);
    // The object a name found in the selection buffer stands for; null for 0 or an unknown name.
    static VxObject* ObjectOf(unsigned int name);
    // Forgets every name; called once at the start of each pick.
    static void Reset();
    // Whether names are the addresses themselves (32-bit builds) or table entries.
    static constexpr bool kAddressNames = sizeof(void*) <= sizeof(std::uint32_t);
    // Objects named since the last Reset (table builds), for tests.
    static std::size_t Count();
};
