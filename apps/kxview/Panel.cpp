// The tags of the selected object in a small Dear ImGui panel, drawn with
// ImGui's fixed-function backend in the scene's own context.
#include <imgui.h>
#include <imgui_impl_opengl2.h>

#include "Viewer.h"

void Viewer::drawPanel() {
  // Also a progress bar while a file loads.
  if (!m_imgui) {
    ImGui::CreateContext();
    ImGui::GetIO().IniFilename = nullptr;  // no imgui.ini beside the model
    ImGui_ImplOpenGL2_Init();
    m_imgui = true;
  }
  ImGuiIO& io = ImGui::GetIO();
  io.DisplaySize = ImVec2(float(m_scene.getViewWidth()), float(m_scene.getViewHeight()));
  io.DeltaTime = 1.0f / 30.0f;
  ImGui_ImplOpenGL2_NewFrame();
  ImGui::NewFrame();
  const CRenderObject* o = m_selection.empty() ? nullptr : m_scene.getObj(m_selection.back());
  if (m_panel && ((o && o->numShp() > 0) || m_measuring)) {
    ImGui::SetNextWindowPos(ImVec2(8, 8));
    ImGui::SetNextWindowBgAlpha(0.75f);
    ImGui::Begin("Selection", nullptr,
                 ImGuiWindowFlags_NoInputs | ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoSavedSettings);
    if (o && o->numShp() > 0) {
      ImGui::Text("object %u  (%zu selected)", o->getId(), m_selection.size());
      for (const auto& [key, value] : o->getShape(0).getXdataMap())
        ImGui::Text("%s: %s", key.GetString(), value.GetString());
    }
    if (m_measuring && m_measured == 2)
      ImGui::Text("distance: %.4f", m_from.distanceTo(m_to));
    else if (m_measuring)
      ImGui::Text("distance: click %s point", m_measured == 1 ? "the second" : "a first");
    ImGui::End();
  }
  if (m_loading >= 0.0) {
    ImGui::SetNextWindowPos(ImVec2(io.DisplaySize.x * 0.5f, io.DisplaySize.y * 0.5f), 0, ImVec2(0.5f, 0.5f));
    ImGui::SetNextWindowSize(ImVec2(320, 0));
    ImGui::Begin("Loading", nullptr, ImGuiWindowFlags_NoInputs | ImGuiWindowFlags_NoSavedSettings);
    ImGui::Text("%s", m_loadPhase);
    ImGui::ProgressBar(float(m_loading));
    ImGui::End();
  }
  ImGui::Render();
  ImGui_ImplOpenGL2_RenderDrawData(ImGui::GetDrawData());
}

void shutdownPanel() {
  if (!ImGui::GetCurrentContext()) return;
  ImGui_ImplOpenGL2_Shutdown();
  ImGui::DestroyContext();
}
