// VxCacheStuff: the arch wire, the reference and occlusal planes and the tooth arch lines.
#include <overlays/VxCacheStuff.h>

void VxCacheStuff::PreparArchWire() {}
void VxCacheStuff::RemoveArchWire() {}
void VxCacheStuff::PrepareMiddlePlane() {}
void VxCacheStuff::RemoveMiddlePlane() {}
void VxCacheStuff::PrepareBackBoundaryPlane() {}
void VxCacheStuff::RemoveBackBoundaryPlane() {}
void VxCacheStuff::PrepareBeautyPlane() {}
void VxCacheStuff::RemoveBeautyPlane() {}
void VxCacheStuff::PrepareUpJawPlane() {}
void VxCacheStuff::RemoveUpJawPlane() {}
void VxCacheStuff::PrepareDownJawPlane() {}
void VxCacheStuff::RemoveDownJawPlane() {}
void VxCacheStuff::PrepareUpToothLine() {}
void VxCacheStuff::RemoveUpToothLine() {}
void VxCacheStuff::PrepareDownToothLine() {}
void VxCacheStuff::RemoveDownToothLine() {}
