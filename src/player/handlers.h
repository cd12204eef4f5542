// The handlers of the player's states: they read Controls and act on PlayerActor. Their steps are not exclusive: of
// several state changes in one frame each takes effect and the last one stays.
#pragma once

void StandHandler();
void FidgetHandler();
void FidgetHoldHandler();
void RunHandler();
void BackHandler();
void HaltHandler();
void WalkHandler();
void LeapTakeOffHandler();
void LeapAirHandler();
void HopTakeOffHandler();
void HopAirHandler();
