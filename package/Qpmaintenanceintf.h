// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/Corvexpackageintf.h"
#include "framework/Corvexpackagemanager.h"

// The package's face to its host.
class TkpIMaintenance final : public TCorvexPackageInterface
{
    Q_OBJECT
public:
    // Obtains the shared resource package; throws std::runtime_error when it cannot be loaded.
    TkpIMaintenance();

    void GetObjectClassList() override;
    void NonVisiblePkgMessage(uint MsgId, qlonglong Param1, qlonglong Param2, bool &Handled) override;
    bool CanHandleMessage(uint MsgId) const override;
    QList<TToolEntry> ToolEntries() const override;

private:
    TModuleHandle resourcePackage_; // shared with every other package and never unloaded by this one
};
