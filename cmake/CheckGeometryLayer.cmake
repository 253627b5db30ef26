cmake_minimum_required(VERSION 3.20)
# The geometry library is the bottom of the engine: nothing in geometry/ may
# include, directly or through an exported header, a header of the layers
# built on it (scene, object store, shapes, scene files, models).
# Run as: cmake -DROOT=<source dir> -P CheckGeometryLayer.cmake
set(above_dirs scene objects shapes io models)
# Exported headers whose classes those layers implement.
set(above_headers CSceneMgr.h CCamera.h CObjectSetMgr.h CRenderObject.h CStaticObject.h CRenderSystem.h
    CSimpleMatrix.h CGripPoint.h GripPoint.h CRenderShape.h KxSceneFile.h KxTowerModel.h)

file(GLOB sources ${ROOT}/geometry/*.cpp ${ROOT}/geometry/*.h)
if(NOT sources)
  message(FATAL_ERROR "no geometry sources under ${ROOT}/geometry")
endif()

set(bad)
set(seen)
set(queue ${sources})
while(queue)
  list(POP_FRONT queue file)
  file(STRINGS ${file} includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
  foreach(line ${includes})
    string(REGEX REPLACE "^[^\"]*\"([^\"]+)\".*$" "\\1" inc "${line}")
    string(REGEX MATCH "^([^/]+)/" top "${inc}")
    set(top "${CMAKE_MATCH_1}")
    get_filename_component(name "${inc}" NAME)
    if(top IN_LIST above_dirs OR (top STREQUAL "kxrender" AND name IN_LIST above_headers))
      file(RELATIVE_PATH rel ${ROOT} ${file})
      list(APPEND bad "${rel} includes ${inc}")
    elseif(top STREQUAL "kxrender" AND NOT inc IN_LIST seen)
      # Follow exported headers: one of them may pull a higher layer in.
      list(APPEND seen "${inc}")
      if(EXISTS ${ROOT}/include/${inc})
        list(APPEND queue ${ROOT}/include/${inc})
      endif()
    endif()
  endforeach()
endwhile()

if(bad)
  list(JOIN bad "\n  " text)
  message(FATAL_ERROR "geometry/ depends on a layer above it:\n  ${text}")
endif()
list(LENGTH sources n)
message(STATUS "geometry/: ${n} files include nothing from the layers above")
