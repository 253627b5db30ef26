// Welding, crease normals and feature-edge chains of imported meshes.
#include "import/MeshEdges.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <numeric>
#include <tuple>
#include <utility>

namespace kximport {

namespace {

constexpr double kPi = 3.14159265358979323846;

// Unnormalised normal (twice the area) of triangle t.
AcGeVector3d areaNormal(const std::vector<AcGePoint3d>& pts, const std::vector<int>& tris, size_t t) {
  const AcGePoint3d& a = pts[tris[3 * t]];
  return (pts[tris[3 * t + 1]] - a).crossProduct(pts[tris[3 * t + 2]] - a);
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
  auto bits = [](double d) {
    d += 0.0;
    uint64_t u;
    std::memcpy(&u, &d, sizeof u);
    return u;
  };
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
  std::vector<std::vector<size_t>> around(pts.size());  // corners 3t + c
  for (size_t t = 0; t < nt; ++t) {
    face[t] = unit(areaNormal(pts, tris, t));
    for (int c = 0; c < 3; ++c) {
      const AcGePoint3d& p = pts[tris[3 * t + c]];
      const AcGeVector3d a = unit(pts[tris[3 * t + (c + 1) % 3]] - p), b = unit(pts[tris[3 * t + (c + 2) % 3]] - p);
      angle[3 * t + c] = std::acos(std::clamp(a.dotProduct(b), -1.0, 1.0));
      around[weld[tris[3 * t + c]]].push_back(3 * t + c);
    }
  }
  const double cosCrease = std::cos(creaseAngle * kPi / 180.0);
  std::vector<AcGePoint3d> outPts;
  std::vector<AcGeVector3d> outNormals;
  std::vector<AcGePoint2d> outUv;
  std::vector<int> outTris(tris.size());
  std::map<std::tuple<int, double, double, double, double, double>, int> shared;
  for (size_t t = 0; t < nt; ++t) {
    for (int c = 0; c < 3; ++c) {
      const int v = weld[tris[3 * t + c]];
      AcGeVector3d sum(0.0, 0.0, 0.0);
      for (size_t corner : around[v])
        if (face[t].dotProduct(face[corner / 3]) >= cosCrease) sum += face[corner / 3] * angle[corner];
      const AcGeVector3d n = unit(sum.length() > 0.0 ? sum : face[t]);
      const AcGePoint2d t2 = uv ? (*uv)[tris[3 * t + c]] : AcGePoint2d(0.0, 0.0);
      const auto key = std::make_tuple(v, n.x, n.y, n.z, t2.x, t2.y);
      auto it = shared.find(key);
      if (it == shared.end()) {
        it = shared.emplace(key, int(outPts.size())).first;
        outPts.push_back(pts[v]);
        outNormals.push_back(n);
        if (uv) outUv.push_back(t2);
      }
      outTris[3 * t + c] = it->second;
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
  struct EdgeUse {
    int count = 0;
    AcGeVector3d n0, n1;
  };
  std::map<std::pair<int, int>, EdgeUse> edges;
  for (size_t t = 0; t < tris.size() / 3; ++t) {
    const AcGeVector3d n = unit(areaNormal(pts, tris, t));
    if (n.length() == 0.0) continue;
    for (int c = 0; c < 3; ++c) {
      int a = weld[tris[3 * t + c]], b = weld[tris[3 * t + (c + 1) % 3]];
      if (a == b) continue;
      EdgeUse& e = edges[std::minmax(a, b)];
      (e.count == 0 ? e.n0 : e.n1) = n;
      ++e.count;
    }
  }
  const double cosFeature = std::cos(featureAngle * kPi / 180.0);
  std::vector<std::pair<int, int>> kept;
  for (const auto& [ab, e] : edges)
    if (e.count != 2 || e.n0.dotProduct(e.n1) < cosFeature) kept.push_back(ab);

  // Chains: open ones start at ends and junctions, the rest are loops.
  std::map<int, std::vector<size_t>> at;
  for (size_t i = 0; i < kept.size(); ++i) {
    at[kept[i].first].push_back(i);
    at[kept[i].second].push_back(i);
  }
  std::vector<bool> used(kept.size(), false);
  std::vector<std::vector<AcGePoint3d>> lines;
  auto walk = [&](int v, size_t edge) {
    std::vector<AcGePoint3d> line{pts[v]};
    while (true) {
      used[edge] = true;
      v = kept[edge].first == v ? kept[edge].second : kept[edge].first;
      line.push_back(pts[v]);
      const std::vector<size_t>& next = at[v];
      if (next.size() != 2) break;
      edge = used[next[0]] ? next[1] : next[0];
      if (used[edge]) break;
    }
    lines.push_back(std::move(line));
  };
  for (const auto& [v, list] : at)
    if (list.size() != 2)
      for (size_t e : list)
        if (!used[e]) walk(v, e);
  for (size_t e = 0; e < kept.size(); ++e)
    if (!used[e]) walk(kept[e].first, e);
  return lines;
}

}  // namespace kximport
