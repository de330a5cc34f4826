// The radio's flash and components as two files.
//
// FILE is the contents of all flash devices, one after the other in the profile's order, without
// headers. FILE.map says in text what lies where:
//
//   device network=0 device=1 unit=2 start=00000000 units=00020000 offset=1048576 bytes=262144
//   component network=0 device=1 status=0 address=00000000 product=JHA2A-1.10
//
// The byte at which an address begins is offset + (address - start) * unit.
#pragma once

#include "device/Memory.h"

#include <string>

namespace simulator {

/// Writes both files; a reader sees the old or the new ones, never a part. Throws
/// std::runtime_error.
void saveFlash(const std::string& path, const Memory& memory);

/// Puts what saveFlash wrote for the same profile into the memory. Throws std::runtime_error.
void loadFlash(const std::string& path, Memory& memory);

} // namespace simulator
