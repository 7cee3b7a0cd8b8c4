// SPDX-License-Identifier: Apache-2.0
#include "package/Qpmaintenanceintf.h"

#include <map>
#include <string_view>

#include "banking/BSBImportDlg.h"
#include "package/MessageTable.h"
#include "package/RegistrationTable.h"
#include "tax/NewTaxYearDlg.h"

namespace {

QObject *CreateInterface()
{
    return new TkpIMaintenance;
}

constexpr TClassRef kInterfaceClass{"TkpIMaintenance", &CreateInterface};

// The host may run the entry points more than once; only the first initialisation and the last finalisation count.
int initialised = 0;

// Screens are opened by message, never by class, so a class reference carries its name alone. A class that is
// registered under two names has one reference.
const TClassRef *ScreenClass(const char *name)
{
    static std::map<std::string_view, TClassRef> classes;
    return &classes.try_emplace(name, TClassRef{name, nullptr}).first->second;
}

} // namespace

TkpIMaintenance::TkpIMaintenance()
{
    const QString name = QStringLiteral("qspResources.bpl");
    TPackageList &packages = GlobalPackageList();
    if (packages.IndexOf(name) < 0) {
        resourcePackage_ = LoadPackage(name);
        packages.AddObject(name, resourcePackage_);
    } else {
        resourcePackage_ = packages.Objects(packages.IndexOf(name));
    }
}

void TkpIMaintenance::GetObjectClassList()
{
    TCorvexPackageInterface::GetObjectClassList();
    for (const TRegistration &entry : RegistrationTable()) {
        AddObjectClass({TProductModule::Payroll}, QString::fromLatin1(entry.ObjectName),
                       entry.ClassName ? ScreenClass(entry.ClassName) : nullptr, QString::fromLatin1(entry.GroupKey),
                       entry.ObjectKinds, QString::fromLatin1(entry.Caption), entry.DisplayValue, 0);
    }
}

void TkpIMaintenance::NonVisiblePkgMessage(uint MsgId, qlonglong Param1, qlonglong Param2, bool &Handled)
{
    TCorvexPackageInterface::NonVisiblePkgMessage(MsgId, Param1, Param2, Handled);
    if (!Handled)
        Handled = DispatchMessage(MsgId, Param1, Param2);
}

bool TkpIMaintenance::CanHandleMessage(uint MsgId) const
{
    return IsDispatched(MsgId);
}

QList<TToolEntry> TkpIMaintenance::ToolEntries() const
{
    return {{QStringLiteral("mniImportBSB"), tr("Import &BSB Directory..."), &DoBSBImport},
            {QStringLiteral("mniNewTaxYear"), tr("New &Tax Year..."), &DoNewTaxYear}};
}

extern "C" {

Q_DECL_EXPORT void Initialize()
{
    if (initialised++ == 0)
        RegisterClass(kInterfaceClass);
}

Q_DECL_EXPORT void Finalize()
{
    if (initialised > 0 && --initialised == 0)
        UnRegisterClass(kInterfaceClass);
}

// The package's name and the packages that it needs, for the host's diagnostics.
Q_DECL_EXPORT const char *const *GetPackageInfoTable()
{
    static const char *const info[] = {"qpMaintenance.bpl", "corvex", "qspResources.bpl", nullptr};
    return info;
}
}
