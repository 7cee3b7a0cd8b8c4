// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "embedded/Ast.h"

namespace embedded {

// Parses a batch (no GO). Throws Error: Syntax for what does not parse, Refused for what is outside the subset.
std::shared_ptr<Program> Parse(const QString &batch);

// Splits a script at the lines that hold GO alone. Each batch starts with as many line breaks as stand before it
// in the script, so that places in errors are places of the script.
QStringList SplitScript(const QString &script);

} // namespace embedded
