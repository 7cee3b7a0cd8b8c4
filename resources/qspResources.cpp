// SPDX-License-Identifier: Apache-2.0
#include <QDir>

// Q_INIT_RESOURCE declares a C++ function where it stands, which must not be inside a function with C linkage.
static void RegisterIcons()
{
    Q_INIT_RESOURCE(icons);
}

static void UnregisterIcons()
{
    Q_CLEANUP_RESOURCE(icons);
}

// Package entry points, called by LoadPackage and at shut-down. The resource compiler's own static initialiser
// registers the icons as soon as the file is mapped; asking again is harmless and makes a second Initialize after a
// Finalize work.
extern "C" Q_DECL_EXPORT void Initialize()
{
    RegisterIcons();
}

extern "C" Q_DECL_EXPORT void Finalize()
{
    UnregisterIcons();
}
