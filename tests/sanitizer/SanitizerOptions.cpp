// What the sanitizers do in every program of the tests, however it is started. TSAN_OPTIONS, ASAN_OPTIONS and
// UBSAN_OPTIONS have the last word.

// Qt and the system's libraries were not built with the sanitizer: what orders their accesses is not seen, so
// the accesses that they make through the C library are left alone too.
extern "C" const char* __tsan_default_options() {
    return "ignore_noninstrumented_modules=1:second_deadlock_stack=1";
}

extern "C" const char* __asan_default_options() {
    return "detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:exitcode=66";
}

extern "C" const char* __ubsan_default_options() {
    return "print_stacktrace=1";
}

// Two mutexes of Qt's own, which it takes in either order while it loads TLS for the first socket of a
// process.
extern "C" const char* __tsan_default_suppressions() {
    return "deadlock:libQt5Network.so\n";
}

// Qt's platform without a screen, on which all tests run, never deletes the screen that it does not have.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libqoffscreen.so\n";
}

// What is suppressed is no report of a program.
extern "C" const char* __lsan_default_options() {
    return "print_suppressions=0";
}
