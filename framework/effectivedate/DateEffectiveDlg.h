// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>

#include "framework/effectivedate/EditingController.h"
#include "framework/forms/CorvexDlg.h"

// A dialog over one version of a dated record. Its record id is the version's; the fields are bound to a record that
// reads the version. A save writes the values into the master row and lets the kind's procedure make or change the
// version from them.
class CORVEX_API TfrmDateEffectiveDlg : public TfrmCorvexDlg
{
    Q_OBJECT
public:
    // `version` reads versions (its key is the version's, and it has the master's key as a column), `master` writes the
    // master row; columns of the same name are copied from one to the other. Both are members of the descendant.
    TfrmDateEffectiveDlg(const TDialogFacts &facts, const TDateEffectiveFacts &dated, TCorvexADOQuery &version,
                         TCorvexADOQuery &master);

    // True before the dialog is shown: what is saved is a new version of the record, with an effective date of its own.
    void SetAllowEffectiveDateChange(bool allow) { FAllowEffectiveDateChange = allow; }

protected:
    // The group that every dated record ends with: date, change reason, and what the rules say.
    void AddEffectiveDateGroup(Column<QDate> &effectiveDate, Column<int> &changeReason);

    bool Adding() const { return RecordID() == 0; } // a new record, or a copy as one
    bool AddsVersion() const { return !Adding() && FAllowEffectiveDateChange; }
    bool Editing() const { return !Adding() && !FAllowEffectiveDateChange; }
    int MasterID() const { return masterID_; } // 0 when adding
    const TDateBasedEditingController::TMayChange &MayChange() const { return mayChange_; }

    // Whether something that pays differs from the version as loaded.
    virtual bool ValuesChange() const = 0;
    // The award version that the saved version belongs to; 0: none.
    virtual int AwardTDID() const { return 0; }

    void SetEditFields() override;
    // Overriders call the inherited one first, then lock what MayChange says.
    void FormShow() override;
    // The check of the effective date, for the end of the descendant's checks: not asked of a new record.
    void CheckDates(TChecks &check) const;
    // The master row that a save wrote; for SaveChildren, which runs after it was posted and before its version is
    // written.
    int SavedMasterID() const { return master_.KeyValue(); }
    // Whether rows saved by SaveChildren differ from what was loaded.
    virtual bool ChildrenModified() const { return false; }
    bool SaveRecord() override;
    QString NotesTable() const override { return QString::fromLatin1(dated_.masterTable).toUpper(); }
    int NotesID() const override { return Adding() ? 0 : masterID_; }
    // After a save that was not refused: the version begins before the current period, which backpay allows.
    virtual void VersionBackDated() {}

    bool FAllowEffectiveDateChange = false;
    QDate FEndDate; // of the version as loaded; invalid: open
    TqsDateEdit *edtEffectiveDate = nullptr;
    TqsLookupCombo *edtChangeReason = nullptr;
    QLabel *lblVersion = nullptr;
    QLabel *lblStatus = nullptr;

private:
    std::unique_ptr<TDateBasedEditingController> EditingController() const;
    void WriteMaster();
    QString SavedCode() const;
    int WriteVersion(int &version, QString &message);

    const TDateEffectiveFacts &dated_;
    TCorvexADOQuery &master_;
    int masterID_ = 0;
    std::unique_ptr<TDateBasedEditingController> FEditingController;
    TDateBasedEditingController::TMayChange mayChange_;
};
