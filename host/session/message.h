// A line over the game's picture, for a moment. Does nothing on a machine that shows no overlay.
#pragma once

#include <string>

void ShowMessage(const std::string& what, std::string more);  // `more` keeps its end when the line is too short
// At each poll that reads the keyboard. In the front end the place for words over the picture is the choice's
// (session/front_end.h).
void HideOldMessage();
