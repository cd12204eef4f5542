// Loaded into the game before SDL: a controller that does what lines of the file $SCRIPTED_PAD say, from the moment
// they are written there. `attach`, `detach`, `button NUMBER 0|1`, `axis NUMBER VALUE`; numbers are those of SDL.
#include <SDL.h>
#include <dlfcn.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace {

int device = -1;
SDL_Joystick* pad = nullptr;

void Attach() {
    device = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, SDL_CONTROLLER_AXIS_MAX,
                                       SDL_CONTROLLER_BUTTON_MAX, 0);
    pad = SDL_JoystickOpen(device);
    for (const int trigger : {SDL_CONTROLLER_AXIS_TRIGGERLEFT, SDL_CONTROLLER_AXIS_TRIGGERRIGHT})
        SDL_JoystickSetVirtualAxis(pad, trigger, -32768);  // they would rest in the middle
}

void Detach() {
    SDL_JoystickClose(pad);
    SDL_JoystickDetachVirtual(device);
}

void Obey(std::istream& lines) {
    std::string what;
    int number = 0, value = 0;
    while (lines >> what) {
        if (what == "attach") Attach();
        if (what == "detach") Detach();
        if (what == "button" && lines >> number >> value)
            SDL_JoystickSetVirtualButton(pad, number, static_cast<Uint8>(value));
        if (what == "axis" && lines >> number >> value)
            SDL_JoystickSetVirtualAxis(pad, number, static_cast<Sint16>(value));
    }
    lines.clear();
}

}  // namespace

extern "C" int SDL_PollEvent(SDL_Event* event) {
    static std::ifstream lines(std::getenv("SCRIPTED_PAD"));
    static const auto poll = reinterpret_cast<int (*)(SDL_Event*)>(dlsym(RTLD_NEXT, "SDL_PollEvent"));
    if (SDL_WasInit(SDL_INIT_GAMECONTROLLER)) Obey(lines);
    return poll(event);
}
