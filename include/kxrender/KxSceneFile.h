#pragma once
// Scene files: a scene's render objects, static objects and view saved as a
// versioned JSON document ("format": "kxscene", "version": 1; the layout is
// described in docs/scene-format.md) and read back.
//
// Reading checks the whole file first; only when everything in it is valid
// are the scene's objects and static objects replaced and its view set, so a
// failed read leaves the scene exactly as it was. Errors name the file, the
// place in the document (object, shape, field) and what was expected.
//
// Writing the same scene twice gives the same bytes, and a file written,
// read and written again is byte for byte the same.
#include <vector>

#include "kxrender/AcGePoint2d.h"
#include "kxrender/AcGePoint3d.h"
#include "kxrender/AcGeVector3d.h"
#include "kxrender/CColor.h"
#include "kxrender/CRenderSystem.h"
#include "kxrender/CString.h"
#include "kxrender/Export.h"

class CSceneMgr;
class CStaticObject;

/// One begin/end run of a static object: the primitive and its points, with
/// the normal, colour and texture coordinate sent before each point. Each of
/// the three lists is empty (not sent), holds one entry (sent once before the
/// first point) or one entry per point.
struct KXRENDER_API KxStaticPrimitive {
  ///@{
  /// The primitive and its points (world units).
  CRenderSystem::ShapeType type = CRenderSystem::kTriangles;
  std::vector<AcGePoint3d> points;
  ///@}
  std::vector<AcGeVector3d> normals;  ///< Normals: none, one, or one per point.
  std::vector<CColor> colors;  ///< red, green, blue; alpha is not sent
  std::vector<AcGePoint2d> texCoords;  ///< Texture coordinates: none, one, or one per point.
};

/// What a static object was built from. A static object's display list cannot
/// be read back, so whoever builds one keeps this record to write it later.
struct KXRENDER_API KxStaticRecord {
  unsigned id = 0;  ///< the static object's id in its set, once built
  bool visible = true;  ///< Whether the static object is shown.
  std::vector<KxStaticPrimitive> primitives;  ///< The begin/end runs, in order.
};

/// Compiles the record into a new static object (a GL context must be
/// current) and stores its id in the record. The caller owns the result and
/// normally hands it to CObjectSetMgr::addStaticObject.
KXRENDER_API CStaticObject* KxBuildStaticObject(KxStaticRecord& record);

/// What a scene file holds beside the render objects.
struct KXRENDER_API KxSceneFileExtras {
  /// Read: the static objects of the file, with their ids in the scene.
  /// Write: the static objects to save; those whose id is no longer in the
  /// scene's set are left out, and visibility is taken from the set.
  std::vector<KxStaticRecord> staticObjects;
  /// Read: whether the file set the view (a file without one leaves it).
  bool hasView = false;
};

/// Replaces the scene's objects and static objects with the file's and sets
/// its view. Static objects need the scene bound to a window (its context is
/// made current to compile them). False with a message in error, the scene
/// unchanged, when the file cannot be read or is not a valid scene file.
KXRENDER_API bool KxReadSceneFile(const char* path, CSceneMgr& scene, CString& error,
                                  KxSceneFileExtras* extras = nullptr);

/// Saves the scene's render objects (in id order), the given static objects
/// and the view. The file is written beside the target and moved into place
/// only when complete, so a failed write leaves any previous file intact.
KXRENDER_API bool KxWriteSceneFile(const char* path, CSceneMgr& scene, CString& error,
                                   const KxSceneFileExtras* extras = nullptr);
