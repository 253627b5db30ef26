#include "BenchTable.h"

#include <algorithm>

void BenchTable::Collector::ReportRuns(const std::vector<Run>& runs) {
  ConsoleReporter::ReportRuns(runs);
  for (const Run& run : runs) {
    if (run.error_occurred) continue;
    const bool single = run.repetitions <= 1 && run.run_type == Run::RT_Iteration;
    if (!single && run.aggregate_name != "median") continue;
    // Metric names may hold a '/' themselves ("1/10"): cut at the size.
    std::string metric = run.run_name.str();
    metric = metric.substr(0, metric.find("/" + m_size + "/"));
    m_table.setTime(m_size, metric, run.GetAdjustedRealTime());
  }
}

void BenchTable::setCounts(const std::string& size, size_t objects, size_t polygons, size_t holes, size_t triangles,
                           size_t vertices, size_t limitTriangles) {
  m_counts[size] = {objects, polygons, holes, triangles, vertices, limitTriangles};
  if (std::find(m_sizes.begin(), m_sizes.end(), size) == m_sizes.end()) m_sizes.push_back(size);
}

namespace {
// A row of megabytes per tower size; "-" where a size has no figure, and no
// row at all when no size has one.
void printMemoryRow(FILE* out, const char* label, const std::map<std::string, double>& mb,
                    const std::vector<std::string>& sizes) {
  if (mb.empty()) return;
  std::fprintf(out, "%-42s", label);
  for (const std::string& s : sizes) {
    auto it = mb.find(s);
    if (it == mb.end())
      std::fprintf(out, " | %11s %8s", "-", "");
    else
      std::fprintf(out, " | %11.1f %8s", it->second, "");
  }
  std::fprintf(out, "\n");
}
}  // namespace

void BenchTable::print(FILE* out) const {
  static const char* const frames[] = {kFirstFrame,       kSteadyFrame,      kSteadyFrameOff,   kRecompileFrame,
                                       kAccelerateFrame,  kZoomedFrame,      kZoomedModelFrame, kShadowFirstFrame,
                                       kShadowSteadyFrame};
  static const char* const rows[] = {kBuild,          kFirstFrame,       kSteadyFrame,    kSteadyFrameOff,
                                     kRecompileFrame, kAccelerateFrame,  kZoomedFrame,    kZoomedModelFrame,
                                     kPointPick,      kRectPick,         kPointPickFull,  kPointPickWorst,
                                     kSnapFull,       kSnapWorst,        kRectWindow,     kRectCrossing,
                                     kLimitArray,     kLimitList,        kShadowFirstFrame, kShadowSteadyFrame,
                                     kPoster};
  std::vector<std::string> sizes;
  for (const auto& kv : m_ms)
    if (std::find(m_sizes.begin(), m_sizes.end(), kv.first) == m_sizes.end()) sizes.push_back(kv.first);
  sizes.insert(sizes.begin(), m_sizes.begin(), m_sizes.end());

  std::fprintf(out, "\n%-42s", "tower");
  for (const std::string& s : sizes) std::fprintf(out, " | %11s %8s", ("tower-" + s + " ms").c_str(), "x limit");
  std::fprintf(out, "\n");
  for (const char* row : rows) {
    std::fprintf(out, "%-42s", row);
    for (const std::string& s : sizes) {
      const auto& ms = m_ms.at(s);
      auto it = ms.find(row);
      if (it == ms.end()) {
        std::fprintf(out, " | %11s %8s", "-", "");
        continue;
      }
      double limit = 0.0;
      for (const char* l : {kLimitArray, kLimitList}) {
        auto li = ms.find(l);
        if (li != ms.end() && (limit == 0.0 || li->second < limit)) limit = li->second;
      }
      const bool frame = std::find_if(std::begin(frames), std::end(frames),
                                      [row](const char* f) { return std::string(f) == row; }) != std::end(frames);
      if (frame && limit > 0.0)
        std::fprintf(out, " | %11.3f %7.2fx", it->second, it->second / limit);
      else
        std::fprintf(out, " | %11.3f %8s", it->second, "");
    }
    std::fprintf(out, "\n");
  }
  std::fprintf(out, "%-42s", "peak memory (MB)");
  for (const std::string& s : sizes) {
    auto it = m_memory.find(s);
    std::fprintf(out, " | %11.1f %8s", it == m_memory.end() ? 0.0 : it->second, "");
  }
  std::fprintf(out, "\n");
  printMemoryRow(out, "peak memory, default drawing (MB)", m_defaultMemory, sizes);
  printMemoryRow(out, "peak memory, engine alone (MB)", m_engineMemory, sizes);
  printMemoryRow(out, "peak memory, shadows on (MB)", m_shadowMemory, sizes);
  printMemoryRow(out, "poster peak memory (MB)", m_posterMemory, sizes);
  static const char* const countNames[] = {"objects", "polygons", "holes", "triangles", "vertices", "limit triangles"};
  for (int k = 0; k < 6; ++k) {
    std::fprintf(out, "%-42s", countNames[k]);
    for (const std::string& s : sizes) {
      auto it = m_counts.find(s);
      std::fprintf(out, " | %11zu %8s", it == m_counts.end() ? size_t(0) : it->second[k], "");
    }
    std::fprintf(out, "\n");
  }
}
