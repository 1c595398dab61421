// SPDX-License-Identifier: Apache-2.0
// What all objects of --json begin with, and the messages that stand for themselves.
#ifndef COUNTERSIGN_CL_JSON_OUTPUT_H
#define COUNTERSIGN_CL_JSON_OUTPUT_H

#include "cli/clArguments.h"
#include "cli/clJsonObject.h"

// It grows when a program that reads the objects of before could misread the new ones. New members and values of
// "result" do not count.
constexpr int clJsonVersion = 1;

// With version, type and command. pType: "document", "key", "message", "summary".
clJsonObject clBeginJson(const char* pType, clCommand command);

// Writes the object and a line end to standard output.
void clWriteJson(const clJsonObject& object);

// From now on clComplain and clWarn write objects to standard output.
void clComplainInJson(clCommand command);

#endif
