#include "import/IfcNodeName.h"

namespace kximport {

bool parseIfcNodeName(const std::string& node, IfcNodeName& out) {
  constexpr size_t kGuid = 22;
  if (node.compare(0, 3, "Ifc") != 0) return false;
  const size_t classEnd = node.find('_');
  if (classEnd == std::string::npos || node.size() < classEnd + 1 + kGuid) return false;
  const size_t guidStart = node.size() - kGuid;
  // "<class>_<guid>" has no name; otherwise a '_' must precede the GUID.
  if (guidStart != classEnd + 1 && (guidStart < classEnd + 2 || node[guidStart - 1] != '_')) return false;
  out.ifcClass = node.substr(0, classEnd);
  out.globalId = node.substr(guidStart);
  out.name = guidStart == classEnd + 1 ? std::string() : node.substr(classEnd + 1, guidStart - classEnd - 2);
  return true;
}

}  // namespace kximport
