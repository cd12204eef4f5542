#include "app/entry.h"
#include "app/host_game.h"

int main(int argumentCount, char** arguments) {
    return HostMain(argumentCount, arguments, GameForHost, WinMain);
}
