#include "app/pictures/qv_gl_context.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <dlfcn.h>

#include <cstring>
#include <string>
#include <vector>

namespace qv {
namespace {

constexpr int gl_major = 4;
constexpr int gl_minor = 5;

// The functions of libEGL, found at run time.
class egl_library {
 public:
  static const egl_library& get() {
    static const egl_library library;
    return library;
  }

  decltype(&eglGetProcAddress) get_proc_address = nullptr;
  decltype(&eglInitialize) initialize = nullptr;
  decltype(&eglBindAPI) bind_api = nullptr;
  decltype(&eglQueryString) query_string = nullptr;
  decltype(&eglChooseConfig) choose_config = nullptr;
  decltype(&eglCreateContext) create_context = nullptr;
  decltype(&eglDestroyContext) destroy_context = nullptr;
  decltype(&eglMakeCurrent) make_current = nullptr;
  // Extensions, null where there are none.
  PFNEGLGETPLATFORMDISPLAYEXTPROC get_platform_display = nullptr;
  PFNEGLQUERYDEVICESEXTPROC query_devices = nullptr;
  PFNEGLQUERYDEVICESTRINGEXTPROC query_device_string = nullptr;

 private:
  egl_library() {
    library_ = ::dlopen("libEGL.so.1", RTLD_NOW | RTLD_GLOBAL);
    if (library_ == nullptr) throw qv_no_drawing("libEGL.so.1 cannot be loaded");
    load(get_proc_address, "eglGetProcAddress");
    load(initialize, "eglInitialize");
    load(bind_api, "eglBindAPI");
    load(query_string, "eglQueryString");
    load(choose_config, "eglChooseConfig");
    load(create_context, "eglCreateContext");
    load(destroy_context, "eglDestroyContext");
    load(make_current, "eglMakeCurrent");
    find(get_platform_display, "eglGetPlatformDisplayEXT");
    find(query_devices, "eglQueryDevicesEXT");
    find(query_device_string, "eglQueryDeviceStringEXT");
    if (get_platform_display == nullptr)
      throw qv_no_drawing("libEGL.so.1 knows no drawing without a display");
  }

  template <class T>
  void load(T& function, const char* name) {
    function = reinterpret_cast<T>(::dlsym(library_, name));
    if (function == nullptr) throw qv_no_drawing(std::string("libEGL.so.1 lacks ") + name);
  }
  template <class T>
  void find(T& function, const char* name) {
    function = reinterpret_cast<T>(get_proc_address(name));
  }

  void* library_ = nullptr;
};

bool has_word(const char* words, const char* word) {
  return words != nullptr &&
         (" " + std::string(words) + " ").find(" " + std::string(word) + " ") != std::string::npos;
}

// The device that stands for drawing by the processor, or null.
EGLDeviceEXT find_software_device(const egl_library& egl) {
  if (egl.query_devices == nullptr || egl.query_device_string == nullptr) return nullptr;
  EGLint count = 0;
  if (egl.query_devices(0, nullptr, &count) == EGL_FALSE || count <= 0) return nullptr;
  std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
  if (egl.query_devices(count, devices.data(), &count) == EGL_FALSE) return nullptr;
  devices.resize(static_cast<std::size_t>(count));
  for (EGLDeviceEXT device : devices)
    if (has_word(egl.query_device_string(device, EGL_EXTENSIONS), "EGL_MESA_device_software"))
      return device;
  return nullptr;
}

// Drawing by the processor gives the same picture on every machine; where that is not to be had,
// any display that needs no surface.
EGLDisplay find_display(const egl_library& egl) {
  if (EGLDeviceEXT device = find_software_device(egl)) {
    EGLDisplay display = egl.get_platform_display(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
    if (display != EGL_NO_DISPLAY && egl.initialize(display, nullptr, nullptr) != EGL_FALSE)
      return display;
  }
  EGLDisplay display =
      egl.get_platform_display(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  if (display == EGL_NO_DISPLAY || egl.initialize(display, nullptr, nullptr) == EGL_FALSE)
    throw qv_no_drawing("there is no OpenGL without a display");
  return display;
}

// EGL has one display for the whole process. It stays open to its end: closing it would unload the
// driver, which cannot be loaded a second time without losing memory.
EGLDisplay open_display(const egl_library& egl) {
  static EGLDisplay display = find_display(egl);
  return display;
}

}  // namespace

qv_no_drawing::qv_no_drawing(const std::string& problem, const std::string& advice)
    : qv_input_error(kind::no_access, {"OpenGL", 0, {}, {}}, "cannot draw: " + problem, advice) {}

struct qv_gl_context::handles {
  const egl_library& egl = egl_library::get();
  EGLDisplay display = open_display(egl);
  EGLContext context = EGL_NO_CONTEXT;

  handles() = default;
  handles(const handles&) = delete;
  handles& operator=(const handles&) = delete;
  ~handles() {
    egl.make_current(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context != EGL_NO_CONTEXT) egl.destroy_context(display, context);
  }
};

qv_gl_context::qv_gl_context() : handles_(std::make_unique<handles>()) {
  handles& own = *handles_;
  if (!has_word(own.egl.query_string(own.display, EGL_EXTENSIONS), "EGL_KHR_surfaceless_context"))
    throw qv_no_drawing("OpenGL needs a surface here");
  const EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, 0, EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  if (own.egl.bind_api(EGL_OPENGL_API) == EGL_FALSE ||
      own.egl.choose_config(own.display, wanted, &config, 1, &count) == EGL_FALSE || count < 1)
    throw qv_no_drawing("there is no desktop OpenGL");
  const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                               gl_major,
                               EGL_CONTEXT_MINOR_VERSION,
                               gl_minor,
                               EGL_CONTEXT_OPENGL_PROFILE_MASK,
                               EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT,
                               EGL_NONE};
  own.context = own.egl.create_context(own.display, config, EGL_NO_CONTEXT, attributes);
  if (own.context == EGL_NO_CONTEXT)
    throw qv_no_drawing("OpenGL 4.5 with the compatibility profile is not to be had");
  make_current();
}

qv_gl_context::~qv_gl_context() = default;

void qv_gl_context::make_current() {
  const handles& own = *handles_;
  if (own.egl.make_current(own.display, EGL_NO_SURFACE, EGL_NO_SURFACE, own.context) == EGL_FALSE)
    throw qv_no_drawing("OpenGL refuses its context");
}

}  // namespace qv
