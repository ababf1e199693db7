/*
 * A camera host in miniature: load libPavona.so, fill the entry table
 * through get_algo_api and print the version text.
 */
#include <dlfcn.h>
#include <stdio.h>

#include "pavona_host.h"

int main(int argc, char** argv) {
  const char* path = argc > 1 ? argv[1] : PAVONA_LIBRARY_PATH;
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) {
    fprintf(stderr, "host-example: cannot load %s: %s\n", path, dlerror());
    return 1;
  }
  PavonaGetAlgoApiFn get_api =
      (PavonaGetAlgoApiFn)dlsym(library, "get_algo_api");
  if (get_api == NULL) {
    fprintf(stderr, "host-example: no get_algo_api in %s\n", path);
    dlclose(library);
    return 1;
  }
  PavonaApi api = {0};
  get_api(&api);
  printf("Pavona %s\n", api.getVersion());
  dlclose(library);
  return 0;
}
