// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAction>
#include <QDialog>
#include <QFrame>
#include <QLabel>
#include <QToolBar>

#include <span>

#include "framework/Export.h"
#include "framework/Kvglobal.h"
#include "framework/Kvutils.h"
#include "framework/data/CorvexADOQuery.h"
#include "framework/forms/WhereUsed.h"
#include "framework/grid/qsGrid.h"

class QLineEdit;
class QMenu;
class QPushButton;

// What is particular to a list screen before any of its code runs.
struct TMaintenanceFacts
{
    const char *formName;   // the form's code name; also the name its layout is kept under
    const char *caption;    // window and tab title
    const char *pluralName; // header band: "Banks"
    const char *listName;   // header band: "Bank List"
    const char *gridName;
    int systemFunctionId;
    int helpContext;
    uint changedMessage; // notification number
};

// The base of every list screen: header band, toolbar, grid, search, and for modal use an OK/Cancel panel.
class CORVEX_API TfrmMaintenanceBase : public QDialog, public TGlobalListener
{
    Q_OBJECT
    Q_PROPERTY(int systemFunctionId READ SystemFunctionId CONSTANT)

public:
    // `NonModal` true makes a screen for the host's tabs that deletes itself when it is closed. `query` is a member of
    // the descendant; it is first used in Load.
    TfrmMaintenanceBase(const TMaintenanceFacts &facts, TCorvexADOQuery &query, QWidget *AOwner, bool NonModal,
                        bool Visible);
    ~TfrmMaintenanceBase() override;

    // Sets the system function id, restores the saved layout and opens the query. Once, after construction.
    void Load();
    // The list that OK fills with the ids chosen; not owned, may be nullptr.
    void SetSelectedList(TList *list);
    void SetMultiSelect(bool multiSelect);
    // Once, before the screen is first seen; overriders call the inherited one first.
    virtual void DoShow();
    // Shows modally (returns when closed) or hands the screen to the host.
    void ShowModal();
    void ShowNonModal();

    int SystemFunctionId() const { return systemFunctionId_; }
    virtual int GetCurrentHelpContext() const { return facts_.helpContext; }
    void GlobalMessage(TCorvexMessage &message) override;
    TqsGrid *Grid() const { return grid_; }

protected:
    virtual void FormCreate(QObject *Sender);

    // ---- the toolbar's handlers. Overriders of Add, Edit and Copy call the inherited one first.
    virtual void mniMaintAddClick(QObject *Sender);
    virtual void mniMaintEditClick(QObject *Sender);
    virtual void mniMaintCopyClick(QObject *Sender);
    virtual void mniMaintDeleteClick(QObject *Sender);
    virtual void mniNotesClick(QObject *Sender);
    void ExecNotes();

    // ---- the delete flow: question, in-use test, delete
    virtual QString DeleteQuestion() const = 0;
    virtual bool CheckBeforeDelete() { return true; }
    virtual void DeleteRecord() = 0;
    // The tables that may refer to a record of this screen, in the order in which they are asked before a delete. A
    // screen that has any offers Where Used.
    virtual std::span<const TInUse> InUseTables() const { return {}; }
    // The id by which they refer to the focused record.
    virtual int InUseID() const { return FocusedID(); }
    // Asks the tables in order; the first that refers to the record is told with `message` ("%s": code, "%s": user) and
    // gives false.
    bool CheckInUse(std::span<const TInUse> tables, const char *message, const QString &code) const;
    // DeleteRecord's frame: remembers the neighbour, runs `remove`, and on true focuses the neighbour and broadcasts id
    // 0.
    void DeleteAndTell(const std::function<bool()> &remove);

    // The change notification of this screen's records: refresh, and focus the record when the change started here.
    virtual void RecordChanged(TCorvexMessage &message);
    // Runs what may change a record; when a notification comes of it, this screen focuses that record.
    void StartChange(const std::function<void()> &change);

    // Before a notification re-reads: the screen's filter as it must be now.
    virtual void RefreshFilter() {}

