// SPDX-License-Identifier: Apache-2.0

// System calls that can fail. The loader finds a program's symbols before those of its libraries,
// so these replace the C library's functions in the whole process. Calls inside the C library
// (fopen calls open, fread calls read) cannot be replaced, so fopen and fread are replaced too.
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "tests/faults/fault_plan.h"

namespace {

// Returns the C library's function of that name.
template <class Function>
Function* Next(Function*, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

template <class Result>
Result Fail(int error, Result result) {
  errno = error;
  return result;
}

mode_t ModeIn(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

int StartInstead(const char* script) {
  static const auto next = Next(&execve, "execve");
  const char* arguments[] = {"sh", "-c", script, nullptr};
  return next("/bin/sh", const_cast<char**>(arguments), nullptr);
}

}  // namespace

#define CALLED_FROM_OUTSIDE extern "C" __attribute__((visibility("default")))

CALLED_FROM_OUTSIDE int open(const char* path, int flags, ...) {
  static const auto next = Next(&open, "open");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeIn(flags, arguments);
  va_end(arguments);
  return MustFail(Call::kOpen, path) ? Fail(EMFILE, -1) : next(path, flags, mode);
}

CALLED_FROM_OUTSIDE int openat(int directory, const char* path, int flags, ...) {
  static const auto next = Next(&openat, "openat");
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeIn(flags, arguments);
  va_end(arguments);
  return MustFail(Call::kOpen, path) ? Fail(EMFILE, -1) : next(directory, path, flags, mode);
}

CALLED_FROM_OUTSIDE std::FILE* fopen(const char* path, const char* mode) {
  static const auto next = Next(&fopen, "fopen");
  if (MustFail(Call::kOpen, path)) return Fail<std::FILE*>(EMFILE, nullptr);
  // Without memory for the stream, fopen fails as it does above, so nothing fails inside it.
  const WithoutFaults inner;
  return next(path, mode);
}

CALLED_FROM_OUTSIDE std::FILE* fopen64(const char* path, const char* mode) {
  return fopen(path, mode);
}

CALLED_FROM_OUTSIDE ssize_t read(int descriptor, void* buffer, std::size_t size) {
  static const auto next = Next(&read, "read");
  if (MustFail(Call::kRead, descriptor)) return Fail<ssize_t>(EIO, -1);
  if (size > 1 && MustFail(Call::kShortRead, descriptor)) size = 1;
  return next(descriptor, buffer, size);
}

CALLED_FROM_OUTSIDE ssize_t pread(int descriptor, void* buffer, std::size_t size, off_t offset) {
  static const auto next = Next(&pread, "pread");
  if (MustFail(Call::kRead, descriptor)) return Fail<ssize_t>(EIO, -1);
  return next(descriptor, buffer, size, offset);
}

CALLED_FROM_OUTSIDE std::size_t fread(void* buffer, std::size_t size, std::size_t count,
                                      std::FILE* file) {
  static const auto next = Next(&fread, "fread");
  if (MustFail(Call::kRead, fileno(file))) return Fail<std::size_t>(EIO, 0);
  // fread continues after a short read of the kernel, so its caller never sees one. Nothing
  // fails inside it, as in fopen.
  const WithoutFaults inner;
  return next(buffer, size, count, file);
}

CALLED_FROM_OUTSIDE int close(int descriptor) {
  static const auto next = Next(&close, "close");
  const bool fails = MustFail(Call::kClose, descriptor);
  const int result = next(descriptor);  // the kernel closes it even if it returns an error
  return fails ? Fail(EIO, -1) : result;
}

CALLED_FROM_OUTSIDE int fclose(std::FILE* file) {
  static const auto next = Next(&fclose, "fclose");
  const bool fails = MustFail(Call::kClose, fileno(file));
  const int result = next(file);
  return fails ? Fail(EIO, EOF) : result;
}

// Not pipe, because the code under test does not use it and sanitizers test addresses with it.
CALLED_FROM_OUTSIDE int pipe2(int ends[2], int flags) noexcept {
  static const auto next = Next(&pipe2, "pipe2");
  return MustFail(Call::kPipe) ? Fail(EMFILE, -1) : next(ends, flags);
}

CALLED_FROM_OUTSIDE pid_t fork() noexcept {
  static const auto next = Next(&fork, "fork");
  return MustFail(Call::kStart) ? Fail<pid_t>(EAGAIN, -1) : next();
}

// vfork cannot be replaced, as it returns twice. The program that it is for starts here.
CALLED_FROM_OUTSIDE int execve(const char* file, char* const arguments[],
                               char* const environment[]) noexcept {
  static const auto next = Next(&execve, "execve");
  if (MustFail(Call::kStart)) return Fail(EAGAIN, -1);
  if (MustFail(Call::kDie)) return StartInstead("echo 00:00.0 Host br; kill -KILL $$");
  if (MustFail(Call::kQuit)) return StartInstead("exit 1");
  return next(file, arguments, environment);
}
