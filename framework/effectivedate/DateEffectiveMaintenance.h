// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/effectivedate/EditingController.h"
#include "framework/effectivedate/VersionTimeline.h"
#include "framework/forms/Vpmaintenancebaseform.h"

class QCheckBox;

// The base of every list of dated records: one row a version, future ones always, past ones on request; New Effective
// Date; deletes through the kind's procedure; and the versions of the focused record over time.
class CORVEX_API TfrmDateEffectiveMaintenance : public TfrmMaintenanceBase
{
    Q_OBJECT
public:
    // `query` has the version's key as its key; its table is the master's.
    TfrmDateEffectiveMaintenance(const TMaintenanceFacts &facts, const TDateEffectiveFacts &dated,
                                 TCorvexADOQuery &query, QWidget *AOwner, bool NonModal, bool Visible);

protected:
    // What the list reads, with or without past versions.
    virtual QString FromTables(bool pastValues) const = 0;
    // Columns of the history view that VersionValue needs, besides dates and makers.
    virtual QStringList VersionColumns() const = 0;
    // A version's value in a few words, from those columns.
    virtual QString VersionValue(const TDbRows &rows, int row) const = 0;
    // Adds an effective date to the focused record.
    virtual void mniNewEffectiveDateClick() = 0;
    // The focused record's code, as the delete checks and the timeline name it.
    virtual QString FocusedCode() const { return FocusedText("cCode").trimmed(); }

    // The check of the focused version's dates and transactions: tells why it may not be deleted and gives false.
    bool CheckDatesBeforeDelete() const;
    // Deletes the focused version through the procedure. `more` adds what the kind's procedure takes besides.
    void DeleteVersion(const std::function<void(TCorvexADOStoredProc &)> &more = {});

    int MasterID() const;
    int NotesID() const override { return MasterID(); }
    int InUseID() const override { return MasterID(); }
    void FormCreate(QObject *Sender) override;
    void DoShow() override;
    void RefreshFilter() override;
    void RecordChanged(TCorvexMessage &message) override;
    void UpdateActions() override;

    QAction *mniNewEffectiveDate = nullptr;
    QAction *mniTimeline = nullptr;
    QCheckBox *chkShowPastValues = nullptr;
    TVersionTimeline *pnlTimeline = nullptr;

private:
    void OnShowPastValues();
    void OnTimeline(bool show);
    void ReadTimeline(bool again);
    void FocusVersion(int version);

    const TDateEffectiveFacts &dated_;
    int timelineMaster_ = 0;
};

// Brings the master rows of a kind up to the versions that have come into force since they were last written; once a
// day and database is enough. A database that cannot be written is left as it is. Never throws.
CORVEX_API void CarryVersionsForward(const TDateEffectiveFacts &facts);
