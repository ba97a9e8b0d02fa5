// LeakSanitizer suppressions for the kit's test programs that draw controls in a window.
// Qt Quick 6.4's scene graph keeps the textures it made for Image items in its render context
// after the window is gone, and never frees them; those blocks belong to Qt, not to the kit.
// The sanitizer runtime asks every program for these functions; without a sanitizer nobody calls
// them. The suppressions name frames deep inside Qt, which only a full unwind of each allocation
// reaches; Qt's libraries have no frame pointers for the fast one.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __asan_default_options();

extern "C" const char* __lsan_default_suppressions() {
    return "leak:QSGRenderContext::textureForFactory\n"
           "leak:QQuickTextureFactory::textureFactoryForImage\n";
}

extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}
