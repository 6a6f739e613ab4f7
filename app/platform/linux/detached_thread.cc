#include "app/platform/linux/detached_thread.h"

#include <pthread.h>
#include <signal.h>

#include <string>

namespace platform {

bool StartDetachedThread(void* (*entry)(void*), void* argument) {
  sigset_t blocked;
  sigset_t before;
  sigfillset(&blocked);
  // Faults of the thread itself, and the warning of the limit on real-time work.
  for (const int kept :
       {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS, SIGXCPU, SIGPROF})
    sigdelset(&blocked, kept);
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_t thread;
  const bool started = pthread_create(&thread, &attributes, entry, argument) == 0;
  pthread_attr_destroy(&attributes);
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return started;
}

void NameCurrentThread(const char* name) {
  if (!name || !*name) return;
  pthread_setname_np(pthread_self(), std::string(name).substr(0, 15).c_str());
}

}  // namespace platform
