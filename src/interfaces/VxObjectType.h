// ObjectType_e: exact type tags of model entities, mesh parts and auxiliary drawables. Values are
// exact types, not masks; VxObject::IsKindOf answers for a value and its bases. Select types are
// ORed sets of these values, so every value keeps its own bit pattern.
#pragma once

#include <cstdint>

enum ObjectType_e : std::uint64_t {
    ObjectType_None = 0x0,
    ObjectType_Object = 0x1,
    ObjectType_Entity = 0x2,
    // Model entities and mesh parts.
    ObjectType_Mesh = 0x4,
    ObjectType_Vertex = 0x8,
    ObjectType_Edge = 0x10,
    ObjectType_Face = 0x20,
    ObjectType_Jaw = 0x40,
    ObjectType_Tooth = 0x80,
    ObjectType_Gum = 0x100,
    ObjectType_Reserved400 = 0x400, // listed in the default select types; no class answers to it
    ObjectType_Attachment = 0x10000000,
    ObjectType_Skull = 0x200000000ULL,
    // Auxiliary drawables.
    ObjectType_AuxObject = 0x1000,
    ObjectType_AuxPoint = 0x2000,
    ObjectType_AuxArrow = 0x4000,
    ObjectType_AuxFace = 0x8000,
    ObjectType_AuxFrame = 0x10000,
    ObjectType_AuxPlane = 0x20000,
    ObjectType_AuxPolyline = 0x40000,
    ObjectType_AuxTorus = 0x80000,
    ObjectType_AuxCircle = 0x100000,
    ObjectType_AuxLine = 0x200000,
    ObjectType_AuxText = 0x400000,
    ObjectType_AuxPipeLine = 0x800000,
    ObjectType_AuxBillBoard = 0x2000000, // shared by VxAuxBillBoard and VxAuxPolyline2D
    ObjectType_AuxPolyline2D = 0x2000000,
    ObjectType_AuxBillBoard3d = 0x3000000,
    ObjectType_AuxTexture = 0x8000000,
    ObjectType_AuxLine2D = 0x20000000,
    ObjectType_AuxMesh = 0x40000000,
    ObjectType_AuxBox = 0x80000000ULL,
    ObjectType_AuxMarker = 0x100000000ULL,
    ObjectType_AuxPosition = 0x400000000ULL,
};
