// SPDX-License-Identifier: MIT
//
// The seam to the host's removable-media service.
#pragma once

/// 1 when the service runs, else 0. No service is used yet: removable media are read where the system
/// administrator mounts them.
int media_manager_running();

/// Has the service look for a newly inserted medium; 1 when it found one, else 0.
int media_manager_check();
