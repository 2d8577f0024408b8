// Loads the bridge as the runtime of an app does.

#include <dlfcn.h>

#include <cstdio>

int main(int argc, char** argv) {
  void* bridge = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (bridge == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 2;
  }
  const auto errorCode = reinterpret_cast<int (*)(const char*)>(dlsym(bridge, "bridgeErrorCode"));
  return errorCode != nullptr && errorCode("<VAST version='3.0'/>") == 303 ? 0 : 1;
}
