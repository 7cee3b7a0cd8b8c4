// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "framework/forms/CorvexDlg.h"
#include "framework/grid/MemoryGrid.h"
#include "tax/WithholdingPanel.h"

// What is particular to the brackets of one kind of scale.
struct TBracketFacts
{
    const char *caption;   // of the group
    const char *saveFirst; // question before a bracket of an unsaved scale is added or edited
    const char *deleteQuestion;
    const char *coefficientA; // columns of the table in memory; "" when the scale has none
    const char *coefficientB;
    const char *coefficientC;
    bool helpHECS; // study loan: its bracket dialog and its way of reckoning
};

// The base of the dialogs over a scale and its brackets. Brackets live in memory until the scale is saved and are then
// rewritten, all of them.
class TfrmScaleDlg : public TfrmCorvexDlg
{
    Q_OBJECT
protected:
    TfrmScaleDlg(const TDialogFacts &facts, const TBracketFacts &brackets, TCorvexADOQuery &query);

    // Puts the group of brackets, and the panel beside it, below the groups so far. One column must be
    // "fWeeklyEarnings".
    void AddBracketsGroup(const QList<TGridColumn> &columns);
    void FormShow() override;
    void SetEditFields() override;
    void BeforePost() override;

    // The stored brackets of the scale as rows of the table in memory.
    virtual QList<QVariantMap> ReadBrackets() = 0;
    // State of the controls from the state of the record: called when shown, and when the scale was saved meanwhile.
    virtual void SetControls() {}
    // Whether what is done to brackets now would be saved.
    virtual bool BracketsEditable() const { return true; }

    TMemoryTable &Brackets() const { return grdBrackets->Table(); }
    double Bracket(int row, const char *field) const { return Brackets().Number(row, QString::fromLatin1(field)); }

    const TBracketFacts &bracketFacts_;
    TqsMemoryGrid *grdBrackets = nullptr;
    QPushButton *btnAdd = nullptr;
    QPushButton *btnEdit = nullptr;
    QPushButton *btnDelete = nullptr;
    TWithholdingPanel *grpWithholding = nullptr;

private:
    void btnAddClick();
    void btnEditClick();
    void btnDeleteClick();
    // Saves a scale that is new, after asking, and goes on editing it. False: the bracket is not to be touched.
    bool SaveFirst();
    bool AskBracket(QVariantMap &row);
    void LoadBrackets();
    QString BracketsText(const QList<QVariantMap> &rows) const;
    QList<QVariantMap> RowsInMemory() const;
    void ShowWithholding();

    QString loadedBrackets_; // as they were read, to see whether somebody changed them meanwhile
};

// The larger of the highest key that `sql` gives in its column "iMaxScaleID" and 50000, plus 1.
int MaxScaleKey(const char *sql);
