#include "app/entry.h"
#include "host/host.h"

int main(int argumentCount, char** arguments) {
    return HostMain(argumentCount, arguments, WinMain);
}
