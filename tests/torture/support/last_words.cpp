// SPDX-License-Identifier: MIT
#include "torture/support/last_words.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <string_view>

// There when the program is built with a sanitizer.
extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));

// The undefined-behaviour sanitizer ends a program without the callback above; this way it
// ends it by a signal.
extern "C" const char* __ubsan_default_options() {
  return "abort_on_error=1:print_stacktrace=1";
}

namespace orb::torture {
namespace {

constexpr std::size_t kMostBytes = 200;
thread_local char words[kMostBytes];
thread_local std::size_t length = 0;

// Only what a signal handler may call; not write(), which a check may just let fail.
void say(std::string_view text) {
  ::syscall(SYS_write, STDOUT_FILENO, text.data(), text.size());
}

void sayAll() {
  if (length == 0) return;
  say("finding: the process dies\nreplay: ");
  say(program_invocation_name);
  say(" ");
  say({words, length});
  say("\n");
}

void onSignal(int number) {
  sayAll();
  std::signal(number, SIG_DFL);
  std::raise(number);
}

}  // namespace

void installLastWords() {
  std::signal(SIGABRT, onSignal);
  std::signal(SIGALRM, onSignal);  // of a check that sets an alarm against hanging
  if (__sanitizer_set_death_callback != nullptr) {
    // The sanitizer's own handlers of the other signals report and then call this.
    __sanitizer_set_death_callback(sayAll);
    return;
  }
  for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
    std::signal(number, onSignal);
  }
}

void setLastWords(const std::string& replayArguments) {
  length = std::min(replayArguments.size(), kMostBytes);
  std::memcpy(words, replayArguments.data(), length);
}

}  // namespace orb::torture
