#pragma once
// The tapped interfaces of each side, made for a platform interface of the kind `riid` names;
// null for an interface of the other side.

#include "TapObject.h"

namespace dstap
{

TapObject* newPlaybackTap(const std::shared_ptr<TapState>& state, REFIID riid, IUnknown* real, const void* parent);
TapObject* newCaptureTap(const std::shared_ptr<TapState>& state, REFIID riid, IUnknown* real, const void* parent);

} // namespace dstap
