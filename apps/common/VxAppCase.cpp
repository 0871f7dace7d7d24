// VxAppCase: reading a case or making the synthetic one, with messages that say which file and
// what to do. The case reader's own message already names the file and field; only the
// directory-level failures are worded here.
#include "VxAppCase.h"

#include <VxCase.h>
#include <VxCaseIO.h>
#include <VxSyntheticPatient.h>

#include <filesystem>

std::unique_ptr<VxCase> VxAppLoadCase(const std::string& caseDir, unsigned seed,
                                      std::string& error) {
    if (caseDir.empty()) {
        std::unique_ptr<VxCase> c = VxSyntheticPatient::Generate(seed);
        if (!c) {
            error = "the synthetic patient could not be made (seed " + std::to_string(seed) + ")";
        }
        return c;
    }
    std::error_code ec;
    if (!std::filesystem::exists(caseDir, ec)) {
        error = "case directory '" + caseDir + "' does not exist";
        return nullptr;
    }
    if (!std::filesystem::is_directory(caseDir, ec)) {
        error = "'" + caseDir + "' is not a directory (give the folder that holds " +
                VxCaseIO::kManifestName + ")";
        return nullptr;
    }
    if (!std::filesystem::exists(std::filesystem::path(caseDir) / VxCaseIO::kManifestName, ec)) {
        error = "'" + caseDir + "' holds no " + VxCaseIO::kManifestName + ", so it is not a case";
        return nullptr;
    }
    auto c = std::make_unique<VxCase>();
    std::string readError;
    if (!VxCaseIO::Read(caseDir, *c, readError)) {
        error = "cannot read case '" + caseDir + "': " + readError;
        return nullptr;
    }
    return c;
}
