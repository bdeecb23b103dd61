// Linked into programs that are built with the address sanitizer: memory that libraries of the
// system keep to the end of the program on purpose, by the library.
extern "C" const char* __lsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

extern "C" const char* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier)
  // The patterns of fonts that were looked for once.
  return "leak:libfontconfig.so\n";
}

extern "C" const char* __lsan_default_options();  // NOLINT(bugprone-reserved-identifier)

// Without a word about it: what a program says on standard error is its user's.
extern "C" const char* __lsan_default_options() {  // NOLINT(bugprone-reserved-identifier)
  return "print_suppressions=0";
}
