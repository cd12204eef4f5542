// One frame of the game: every module once, in a fixed order.
#pragma once

// Keyboard and mouse have been polled. True: the host asks for the end of the program.
bool GameFrame();
