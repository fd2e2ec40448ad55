// SPDX-License-Identifier: MIT
//
// The seam to the host's removable-media service: UDisks2 on the system bus, which `DBUS_SYSTEM_BUS_ADDRESS`
// may name. Each call opens a connection of its own and waits for 2 seconds at most, connecting included: a
// bus or a service that is missing, refuses, hangs or answers nonsense counts as not there, without a word.
#pragma once

/// 1 when the service runs or would be started by being asked, else 0.
int media_manager_running();

/// 1 when the service knows a medium, else 0. `device` is a block device under the name that the service
/// lists it by, such as "/dev/sr0"; null means all devices. Only drives whose media can be changed count: a
/// fixed disk holds none.
int media_manager_check(const char* device);
