// For ThreadSanitizer, which doesn't see how libraries that were built without it keep their threads apart.

extern "C" const char* __tsan_default_suppressions(); // NOLINT(*-reserved-identifier): the sanitizer's own name

extern "C" const char* __tsan_default_suppressions() { // NOLINT(*-reserved-identifier)
    return "called_from_lib:libglib-2.0.so\n"
           "called_from_lib:libgio-2.0.so\n"
           "called_from_lib:libgobject-2.0.so\n"
           "called_from_lib:libXau.so\n";
}
