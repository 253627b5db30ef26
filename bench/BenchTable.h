#pragma once
// Collects the medians Google Benchmark reports and prints one table with
// every frame figure also as a ratio to the frame limit.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

class BenchTable {
 public:
  static constexpr const char* kBuild = "model build";
  static constexpr const char* kFirstFrame = "first frame";
  static constexpr const char* kSteadyFrame = "steady frame";
  static constexpr const char* kSteadyFrameOff = "steady frame, retained path off";
  static constexpr const char* kRecompileFrame = "frame recompiling every object list";
  static constexpr const char* kAccelerateFrame = "steady frame, accelerate on";
  static constexpr const char* kZoomedFrame = "zoomed-in frame (1/10 of the view)";
  static constexpr const char* kZoomedModelFrame = "zoomed-in frame (1/10 of the model)";
  static constexpr const char* kPointPick = "point pick candidates (200 pixels)";
  static constexpr const char* kRectPick = "rectangle pick candidates (1/10 screen)";
  static constexpr const char* kPointPickFull = "point pick (200 pixels), median";
  static constexpr const char* kPointPickWorst = "point pick (200 pixels), worst (CPU)";
  static constexpr const char* kSnapFull = "snap, every kind (200 pixels), median";
  static constexpr const char* kSnapWorst = "snap, every kind (200 pixels), worst (CPU)";
  static constexpr const char* kRectWindow = "rectangle selection, window (1/10)";
  static constexpr const char* kRectCrossing = "rectangle selection, crossing (1/10)";
  static constexpr const char* kLimitArray = "limit: one vertex array";
  static constexpr const char* kLimitList = "limit: one display list";
  static constexpr const char* kShadowFirstFrame = "first frame, shadows on (volumes built)";
  static constexpr const char* kShadowSteadyFrame = "steady frame, shadows on";
  static constexpr const char* kPoster = "poster 20000 x 14000 PNG, tiled";

  // Takes each benchmark's median (or its single run) into the table.
  class Collector : public benchmark::ConsoleReporter {
   public:
    Collector(BenchTable& table, std::string size) : m_table(table), m_size(std::move(size)) {}
    void ReportRuns(const std::vector<Run>& runs) override;

   private:
    BenchTable& m_table;
    std::string m_size;
  };

  void setTime(const std::string& size, const std::string& metric, double ms) { m_ms[size][metric] = ms; }
  void setCounts(const std::string& size, size_t objects, size_t polygons, size_t holes, size_t triangles,
                 size_t vertices, size_t limitTriangles);
  void setPeakMemory(const std::string& size, double mb) { m_memory[size] = mb; }
  // Peak resident memory of the engine's work alone, the limit's arrays and
  // list never in the process meanwhile.
  void setEngineMemory(const std::string& size, double mb) { m_engineMemory[size] = mb; }
  // The same after the build, the first and the steady frames only: what a
  // host drawing the default way holds, before the rows that draw the other
  // ways (per shape, a display list per object) add their driver memory.
  void setDefaultMemory(const std::string& size, double mb) { m_defaultMemory[size] = mb; }
  // Peak resident memory of the rows with shadows (every object casting),
  // run last, once the limit has gone.
  void setShadowMemory(const std::string& size, double mb) { m_shadowMemory[size] = mb; }
  // Peak resident memory while the poster was rendered and written.
  void setPosterMemory(const std::string& size, double mb) { m_posterMemory[size] = mb; }
  void print(FILE* out) const;

 private:
  std::vector<std::string> m_sizes;
  std::map<std::string, std::map<std::string, double>> m_ms;
  std::map<std::string, std::vector<size_t>> m_counts;
  std::map<std::string, double> m_memory;
  std::map<std::string, double> m_engineMemory;
  std::map<std::string, double> m_defaultMemory;
  std::map<std::string, double> m_posterMemory;
  std::map<std::string, double> m_shadowMemory;
};
