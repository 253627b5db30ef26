#pragma once
// Scripted input for tests and demos, one command a line ('#' starts a
// comment); positions in window pixels:
//   move X Y | click X Y [ctrl] | drag X0 Y0 X1 Y1 [middle|right] |
//   wheel X Y NOTCHES | key C | draw | probe X Y | screenshot FILE |
//   export FILE WIDTH HEIGHT | locate ID | project X Y Z | drop FILE
// `probe` prints the view range and the world point on the XY plane under
// the pixel, `locate` the window rectangle of an object's box, `project`
// the window pixel of a world point; `drop` opens a file as one dropped on
// the window is opened. Returns false, naming the line, on a
// command it cannot read.
#include <functional>
#include <string>

class Viewer;

bool runScript(Viewer& viewer, const std::string& path, const std::function<void()>& pumpEvents);
