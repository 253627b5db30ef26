// Welding, crease normals and feature-edge chains of imported meshes.
#include "import/MeshEdges.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <tuple>
#include <utility>

namespace kximport {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr size_t kMaxSmoothFacings = 1024;

// Unnormalised normal (twice the area) of triangle t.
AcGeVector3d areaNormal(const std::vector<AcGePoint3d>& pts, const std::vector<int>& tris, size_t t) {
  const AcGePoint3d& a = pts[tris[3 * t]];
  return (pts[tris[3 * t + 1]] - a).crossProduct(pts[tris[3 * t + 2]] - a);
}

// A double's bit pattern, -0.0 taken as 0.0, and back.
uint64_t bits(double d) {
  d += 0.0;
  uint64_t u;
  std::memcpy(&u, &d, sizeof u);
  return u;
}
double value(uint64_t u) {
  double d;
  std::memcpy(&d, &u, sizeof d);
  return d;
}

AcGeVector3d unit(const AcGeVector3d& v) {
  const double l = v.length();
  return l > 0.0 ? v / l : AcGeVector3d(0.0, 0.0, 0.0);
}

}  // namespace

std::vector<int> weldByPosition(const std::vector<AcGePoint3d>& pts) {
  std::vector<int> order(pts.size());
  std::iota(order.begin(), order.end(), 0);
  // Bit patterns order every value, NaN included; adding 0.0 makes -0.0
  // the same position as 0.0.
  auto key = [&](int i) { return std::make_tuple(bits(pts[i].x), bits(pts[i].y), bits(pts[i].z)); };
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return key(a) < key(b); });
  std::vector<int> first(pts.size());
  for (size_t k = 0; k < order.size(); ++k)
    first[order[k]] = (k > 0 && key(order[k]) == key(order[k - 1])) ? first[order[k - 1]] : order[k];
  return first;
}

void creaseNormals(std::vector<AcGePoint3d>& pts, std::vector<int>& tris, std::vector<AcGeVector3d>& normals,
                   double creaseAngle, std::vector<AcGePoint2d>* uv) {
  const size_t nt = tris.size() / 3;
  const std::vector<int> weld = weldByPosition(pts);
  // Each triangle weighs in by its angle at the corner: a face split into
  // more triangles pulls no harder than before.
  std::vector<AcGeVector3d> face(nt);
  std::vector<double> angle(tris.size());
  for (size_t t = 0; t < nt; ++t) {
    face[t] = unit(areaNormal(pts, tris, t));
    for (int c = 0; c < 3; ++c) {
      const AcGePoint3d& p = pts[tris[3 * t + c]];
      const AcGeVector3d a = unit(pts[tris[3 * t + (c + 1) % 3]] - p), b = unit(pts[tris[3 * t + (c + 2) % 3]] - p);
      angle[3 * t + c] = std::acos(std::clamp(a.dotProduct(b), -1.0, 1.0));
    }
  }
  // The corners (3t + c) at each welded position, in flat arrays: large
  // meshes would spend more on a list per position than on the mesh.
  std::vector<size_t> first(pts.size() + 1, 0);
  for (int i : tris) ++first[size_t(weld[i]) + 1];
  for (size_t v = 0; v < pts.size(); ++v) first[v + 1] += first[v];
  std::vector<size_t> around(tris.size());
  {
    std::vector<size_t> next(first.begin(), first.end() - 1);
    for (size_t k = 0; k < tris.size(); ++k) around[next[size_t(weld[tris[k]])]++] = k;
  }
  const double cosCrease = std::cos(creaseAngle * kPi / 180.0);
  std::vector<AcGePoint3d> outPts;
  std::vector<AcGeVector3d> outNormals;
  std::vector<AcGePoint2d> outUv;
  std::vector<int> outTris(tris.size());
  // Per position: the distinct face normals around it, each with the sum
  // of its corners' angles. Averaging compares every two of them; a fan of
  // many equal faces (a flat disc's centre) costs one comparison, and past
  // a thousand distinct faces at one point (a hostile file) corners keep
  // their face's normal, so the time stays bounded.
  struct Facing {
    AcGeVector3d n;
    double weight;
    AcGeVector3d smooth;
  };
  std::vector<Facing> facings;
  std::vector<size_t> facingOf(tris.size());
  // Corners keyed by normal and texture coordinates (bit patterns, which
  // order NaN too); corners with equal keys share one vertex.
  using Key = std::tuple<uint64_t, uint64_t, uint64_t, uint64_t, uint64_t>;
  std::vector<std::pair<Key, size_t>> keyed;
  for (size_t v = 0; v < pts.size(); ++v) {
    keyed.clear();
    for (size_t i = first[v]; i < first[v + 1]; ++i) {
      const size_t k = around[i];
      const AcGeVector3d& n = face[k / 3];
      keyed.emplace_back(Key(bits(n.x), bits(n.y), bits(n.z), 0, 0), k);
    }
    std::sort(keyed.begin(), keyed.end());
    facings.clear();
    for (size_t i = 0; i < keyed.size(); ++i) {
      const size_t k = keyed[i].second;
      if (i == 0 || keyed[i].first != keyed[i - 1].first) facings.push_back(Facing{face[k / 3], 0.0, {}});
      facings.back().weight += angle[k];
      facingOf[k] = facings.size() - 1;
    }
    const bool flat = facings.size() > kMaxSmoothFacings;
    for (Facing& f : facings) {
      AcGeVector3d sum(0.0, 0.0, 0.0);
      for (size_t h = 0; h < facings.size() && !flat; ++h)
        if (f.n.dotProduct(facings[h].n) >= cosCrease) sum += facings[h].n * facings[h].weight;
      f.smooth = unit(sum.length() > 0.0 ? sum : f.n);
    }
    for (auto& [key, k] : keyed) {
      const AcGeVector3d& n = facings[facingOf[k]].smooth;
      const AcGePoint2d t2 = uv ? (*uv)[size_t(tris[k])] : AcGePoint2d(0.0, 0.0);
      key = Key(bits(n.x), bits(n.y), bits(n.z), bits(t2.x), bits(t2.y));
    }
    std::sort(keyed.begin(), keyed.end());
    for (size_t i = 0; i < keyed.size(); ++i) {
      if (i == 0 || keyed[i].first != keyed[i - 1].first) {
        const auto& [x, y, z, u, w] = keyed[i].first;
        outPts.push_back(pts[v]);
        outNormals.emplace_back(value(x), value(y), value(z));
        if (uv) outUv.emplace_back(value(u), value(w));
      }
      outTris[keyed[i].second] = int(outPts.size()) - 1;
    }
  }
  pts.swap(outPts);
  tris.swap(outTris);
  normals.swap(outNormals);
  if (uv) uv->swap(outUv);
}

