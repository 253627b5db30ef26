#pragma once
// The half of a model import that is ours, whatever the file's format: a
// scene as assimp hands it over (read and validated) into render objects.
#include <string>

#include "kxrender/KxModelImport.h"

struct aiScene;

namespace kximport {

// Takes the scene and deletes it. ext: the format as a lower-case file
// extension ("ifc" turns on the IFC product rules); errors name the source
// "<scene.ext>". Otherwise as KxImportModelFromMemory.
bool importAssimpScene(aiScene* scene, const std::string& ext, CObjectSetMgr& set, CString& error,
                       const KxImportOptions& options, KxImportResult* result);

}  // namespace kximport
