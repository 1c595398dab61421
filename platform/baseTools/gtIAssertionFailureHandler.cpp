// SPDX-License-Identifier: Apache-2.0
#include "platform/baseTools/gtIAssertionFailureHandler.h"

// Here, so that the interface's virtual table and type information live in this library alone.
gtIAssertionFailureHandler::~gtIAssertionFailureHandler() = default;
