// SPDX-License-Identifier: Apache-2.0
#include "host/process/guarded_run.h"

#include <exception>
#include <new>

#include "host/base/errors.h"
#include "host/console/output.h"

namespace pciinfo {

ExitStatus RunGuarded(const std::function<ExitStatus()>& run) {
  try {
    return run();
  } catch (const UsageError& error) {
    WriteMessage(error.what());
    return kWrongUsage;
  } catch (const ClosedPipe&) {
    return kPipeClosed;
  } catch (const std::bad_alloc&) {
    WriteMessage("there is not enough memory (see --memory-limit)");
    return kFailed;
  } catch (const std::exception& error) {
    WriteMessage(error.what());
    return kFailed;
  }
}

}  // namespace pciinfo
