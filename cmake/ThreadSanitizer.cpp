// Part of every program that is built with ThreadSanitizer. Programs that leave by quick_exit() leave without what it
// does at a regular end, so it ends them where it finds something. TSAN_OPTIONS=halt_on_error=0 makes it go on.

extern "C" const char* __tsan_default_options(); // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __tsan_default_options()  // NOLINT(bugprone-reserved-identifier): the sanitizer's name
{
    return "halt_on_error=1";
}
