// VxAppCase: how the programs get a patient: a case directory read with VxCaseIO, or the
// synthetic patient when no directory is named. Errors come back as one line meant for a user.
// It does not install the case into the library's registries; VxAppScene does.
#pragma once

#include <memory>
#include <string>

class VxCase;

// Null with `error` set when the directory is missing, has no case.json, or does not read.
std::unique_ptr<VxCase> VxAppLoadCase(const std::string& caseDir, unsigned seed,
                                      std::string& error);
