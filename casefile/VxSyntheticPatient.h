// VxSyntheticPatient: a complete, plausible patient case made from a seed, for
// programs, tests and benchmarks that need a model without shipping patient
// data. 28 teeth (FDI 11-17, 21-27, 31-37, 41-47) with crowns and roots, two
// gums as strip meshes with band and segment lists, two jaws, an optional
// skull, attachments, a treatment plan that aligns crowded front teeth, IPR
// records, wedges, collision and gap records measured on the meshes, reference
// curves and planes, and four procedurally drawn patient pictures with their
// measures.
//
// World space: millimetres, x to the patient's right, y forwards, z up; the
// occlusal plane is near z = 0. Tooth meshes stand where they are at step 0
// (the crowded start); placements move them. The same seed gives the same case
// bit for bit on every platform (VxSyntheticRandom). It deliberately does not
// write files (VxCaseIO does) and does not touch the process-wide registries
// (VxCase::Install does).
#pragma once

#include "VxCase.h"

#include <cstdint>
#include <memory>

struct VxSyntheticPatientOptions {
    bool skull = false;     // add a coarse closed skull mesh
    int steps = 24;         // treatment steps including the start; at least 2
    bool images = true;     // draw the four patient pictures
    bool collisions = true; // measure contacts and gaps (VxCase::gapInfos)
    int collisionStep = 0;  // the step they are measured at
};

class VxSyntheticPatient {
public:
    using Options = VxSyntheticPatientOptions;

    static std::unique_ptr<VxCase> Generate(uint32_t seed = 1, const Options& options = {});
};
