#pragma once
// IFC products as the IFC reader names their nodes: "<class>_<name>_<GlobalId>",
// the GlobalId being the 22 characters of IFC's compressed GUID (which may
// themselves hold '_' and '$').
#include <string>

namespace kximport {

struct IfcNodeName {
  std::string ifcClass;  // "IfcWallStandardCase"
  std::string name;      // "Wand-Ext-ERDG-1" (may be empty)
  std::string globalId;  // "3rPX_Juz59peXXY6wDJl18"
};

// False for names that are not of that form (relationship nodes, mapped
// items, nodes of other formats).
bool parseIfcNodeName(const std::string& node, IfcNodeName& out);

}  // namespace kximport
