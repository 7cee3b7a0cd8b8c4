// SPDX-License-Identifier: Apache-2.0
#include "framework/Corvexpackageintf.h"

#include <QHash>

namespace {

QHash<QString, TClassRef> &Classes()
{
    static QHash<QString, TClassRef> classes;
    return classes;
}

} // namespace

void RegisterClass(const TClassRef &classRef)
{
    Classes().insert(QString::fromLatin1(classRef.name), classRef);
}

void UnRegisterClass(const TClassRef &classRef)
{
    Classes().remove(QString::fromLatin1(classRef.name));
}

const TClassRef *FindClass(const QString &name)
{
    const auto found = Classes().constFind(name);
    return found == Classes().constEnd() ? nullptr : &*found;
}

QObject *CreateByClassName(const QString &name)
{
    const TClassRef *classRef = FindClass(name);
    return classRef && classRef->create ? classRef->create() : nullptr;
}

TCorvexPackageInterface::TCorvexPackageInterface() = default;
TCorvexPackageInterface::~TCorvexPackageInterface() = default;

void TCorvexPackageInterface::GetObjectClassList() {}

void TCorvexPackageInterface::NonVisiblePkgMessage(uint, qlonglong, qlonglong, bool &Handled)
{
    // No message is common to all packages yet.
    Handled = false;
}

bool TCorvexPackageInterface::CanHandleMessage(uint) const
{
    return false;
}

QList<TToolEntry> TCorvexPackageInterface::ToolEntries() const
{
    return {};
}

void TCorvexPackageInterface::AddObjectClass(const TModules &Modules, const QString &ObjectName,
                                             const TClassRef *ObjectClass, const QString &GroupKey,
                                             TObjectKinds ObjectKinds, const QString &Caption, int DisplayValue,
                                             quintptr Extra)
{
    entries_.append({Modules, ObjectName, ObjectClass, GroupKey, ObjectKinds, Caption, DisplayValue, Extra});
}
