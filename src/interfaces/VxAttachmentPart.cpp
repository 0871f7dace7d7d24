// VxAttachmentPart: a placed part; its placement starts as the identity.
#include <interfaces/VxAttachmentPart.h>

VxAttachmentPart::VxAttachmentPart() : matrix(VxMatrix::Identity(4)) {}

VxAttachmentPart::~VxAttachmentPart() = default;
