#include "cli/Process.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace excelexp::cli {
namespace {

volatile sig_atomic_t interrupted = 0;

void OnSignal(int /*number*/) {
  interrupted = 1;
}

/// Without SA_RESTART, so that a wait for the user's answer ends; SA_RESETHAND gives the second signal its
/// usual effect.
void Catch(int number) {
  struct sigaction action {};
  action.sa_handler = &OnSignal;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigemptyset(&action.sa_mask);
  sigaction(number, &action, nullptr);
}

bool IsIgnored(int number) {
  struct sigaction action {};
  return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void ForbidCoreDumps() {
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
#ifndef __SANITIZE_ADDRESS__  // its leak check attaches to the process, which this forbids
  // A core pattern that is a program is not bound by the limit (core(5)).
  prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
#endif
}

}  // namespace

void PrepareProcess() {
  ForbidCoreDumps();
  Catch(SIGINT);
  Catch(SIGTERM);
  if (!IsIgnored(SIGHUP)) Catch(SIGHUP);  // nohup(1) has it ignored
  signal(SIGPIPE, SIG_IGN);
}

bool Interrupted() {
  return interrupted != 0;
}

}  // namespace excelexp::cli
