// SPDX-License-Identifier: MIT
//
// Asks the host's removable-media service: UDisks2 on the system bus, whose address may be in
// `DBUS_SYSTEM_BUS_ADDRESS`. Each call opens its own connection and waits for at most 2 seconds, connecting
// included. A bus or a service that is missing, refuses, hangs or answers nonsense counts as missing, without
// a message.
#pragma once

/// 1 when the service runs, or when the bus would start it, else 0.
int media_manager_running();

/// 1 when the service knows a medium, else 0. `device` is a block device as the service names it, such as
/// "/dev/sr0"; null means all devices. Only drives with removable media count, not fixed disks.
int media_manager_check(const char* device);
