// SPDX-License-Identifier: Apache-2.0
#include "topology/second_thread.h"

#include <pthread.h>
#include <sched.h>

#include <system_error>
#include <utility>

namespace topology {
namespace {

/// Releases `lock`, at which `thread` sleeps, so that the thread wakes on another processor than
/// that of the calling thread, if it may use one. Later the kernel may move it to any.
///
/// The kernel starts a thread on the processor of the thread that starts it where it takes the
/// others for busy, and in a virtual machine it takes idle processors for busy. The two threads
/// would take turns on one processor until the kernel moves one of them, milliseconds later.
void WakeElsewhere(pthread_t thread, std::unique_lock<std::mutex> lock) {
  const int here = sched_getcpu();
  cpu_set_t usable;
  if (here < 0 || here >= CPU_SETSIZE) return;
  // This fails on systems with more processors than the set has room for.
  if (pthread_getaffinity_np(thread, sizeof usable, &usable) != 0) return;
  cpu_set_t others = usable;
  CPU_CLR(here, &others);
  // This fails if there are no others.
  if (pthread_setaffinity_np(thread, sizeof others, &others) != 0) return;
  lock.unlock();
  pthread_setaffinity_np(thread, sizeof usable, &usable);
}

}  // namespace

SecondThread::SecondThread(std::function<void()> work) : work_(std::move(work)) {
  std::unique_lock lock(begin_);
  try {
    thread_ = std::thread([this] {
      { const std::lock_guard wait(begin_); }
      work_();
    });
  } catch (const std::system_error&) {
    return;
  }
  WakeElsewhere(thread_.native_handle(), std::move(lock));
}

SecondThread::~SecondThread() {
  if (thread_.joinable()) thread_.join();
}

void SecondThread::Finish() {
  if (thread_.joinable()) {
    thread_.join();
  } else {
    work_();
  }
  work_.get_future().get();
}

}  // namespace topology
