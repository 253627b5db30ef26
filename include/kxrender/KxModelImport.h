#pragma once
// Model files into render objects: OBJ (with its MTL), glTF 2 (text, binary,
// embedded), STL (text and binary), PLY, 3DS, DXF 3D faces and IFC building
// models. Every mesh node becomes one render object whose shapes are face
// meshes (one per material), with normals from the file or computed with
// creases kept, and hit lines along the mesh's boundary and feature edges so
// that wire frames, outlines and picking work. Node names and metadata become
// shape tags (xdata); an IFC product is one object tagged "IfcClass",
// "GlobalId", "Name" and "Storey".
//
// Failures name the file and the problem, and leave the object set (and the
// texture manager) as it was: objects reach the set only when the whole
// file has been read. A texture that cannot be had is no failure: its faces
// are drawn in the material's colour and the result carries a warning.
//
// Memory: assimp's copy of a mesh is freed as soon as the objects using it
// are built, so that a large file never holds two copies of its geometry
// beside the engine's own.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "kxrender/CObjectSetMgr.h"
#include "kxrender/CString.h"
#include "kxrender/CTextureMgr.h"
#include "kxrender/Export.h"

/// How KxImportModel() and KxImportModelFromMemory() build objects.
struct KxImportOptions {
  /// Two triangles meeting at a sharper angle (degrees, between their
  /// normals) keep separate normals at their common edge. Used only for a
  /// shape some of whose meshes come without normals in the file.
  double creaseAngle = 30.0;
  /// Edges between triangles at a sharper angle (degrees) become hit lines,
  /// as do boundary edges and edges of more than two triangles.
  double featureAngle = 30.0;
  /// Formats whose convention is y up (glTF, and IFC as read) are turned so
  /// that z is up, as the engine's views expect.
  bool zUp = true;
  /// Every hit line segment also becomes a snap curve of its object, so
  /// that end points, mid points and edges can be snapped to.
  bool snapCurves = true;
  /// Called with the fraction done (0 to 1) and the phase ("reading",
  /// "building"); returning false cancels the import. May be empty.
  std::function<bool(double fraction, const char* phase)> progress;
  /// The scene's texture manager, its GL context current during the call.
  /// When set, the materials' diffuse textures (files beside the model, or
  /// pictures embedded in it) are registered there and the face meshes get
  /// texture coordinates and the texture. Null: no textures.
  CTextureMgr* textures = nullptr;
};

/// What an import added; filled only when it succeeds.
struct KxImportResult {
  std::vector<unsigned> ids;  ///< Ids of the objects added, in file order.
  size_t triangles = 0;       ///< Triangles in all the added face meshes.
  size_t hitLines = 0;        ///< Hit line polylines in all the added shapes.
  /// Texture manager names of the textures the added shapes use, so that
  /// a host can delete them with the model.
  std::vector<CString> textures;
  /// Problems that did not stop the import, each "<path>: <problem>"
  /// (a texture file not found, a picture that cannot be read).
  std::vector<CString> warnings;
};

/// Reads the file and adds its objects to the set (then refreshes the set's
/// box); the set owns them. The format is chosen by the file extension
/// (any letter case). False, with error set to "<path>: <problem>" and the
/// set and result unchanged, on any failure or cancel; error is untouched
/// on success.
KXRENDER_API bool KxImportModel(const char* path, CObjectSetMgr& set, CString& error,
                                const KxImportOptions& options = KxImportOptions(), KxImportResult* result = nullptr);
/// The same from memory (data is only read during the call); formatHint is
/// the file extension without its dot ("obj", "stl", "glb"..., any letter
/// case). Files the data names (an MTL, a glTF buffer) are not found, and
/// error names the source "<memory.ext>".
KXRENDER_API bool KxImportModelFromMemory(const void* data, size_t size, const char* formatHint, CObjectSetMgr& set,
                                          CString& error, const KxImportOptions& options = KxImportOptions(),
                                          KxImportResult* result = nullptr);
