// SPDX-License-Identifier: MIT
#include "app/program/work_record.h"

WorkRecord the_wp_cl_data;
