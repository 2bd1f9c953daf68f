// Fontconfig keeps its configuration to the end of the process; that is no leak of ours.

extern "C" {
__attribute__((visibility("default"))) const char* __lsan_default_suppressions();
__attribute__((visibility("default"))) const char* __lsan_default_options();

const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
const char* __lsan_default_options() {
    return "print_suppressions=0";
}
}
