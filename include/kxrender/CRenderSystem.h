#pragma once
// Process-wide drawing helpers: the checkerboard polygon stipple used for
// highlighting, and a few immediate-mode drawing operations.
#include <vector>

#include "kxrender/AcGePoint3d.h"
#include "kxrender/CColor.h"
#include "kxrender/Export.h"

/// Process-wide drawing helpers (a singleton): the checkerboard stipple used
/// for highlighting and a few immediate-mode drawing calls into the current
/// context.
class KXRENDER_API CRenderSystem {
 public:
  /// The primitive CStaticObject::begin opens; note 2 is the strip and 3 the
  /// loop.
  enum ShapeType : int32_t {
    kPoints = 0,
    kLines = 1,
    kLineStrip = 2,
    kLineLoop = 3,
    kTriangles = 4,
    kTriangleStrip = 5,
    kTriangleFan = 6
  };

  ///@{
  /// Creates, destroys and returns the process's instance (null when none).
  static void createSingleton();
  static void destroySingleton();
  static CRenderSystem* getSingleton() { return m_singleton; }
  ///@}

  /// 32 x 32 one-bit checkerboard for glPolygonStipple.
  static const unsigned char* getStipple() { return m_stipple; }

  void drawPt(const AcGePoint3d& p);  ///< One vertex at p; the caller brackets with glBegin/glEnd.
  /// One vertex per point; the caller brackets with glBegin/glEnd.
  void drawPLine(const std::vector<AcGePoint3d>& pts);
  void drawTriangleStrip(const std::vector<AcGePoint3d>& pts);  ///< A whole triangle strip through pts.
  /// A whole line strip in the given width and colour.
  void drawPLine(const std::vector<AcGePoint3d>& pts, double width, CColor& clr);

  static CRenderSystem* m_singleton;  ///< The instance, or null.
  static const unsigned char* m_stipple;  ///< The 32 x 32 stipple pattern (128 bytes).

 private:
  CRenderSystem() = default;
};
