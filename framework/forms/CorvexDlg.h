// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QDialogButtonBox>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "framework/Export.h"
#include "framework/Kvutils.h"
#include "framework/forms/Checks.h"
#include "framework/forms/FormBuilder.h"

// What every edit dialog has: its window, OK and Cancel, its fields, the ordered checks, and one save point.
class CORVEX_API TfrmCorvexDlgBase : public QDialog
{
    Q_OBJECT
public:
    TfrmCorvexDlgBase(const char *formName, const char *caption, QWidget *owner = nullptr);
    ~TfrmCorvexDlgBase() override;

    virtual int GetCurrentHelpContext() const = 0;
    // Every way out of a dialog comes through here: asks FormCloseQuery whether it may close with this result.
    void done(int result) override;

protected:
    TFormGroup &AddGroup(const char *caption);
    // Groups added after it stand on this page of the dialog's tabs.
    void AddPage(const char *name, const char *caption);

    // Once, before the dialog is first seen; overriders call the inherited one first.
    virtual void FormShow();
    virtual void SetDialogCaption();
    // Decides whether the dialog may close with `result`, and saves when it is QDialog::Accepted.
    virtual void FormCloseQuery(int result, bool &CanClose) = 0;
    // Runs the checks of `ask` under the busy cursor, shows the text of the one that failed through `tell` and gives
    // its control the focus.
    using TShowMessage = QMessageBox::StandardButton (*)(const QString &text, QMessageBox::StandardButtons buttons);
    bool RunChecks(const std::function<void(TChecks &)> &ask, TShowMessage tell = &InfoMessage);
    // Brings a control's page to the front and focuses it.
    void FocusControl(QWidget *control);
    // Tells what somebody else did to the record meanwhile, and asks what to do about it.
    enum class TConflictAnswer { BackToEditing, KeepTheirs, WriteMine };
    TConflictAnswer AskConflict(const TRecordConflict &conflict);

    void showEvent(QShowEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

    TFormFields fields;
    QWidget *pnlClient = nullptr;
    QWidget *pnlButtons = nullptr;
    QHBoxLayout *buttonsLayout = nullptr;
    QPushButton *btnOK = nullptr;
    QPushButton *btnCancel = nullptr;

private:
    QTabWidget *tabs_ = nullptr;
    QWidget *page_ = nullptr;
    bool shown_ = false;
};

// What is particular to a record's dialog.
struct TDialogFacts
{
    const char *formName;    // the form's code name
    const char *caption;     // the form's own title, before it knows its record
    const char *addCaption;  // "Add New Bank"
    const char *editCaption; // "Edit Bank \"%s\""
    const char *copyCaption; // "Copy Bank \"%s\""
    int helpContext;
    uint changedMessage; // notification number
    const char *logKind; // kind of record for the activity log; nullptr: its saves are not logged
};

// A dialog that adds, edits or copies one record. A save is one transaction: record and children together.
class CORVEX_API TfrmCorvexDlg : public TfrmCorvexDlgBase
{
    Q_OBJECT
public:
    // `query` is a member of the descendant and outlives this base only in name: it is first used after construction.
    TfrmCorvexDlg(const TDialogFacts &facts, TCorvexADOQuery &query, QWidget *owner = nullptr);

    // Stores the id and loads the record and its children into the controls. 0: a new record.
    void SetRecordID(int id);
    int RecordID() const { return id_; }
    // With true the loaded record is saved as a new one.
    void SetDoCopyRecord(bool copy);
    bool DoCopyRecord() const { return copy_; }
    int GetCurrentHelpContext() const override { return facts_.helpContext; }

protected:
    void FormShow() override;
    void SetDialogCaption() override;
    void FormCloseQuery(int result, bool &CanClose) override;

    // Copies the record into the controls; overriders add what is not bound.
    virtual void SetEditFields();
    // Checks of the code, for a new record only.
    virtual void CheckCode(TChecks &check);
    virtual void ValidateInformation(TChecks &check);
    virtual bool PassChecks();
    // Begins append or edit and copies the controls into the record.
    virtual void SetSaveFields();
    // Allocates the key of a new record whose table has no identity; runs inside the save's transaction.
    virtual int NewKey() { return 0; }
    // Inside the save's transaction, before the record is posted: may throw TRecordConflict for rows that belong to the
    // record.
    virtual void BeforePost() {}
    // Child rows, after the record is posted and inside its transaction.
    virtual void SaveChildren() {}
    // After the commit, before the dialog closes.
    virtual void AfterSave() {}
    // Saves; gives whether the dialog may close (a conflict may send the user back to editing).
    virtual bool SaveRecord();
    // For what can only be done to a stored record: checks and saves a new one and goes on editing it under its id.
    // False when it was not saved; the dialog stays as it is.
    bool SaveAndReopen();
    // The code for captions and the log: that of the record as loaded.
    virtual QString RecordCode() const;
    // The table name and the id that the record's notes hang on; id 0: no record yet.
    virtual QString NotesTable() const { return query_.NotesTableName(); }
    virtual int NotesID() const { return id_; }
    // Asks what to do about a conflict; gives whether the dialog may close, or sets `writeMine` to save once more.
    bool ResolveConflict(const TRecordConflict &conflict, bool &writeMine);

    const TDialogFacts &facts_;
    TCorvexADOQuery &query_;
    QToolButton *btnNote = nullptr;

private:
    void btnNoteClick();
    void SetNoteSpeedBitmap();

    int id_ = 0;
    bool copy_ = false;
    QString loadedCode_;
};

// A dialog over values that have no record id of their own: single-record parameters, and rows that the caller keeps.
class CORVEX_API TfrmCorvexDlg2 : public TfrmCorvexDlgBase
{
    Q_OBJECT
public:
    TfrmCorvexDlg2(const char *formName, const char *caption, int helpContext, QWidget *owner = nullptr)
        : TfrmCorvexDlgBase(formName, caption, owner)
        , helpContext_(helpContext)
    {}
    int GetCurrentHelpContext() const override { return helpContext_; }

protected:
    void FormCloseQuery(int result, bool &CanClose) override;
    virtual void ValidateInformation(TChecks &check) = 0;
    // Writes the values; throws on failure, which is shown, and the dialog closes only when nothing was lost: it stays
    // open. After a TRecordConflict the user is asked; to write his values all the same, it is called once more after
    // Reread.
    virtual void SaveEditFields() = 0;
    // Reads the records again and leaves the controls alone; for dialogs whose SaveEditFields throws TRecordConflict.
    virtual void Reread() {}

private:
    int helpContext_;
};

// The steps of DoXxxAdd: hourglass, create, load, copy flag, cursor back, modal. `Dialog` is constructed with `args`.
template <class Dialog, class... Args> void RunRecordDialog(int Id, bool Copy, Args &&...args)
{
    TBusyCursor busy;
    Dialog dialog(std::forward<Args>(args)...);
    dialog.SetRecordID(Id);
    dialog.SetDoCopyRecord(Copy);
    busy.Restore();
    dialog.exec();
}