    // What OK of a modal screen puts into the selected list.
    virtual void FillSelectedList();

    // State of all actions from the state of the screen, in one place; overriders call the inherited one first.
    virtual void UpdateActions();

    // The id that a record's notes hang on; the focused row's key unless the screen says otherwise.
    virtual int NotesID() const { return FocusedID(); }

    int FocusedID() const { return grid_->FocusedKey(); }
    QString FocusedText(const char *field) const;

    const TMaintenanceFacts &facts_;
    TCorvexADOQuery &query_;

    QFrame *fhMaintenance = nullptr;
    QLabel *lblHeader = nullptr;
    QLabel *lblSubHeader = nullptr;
    QToolBar *tbMaintenance = nullptr;
    QAction *mniMaintAdd = nullptr;
    QAction *mniMaintEdit = nullptr;
    QAction *mniMaintCopy = nullptr;
    QAction *mniMaintDelete = nullptr;
    QAction *mniNotes = nullptr;
    QAction *mniSearch = nullptr;
    QAction *mniGridSave = nullptr;
    QAction *mniRefresh = nullptr;
    QAction *mniExport = nullptr;
    QAction *mniCopyCells = nullptr;
    QAction *mniWhereUsed = nullptr;  // there when InUseTables names any
    QAction *mniFirstExtra = nullptr; // screens insert their own actions before this one
    QFrame *pnlSearch = nullptr;
    QLineEdit *edtSearch = nullptr;
    QLineEdit *edtFilter = nullptr;
    QLabel *lblSearchResult = nullptr;
    QLabel *lblRecordCount = nullptr;
    QFrame *pnlModalButtons = nullptr;
    QPushButton *btnOK = nullptr;
    QPushButton *btnCancel = nullptr;
    QWidget *pnlBelowGrid = nullptr; // for what a screen shows below its list; hidden while empty

    void showEvent(QShowEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void BuildToolbar();
    void BuildSearchPanel();
    void BuildModalButtons();
    QAction *AddAction(const char *name, const char *icon, const QString &caption, const QString &tip,
                       const QList<QKeySequence> &keys, void (TfrmMaintenanceBase::*handler)());
    // What the user asks for ends here when it fails: an error is shown, and never passes through the toolkit.
    void Guarded(void (TfrmMaintenanceBase::*handler)());
    void OnAdd();
    void OnEdit();
    void OnCopy();
    void OnDelete() { mniMaintDeleteClick(mniMaintDelete); }
    void OnNotes() { mniNotesClick(mniNotes); }
    void OnSearch();
    void OnGridSave();
    void OnRefresh();
    void OnExport();
    void OnCopyCells();
    void OnWhereUsed();
    void OnSearchText(bool next, bool backwards);
    void OnAccept();
    void ShowContextMenu(const QPoint &at);

    TqsGrid *grid_ = nullptr;
    TList *selectedList_ = nullptr;
    int systemFunctionId_ = 0;
    bool nonModal_ = false;
    bool loaded_ = false;
    // The change now under way was started from this screen: its notification focuses the saved record.
    bool startedHere_ = false;
};

// The steps of DoXxxMaintenance. `Form` has the constructors (owner) and (owner, bool, bool); `args` are handed to them
// behind.
template <class Form, class... Args>
void RunMaintenance(bool Modal, TList *SelectedList, bool MultiSelect, Args &&...args)
{
    TBusyCursor busy;
    if (Modal) {
        Form form(nullptr, false, false, std::forward<Args>(args)...);
        form.Load();
        form.SetSelectedList(SelectedList);
        form.SetMultiSelect(MultiSelect);
        busy.Restore();
        form.ShowModal();
        return;
    }
    auto form = std::make_unique<Form>(nullptr, true, false, std::forward<Args>(args)...);
    form->Load();
    form->SetSelectedList(SelectedList);
    form->SetMultiSelect(MultiSelect);
    form.release()->ShowNonModal();
    busy.Restore();
}