std::vector<std::vector<AcGePoint3d>> featureLines(const std::vector<AcGePoint3d>& pts, const std::vector<int>& tris,
                                                   double featureAngle) {
  const std::vector<int> weld = weldByPosition(pts);
  // Each triangle's edges as (lower, higher welded end, triangle), sorted
  // so that the uses of an edge lie together: flat arrays, as large meshes
  // would spend more on a tree of edges than on the mesh.
  struct Use {
    int a, b, t;
    bool operator<(const Use& o) const { return std::tie(a, b, t) < std::tie(o.a, o.b, o.t); }
  };
  std::vector<Use> uses;
  uses.reserve(tris.size());
  for (size_t t = 0; t < tris.size() / 3; ++t) {
    if (unit(areaNormal(pts, tris, t)).length() == 0.0) continue;
    for (int c = 0; c < 3; ++c) {
      const int a = weld[tris[3 * t + c]], b = weld[tris[3 * t + (c + 1) % 3]];
      if (a != b) uses.push_back(Use{std::min(a, b), std::max(a, b), int(t)});
    }
  }
  std::sort(uses.begin(), uses.end());
  const double cosFeature = std::cos(featureAngle * kPi / 180.0);
  std::vector<std::pair<int, int>> kept;
  for (size_t i = 0, j = 0; i < uses.size(); i = j) {
    while (j < uses.size() && uses[j].a == uses[i].a && uses[j].b == uses[i].b) ++j;
    if (j - i != 2 ||
        unit(areaNormal(pts, tris, size_t(uses[i].t))).dotProduct(unit(areaNormal(pts, tris, size_t(uses[i + 1].t)))) <
            cosFeature)
      kept.emplace_back(uses[i].a, uses[i].b);
  }
  std::vector<Use>().swap(uses);

  // Chains: open ones start at ends and junctions, the rest are loops.
  // ends: (vertex, kept edge) sorted, so a vertex's edges lie together.
  std::vector<std::pair<int, size_t>> ends;
  ends.reserve(2 * kept.size());
  for (size_t i = 0; i < kept.size(); ++i) ends.emplace_back(kept[i].first, i), ends.emplace_back(kept[i].second, i);
  std::sort(ends.begin(), ends.end());
  auto edgesAt = [&](int v) {
    const auto lo = std::lower_bound(ends.begin(), ends.end(), std::make_pair(v, size_t(0)));
    auto hi = lo;
    while (hi != ends.end() && hi->first == v) ++hi;
    return std::make_pair(lo, hi);
  };
  std::vector<bool> used(kept.size(), false);
  std::vector<std::vector<AcGePoint3d>> lines;
  auto walk = [&](int v, size_t edge) {
    std::vector<AcGePoint3d> line{pts[v]};
    while (true) {
      used[edge] = true;
      v = kept[edge].first == v ? kept[edge].second : kept[edge].first;
      line.push_back(pts[v]);
      const auto [lo, hi] = edgesAt(v);
      if (hi - lo != 2) break;
      edge = used[lo->second] ? (lo + 1)->second : lo->second;
      if (used[edge]) break;
    }
    lines.push_back(std::move(line));
  };
  for (size_t i = 0, j = 0; i < ends.size(); i = j) {
    while (j < ends.size() && ends[j].first == ends[i].first) ++j;
    if (j - i != 2)
      for (size_t k = i; k < j; ++k)
        if (!used[ends[k].second]) walk(ends[k].first, ends[k].second);
  }
  for (size_t e = 0; e < kept.size(); ++e)
    if (!used[e]) walk(kept[e].first, e);
  return lines;
}

}  // namespace kximport
