// VxCacheStuff: the attachment labels and the measuring grid.
#include <overlays/VxCacheStuff.h>

#include <interfaces/VxAttachment.h>
#include <overlays/VxMeasureGrid.h>
#include <overlays/VxTextHelper.h>

void VxCacheStuff::ShowAttachmentInfo(const std::vector<VxAttachment*>& /*attachments*/,
                                      VxPoint& /*centre*/) {}

void VxCacheStuff::UpdateAttachmentInfo(bool /*isUp*/, int /*show*/) {}

void VxCacheStuff::HideAttachmentInfo() {}

void VxCacheStuff::RemoveAttachmentHelper() {}

void VxCacheStuff::ShowAttachmentHelper(VxAttachment* /*attachment*/, VxPoint& /*centre*/) {}

void VxCacheStuff::DrawGrid(int /*show*/) {}

void VxCacheStuff::DeleteGrid() {}

void VxCacheStuff::RefreshMeshBenchmark(double /*ratio*/) {}
