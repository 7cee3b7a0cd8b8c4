// SPDX-License-Identifier: Apache-2.0
#include <QDir>

// Package entry points, called by LoadPackage and at shut-down. The resource compiler's own static initialiser
// registers the icons as soon as the file is mapped; asking again is harmless and makes a second Initialize after a
// Finalize work.
extern "C" Q_DECL_EXPORT void Initialize()
{
    Q_INIT_RESOURCE(icons);
}

extern "C" Q_DECL_EXPORT void Finalize()
{
    Q_CLEANUP_RESOURCE(icons);
}
