// SPDX-License-Identifier: Apache-2.0
// Where the session bus is.
#ifndef COUNTERSIGN_HO_BUS_ADDRESS_H
#define COUNTERSIGN_HO_BUS_ADDRESS_H

#include "platform/baseTools/gtString.h"

// The address of the session bus that is running, empty when there is none. GIO by itself would start a bus that nobody
// asked for. Safe from any thread that changes no environment; only std::bad_alloc comes out.
gtString hoSessionBusAddress();

#endif
