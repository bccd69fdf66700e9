#pragma once
// Puts a tap's state behind the library's DirectSound seam, and takes it away.

#include "TapState.h"

#include <memory>

namespace dstap
{

void install(std::shared_ptr<TapState> state); // throws std::logic_error if one is installed
void uninstall();

} // namespace dstap
