// Loads a plugin that uses the library, has threads work with it, and unloads it, again and again.
//
// Usage: unload_test PLUGIN    best below valgrind, which finds what stays allocated
#ifdef IS_PLUGIN

#include <teleform/teleform.h>

extern "C" std::size_t RenderDirectory() {
  CiscoIPPhoneDirectory directory("Colleagues", 99);
  while (directory.AppendEntry("a name that takes an allocation", "1")) {
  }
  std::string out;
  directory.Render(out);
  return out.size();
}

#else

#include <dlfcn.h>

#include <cstddef>
#include <cstdlib>
#include <thread>

int main(int /*argc*/, char** argv) {
  const auto work = [&] {
    for (int round = 0; round < 20; ++round) {
      void* const plugin = dlopen(argv[1], RTLD_NOW);
      void* const render = plugin == nullptr ? nullptr : dlsym(plugin, "RenderDirectory");
      if (render == nullptr || reinterpret_cast<std::size_t (*)()>(render)() < 5000) std::abort();
      dlclose(plugin);
    }
  };
  for (int round = 0; round < 3; ++round) {
    std::thread first(work), second(work);
    first.join();
    second.join();
  }
  // The threads that have used the library have ended, and nothing keeps it any more.
  dlclose(dlopen(argv[1], RTLD_NOW));
  return dlopen("libteleform.so.1.0", RTLD_NOW | RTLD_NOLOAD) == nullptr ? 0 : 1;
}

#endif
