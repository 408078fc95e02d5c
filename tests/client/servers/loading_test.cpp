// SPDX-License-Identifier: MIT
// A program that is not linked to the library, and loads it again and again.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "client/servers/front_end.h"
#include "orb/qxorbclient.h"

namespace orb::test {
namespace {

template <class Function>
Function* find(void* library, const char* name) {
  return reinterpret_cast<Function*>(::dlsym(library, name));
}

/// One life of the library. The result of a call of `mtimes` with value and 2.
double loadCallUnload(const std::string& url, double value) {
  void* library = ::dlopen(QXORBCLIENT_PATH, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    ADD_FAILURE() << ::dlerror();
    return 0;
  }
  const auto scalar =
      find<decltype(orbCreateDoubleScalar)>(library, "orbCreateDoubleScalar");
  const auto destroy = find<decltype(orbDestroyArray)>(library, "orbDestroyArray");
  const orbClientRuntime* table =
      find<decltype(orbInitializeEx)>(library, "orbInitializeEx")(ORB_CLIENT_1_1);
  orbClientConfig* config = nullptr;
  orbClientContext* context = nullptr;
  EXPECT_EQ(table->createConfig(&config), ORB_OK);
  EXPECT_EQ(table->createContext(&context, config), ORB_OK);
  const orbArray inputs[] = {scalar(value), scalar(2)};
  orbArray output = nullptr;
  double result = 0;
  if (table->feval(context, url.c_str(), 1, &output, 2, inputs) == ORB_OK) {
    result = find<decltype(orbGetScalar)>(library, "orbGetScalar")(output);
  }
  destroy(output);
  for (const orbArray input : inputs) destroy(input);
  table->destroyContext(context);
  table->destroyConfig(config);
  find<decltype(orbTerminate)>(library, "orbTerminate")();
  EXPECT_EQ(::dlclose(library), 0);
  return result;
}

TEST(Library, IsLoadedAndUnloadedAThousandTimes) {
  const Backend backend;
  for (int i = 1; i <= 1000; ++i) {
    ASSERT_EQ(loadCallUnload(backend.url("mtimes"), i), 2.0 * i);
  }
}

constexpr int kServed = 7;
void* loaded = nullptr;

/// Runs when the library's own handlers have run, since it was registered before them.
void serveExit() {
  orbClientRuntime* table =
      find<decltype(orbInitializeEx)>(loaded, "orbInitializeEx")(ORB_CLIENT_1_1);
  orbClientConfig* config = nullptr;
  const bool isMade = table->createConfig(&config) == ORB_OK;
  table->destroyConfig(config);
  const std::string message = find<decltype(orbGetInitializationErrorMessage)>(
      loaded, "orbGetInitializationErrorMessage")();
  find<decltype(orbTerminate)>(loaded, "orbTerminate")();
  ::_exit(isMade && message == "Invalid version number." ? kServed : 1);
}

TEST(Library, ServesHandlersOfAnExitingProgram) {
  const pid_t child = ::fork();
  if (child == 0) {
    std::atexit(&serveExit);
    loaded = ::dlopen(QXORBCLIENT_PATH, RTLD_NOW | RTLD_LOCAL);
    const auto initialize = find<decltype(orbInitializeEx)>(loaded, "orbInitializeEx");
    initialize(0);
    initialize(ORB_CLIENT_1_1);
    std::exit(0);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), kServed);
}

}  // namespace
}  // namespace orb::test
