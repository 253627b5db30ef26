// Construction, copying, geometry setters, tags and polygon offsets of a
// render shape.
#include <atomic>
#include <cfloat>
#include <cmath>
#include <utility>

#include "kxrender/CRenderShape.h"
#include "kxrender/CRenderSysUtils.h"
#include "shapes/TextPlacement.h"

namespace {
// GL takes offsets as floats: values past float range saturate instead of
// overflowing the conversion, and NaN counts as no offset.
float toOffset(double v) {
  if (std::isnan(v)) return 0.0f;
  return static_cast<float>(std::fmax(-FLT_MAX, std::fmin(v, FLT_MAX)));
}
// A contour is stored closed: its first point repeated at the end, unless
// the last point already equals it.
void closeContour(std::vector<AcGePoint3d>& c) {
  if (!c.empty() && !c.back().isEqualTo(c.front())) c.push_back(c.front());
}
}  // namespace

static_assert(sizeof(void*) != 8 || sizeof(CRenderShape) == 256, "a shape is four cache lines; see m_spare");

CRenderShape::CRenderShape() = default;

CRenderShape::Rare& CRenderShape::rare() const {
  if (!m_rare) m_rare = std::make_unique<Rare>();
  return *m_rare;
}

const CRenderShape::Rare& CRenderShape::noRare() {
  static const Rare none;
  return none;
}

uint32_t CRenderShape::nextDrawStamp() {
  // Drawing happens on one thread per context, but shapes may be built on
  // others: keep the counter atomic.
  static std::atomic<uint32_t> counter{0};
  return ++counter;
}

CRenderShape::CRenderShape(const CRenderShape& other) {
  takeFields(other);
  m_textInfo = other.m_textInfo ? new TextInfo(*other.m_textInfo) : nullptr;
  copyFaceData(other);
  m_rare = other.m_rare ? std::make_unique<Rare>(*other.m_rare) : nullptr;
  m_faceDisplayList = 0;  // a list belongs to its first owner's context use
}

CRenderShape& CRenderShape::operator=(const CRenderShape& other) {
  if (this == &other) return *this;
  takeFields(other);
  delete m_textInfo;
  m_textInfo = other.m_textInfo ? new TextInfo(*other.m_textInfo) : nullptr;
  copyFaceData(other);
  m_rare = other.m_rare ? std::make_unique<Rare>(*other.m_rare) : nullptr;
  // m_faceDisplayList stays: the owner still has to release this shape's own
  // list, and forgetting the name here would leak it in the context.
  return *this;
}

CRenderShape::~CRenderShape() {
  delete m_textInfo;
  freeFaceData();
}

// Everything but the owned text, the face arrays (with their sharing flag),
// the rare fields and the display list, which have rules of their own.
template <class S>
void CRenderShape::takeFields(S&& o) {
  m_live = std::forward<S>(o).m_live;
  m_visible = std::forward<S>(o).m_visible;
  m_type = std::forward<S>(o).m_type;
  m_ucs = std::forward<S>(o).m_ucs;
  m_pts = std::forward<S>(o).m_pts;
  m_holes = std::forward<S>(o).m_holes;
  m_clr = std::forward<S>(o).m_clr;
  m_glPts = std::forward<S>(o).m_glPts;
  m_fillLifted = std::forward<S>(o).m_fillLifted;
  m_strips = std::forward<S>(o).m_strips;
  m_boxMin = std::forward<S>(o).m_boxMin;
  m_boxMax = std::forward<S>(o).m_boxMax;
  m_hit = std::forward<S>(o).m_hit;
  m_highLight = std::forward<S>(o).m_highLight;
  m_showBorder = std::forward<S>(o).m_showBorder;
  m_area = std::forward<S>(o).m_area;
  m_offsetFactor = std::forward<S>(o).m_offsetFactor;
  m_offsetUnits = std::forward<S>(o).m_offsetUnits;
  m_zOffset = std::forward<S>(o).m_zOffset;
  m_dotLine = std::forward<S>(o).m_dotLine;
  touchDrawStamp();
}

CRenderShape::CRenderShape(CRenderShape&& other) noexcept {
  takeFields(std::move(other));
  swapOwned(other);
}

CRenderShape& CRenderShape::operator=(CRenderShape&& other) noexcept {
  if (this == &other) return *this;
  takeFields(std::move(other));
  swapOwned(other);
  return *this;
}

void CRenderShape::swapOwned(CRenderShape& o) noexcept {
  std::swap(m_textInfo, o.m_textInfo);
  m_mesh.swap(o.m_mesh);
  std::swap(m_shareVertexData, o.m_shareVertexData);
  m_rare.swap(o.m_rare);
  std::swap(m_faceDisplayList, o.m_faceDisplayList);
}

void CRenderShape::Init() {
  m_live = true;
  m_visible = true;
  m_hit = false;
  m_highLight = false;
  // The sphere stays as it was: keep it apart once the box no longer gives it.
  AcGePoint3d centre;
  double radius = 0.0;
  getSphere(centre, radius);
  if (!m_rare || !m_rare->sphereKept) {
    const bool boxGivesIt = centre.x == 0.0 && centre.y == 0.0 && centre.z == 0.0 && radius == 0.0;
    if (!boxGivesIt) {
      Rare& r = rare();
      r.sphereKept = true;
      r.sphereCenter = centre;
      r.sphereRadius = static_cast<float>(radius);
    }
  }
  m_boxMin = AcGePoint3d::kOrigin;
  m_boxMax = AcGePoint3d::kOrigin;
  m_showBorder = false;
  if (m_rare) {
    m_rare->hasTexture = false;
    m_rare->borderClr = CColor::whiteClr;
    m_rare->borderWidth = kBorderWidth;
    m_rare->borderWidthScaled = false;
    m_rare->borderMaxWidth = kBorderMaxWidth;
  }
  m_area = 0.0f;
  m_offsetFactor = 0.0f;
  m_offsetUnits = 1.0f;
}

