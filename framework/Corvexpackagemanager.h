// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include "framework/Export.h"

class QLibrary;
using TModuleHandle = QLibrary *; // nullptr: not loaded

// A string list with an object beside each string, as the global package list needs it.
class CORVEX_API TPackageList
{
public:
    // Position without regard to case; -1 when it is not there.
    int IndexOf(const QString &name) const;
    void AddObject(const QString &name, TModuleHandle handle);
    TModuleHandle Objects(int index) const; // throws std::out_of_range
    const QStringList &Names() const { return names_; }

private:
    QStringList names_;
    QList<TModuleHandle> handles_;
};

// Names of the loaded packages, each with its module handle.
CORVEX_API TPackageList &GlobalPackageList();

// Loads a run-time package by file name (looked for beside the executable, beside the framework library and in the
// folders that AddPackageFolder named), and runs its Initialize. The package stays loaded until the process ends:
// unloading would take static data away that other modules still hold. Does not touch GlobalPackageList. Throws
// std::runtime_error with the loader's reason.
CORVEX_API TModuleHandle LoadPackage(const QString &name);
// Runs a loaded package's Finalize.
CORVEX_API void FinalizePackage(TModuleHandle handle);
CORVEX_API void AddPackageFolder(const QString &folder);
