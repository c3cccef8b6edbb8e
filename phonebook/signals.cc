#include "phonebook/signals.h"

#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigwait is POSIX

#include <cstdlib>
#include <thread>
#include <utility>

namespace phonebook {

Signals::Signals(int status) : stop([status] { std::_Exit(status); }) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigaddset(&signals, SIGINT);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::thread([this, signals] {
    for (int number = 0; sigwait(&signals, &number) == 0;) {
      const std::lock_guard lock(mutex);
      isStopped = true;
      stop();
    }
  }).detach();
}

std::shared_ptr<void> Signals::OnStop(std::function<void()> handler) {
  const std::lock_guard lock(mutex);
  stop = std::move(handler);
  if (isStopped) stop();
  return {this, [](Signals* signals) {
            const std::lock_guard relock(signals->mutex);
            signals->stop = [] {};
          }};
}

}  // namespace phonebook