void CRenderShape::set(const std::vector<AcGePoint3d>& pts, const std::vector<std::vector<AcGePoint3d>>& holes,
                       ShapeType type, const CColor& clr, const AcGeVector3d& ucs, double offsetFactorScale,
                       double offsetUnitsScale, double zOffset) {
  touchDrawStamp();
  // The caller may pass this shape's own lists back in.
  std::vector<std::vector<AcGePoint3d>> own;
  const std::vector<std::vector<AcGePoint3d>>* source = &holes;
  if (&holes == &m_holes) {
    own.swap(m_holes);
    source = &own;
  }
  const size_t givenCount = pts.size();

  // Room for the closing point a polygon's contours may gain: appending it
  // would otherwise reallocate every contour to twice its size.
  const size_t closing = type == kPgon ? 1 : 0;
  if (&pts != &m_pts) {
    m_pts.clear();
    m_pts.reserve(pts.size() + closing);
    m_pts.insert(m_pts.end(), pts.begin(), pts.end());
  }
  m_holes.clear();
  size_t holeCount = 0;
  for (const auto& h : *source) holeCount += h.empty() ? 0 : 1;
  m_holes.reserve(holeCount);
  for (const auto& h : *source) {
    if (h.empty()) continue;
    m_holes.emplace_back();
    m_holes.back().reserve(h.size() + closing);
    m_holes.back().insert(m_holes.back().end(), h.begin(), h.end());
  }
  m_type = type;
  m_clr.set(clr.r, clr.g, clr.b, clr.a);
  m_ucs = ucs.normal();

  if (type == kPgon) {
    // Outer contour counter-clockwise and holes clockwise about the normal,
    // as drawing and hit testing expect.
    if (m_pts.size() > 2) CRenderSysUtils::cvtClock(m_pts, m_ucs, false);
    for (auto& h : m_holes)
      if (h.size() > 2) CRenderSysUtils::cvtClock(h, m_ucs, true);
    if (givenCount >= 3) {
      closeContour(m_pts);
      for (auto& h : m_holes) closeContour(h);
    }
  }

  divTringle();
  calArea();
  calBox();

  const float f = offsetBase(m_area);
  m_offsetUnits = toOffset(f * offsetUnitsScale);
  m_offsetFactor = toOffset(f * offsetFactorScale);
  m_zOffset = toOffset(zOffset);
}

void CRenderShape::set(TextInfo* info, const CColor& clr, const AcGeVector3d& ucs, double, double, double) {
  touchDrawStamp();
  if (!info) return;
  if (info != m_textInfo) {
    delete m_textInfo;
    m_textInfo = info;
  }
  m_pts.clear();
  m_holes.clear();
  m_glPts.clear();
  m_fillLifted = false;
  m_strips.clear();
  if (m_rare) m_rare->texCoords.clear();
  m_type = kText;
  m_clr.set(clr.r, clr.g, clr.b, clr.a);
  m_ucs = ucs.normal();
  calArea();
  placeText(*info);
  takeGlyphs(*info);
  calBox();
}

void CRenderShape::setFaceType(bool noDepth) {
  touchDrawStamp();
  m_type = kFace;
  if (noDepth) setXdata("nodepth", "0.1");
}

bool CRenderShape::setXdata(const CString& key, const CString& value) {
  rare().xdata[key] = value;
  return true;
}

bool CRenderShape::getXdata(const CString& key, CString& value) const {
  const std::map<CString, CString>& xdata = rareOrNone().xdata;
  auto it = xdata.find(key);
  if (it == xdata.end()) return false;
  value = it->second;
  return true;
}

bool CRenderShape::is(const CString& key, const CString& value) const {
  const std::map<CString, CString>& xdata = rareOrNone().xdata;
  auto it = xdata.find(key);
  return it != xdata.end() && it->second.CompareNoCase(value) == 0;
}

bool CRenderShape::clearXdata(CString key) { return m_rare && m_rare->xdata.erase(key) > 0; }

// Polygon offset grows with the face: linearly up to an area of 10000, then
// only by the sixteenth root, taken as four float square roots in a row.
float CRenderShape::offsetBase(float area) {
  float f = area / 10000.0f;
  if (f > 1.0f)
    for (int i = 0; i < 4; ++i) f = std::sqrt(f);
  return f;
}

void CRenderShape::setOffsetScale(double s) { m_offsetFactor = toOffset(offsetBase(m_area) * s); }

// For a polygon the drawn vertices move along (1, 1, 1), not along z: every
// coordinate of the triangulated vertices is lifted. Hosts rely on exactly
// this displacement, so it stays; contours and box are not touched.
void CRenderShape::setZOffset(float z) {
  switch (m_type) {
    case kFace:
      m_zOffset = z;
      break;
    case kPline:
      for (AcGePoint3d& p : m_pts) p.z += z;
      break;
    case kPgon:
      for (double& d : m_glPts) d += z;
      if (z != 0.0f) m_fillLifted = true;
      break;
    default:
      break;
  }
}
