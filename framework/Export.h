// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

// Marks what the shared library "corvex" exports; everything else stays hidden.
#ifdef CORVEX_BUILD
#define CORVEX_API Q_DECL_EXPORT
#else
#define CORVEX_API Q_DECL_IMPORT
#endif
