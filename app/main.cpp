#include "CompositionRoot.h"
#include "appkit/NSApplication.h"

int main(int argc, char** argv)
{
    return vantro::NSApplicationMain(argc, argv, vantro::applicationStoryboard());
}
