// One frame of the game: every module once, in a fixed order.
#pragma once

// Keyboard and mouse must have been polled before. True: the host asks for the end of the program.
bool GameFrame();
