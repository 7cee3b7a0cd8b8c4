// SPDX-License-Identifier: Apache-2.0
#include "framework/forms/Vpmaintenancebaseform.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSaveFile>
#include <QScopeGuard>
#include <QToolButton>
#include <QVBoxLayout>

#include "framework/Screens.h"
#include "framework/forms/FormBuilder.h"

TfrmMaintenanceBase::TfrmMaintenanceBase(const TMaintenanceFacts &facts, TCorvexADOQuery &query, QWidget *AOwner,
                                         bool NonModal, bool Visible)
    : QDialog(AOwner)
    , facts_(facts)
    , query_(query)
    , nonModal_(NonModal)
{
    setObjectName(QString::fromLatin1(facts.formName));
    setWindowTitle(QString::fromUtf8(facts.caption));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowFlag(Qt::WindowMaximizeButtonHint, true);
    setVisible(Visible);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);

    fhMaintenance = new QFrame(this);
    fhMaintenance->setObjectName(QStringLiteral("fhMaintenance"));
    fhMaintenance->setAutoFillBackground(true);
    fhMaintenance->setBackgroundRole(QPalette::Base);
    auto *header = new QVBoxLayout(fhMaintenance);
    header->setContentsMargins(12, 8, 12, 8);
    header->setSpacing(0);
    lblHeader = new QLabel(QString::fromUtf8(facts.pluralName), fhMaintenance);
    lblHeader->setObjectName(QStringLiteral("lblHeader"));
    QFont headerFont = lblHeader->font();
    headerFont.setPointSizeF(headerFont.pointSizeF() * 1.5);
    headerFont.setBold(true);
    lblHeader->setFont(headerFont);
    lblSubHeader = new QLabel(QString::fromUtf8(facts.listName), fhMaintenance);
    lblSubHeader->setObjectName(QStringLiteral("lblSubHeader"));
    header->addWidget(lblHeader);
    header->addWidget(lblSubHeader);
    layout->addWidget(fhMaintenance);

    BuildToolbar();
    layout->addWidget(tbMaintenance);
    BuildSearchPanel();
    layout->addWidget(pnlSearch);

    grid_ = new TqsGrid(this);
    grid_->setObjectName(QString::fromLatin1(facts.gridName));
    grid_->setContextMenuPolicy(Qt::CustomContextMenu);
    layout->addWidget(grid_, 1);
    connect(grid_, &QWidget::customContextMenuRequested, this, &TfrmMaintenanceBase::ShowContextMenu);
    connect(grid_, &TqsGrid::FocusedRecordChanged, this, [this] { UpdateActions(); });
    connect(grid_, &TqsGrid::TicksChanged, this, [this] { UpdateActions(); });
    connect(grid_, &TqsGrid::RecordActivated, this, [this] {
        // In a list opened to choose one record, a double click chooses.
        if (!nonModal_ && selectedList_ && !grid_->MultiSelect())
            OnAccept();
        else
            Guarded(&TfrmMaintenanceBase::OnEdit);
    });
    connect(grid_, &TqsGrid::RecordCountChanged, this, [this](qlonglong count) {
        lblRecordCount->setText(count < 0    ? QString()
                                : count == 1 ? tr("1 record")
                                             : tr("%1 records").arg(QLocale().toString(count)));
    });
    connect(grid_, &TqsGrid::QueryFailed, this, [](const QString &message) { ErrorMessage(message); });

    pnlBelowGrid = new QWidget(this);
    pnlBelowGrid->setObjectName(QStringLiteral("pnlBelowGrid"));
    pnlBelowGrid->hide();
    layout->addWidget(pnlBelowGrid);
    BuildModalButtons();
    layout->addWidget(pnlModalButtons);
}

// The query is the descendant's and has gone before: nothing may touch it here.
TfrmMaintenanceBase::~TfrmMaintenanceBase() = default;

QAction *TfrmMaintenanceBase::AddAction(const char *name, const char *icon, const QString &caption, const QString &tip,
                                        const QList<QKeySequence> &keys, void (TfrmMaintenanceBase::*handler)())
{
    auto *action = new QAction(ScreenIcon(QString::fromLatin1(icon)), caption, this);
    action->setObjectName(QString::fromLatin1(name));
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setToolTip(keys.isEmpty() ? tip : tr("%1 (%2)").arg(tip, keys.first().toString(QKeySequence::NativeText)));
    connect(action, &QAction::triggered, this, [this, handler] { Guarded(handler); });
    addAction(action);
    return action;
}

void TfrmMaintenanceBase::Guarded(void (TfrmMaintenanceBase::*handler)())
{
    try {
        (this->*handler)();
    } catch (const std::exception &error) {
        ShowException(error);
    }
}

void TfrmMaintenanceBase::BuildToolbar()
{
    tbMaintenance = new QToolBar(this);
    tbMaintenance->setObjectName(QStringLiteral("tbMaintenance"));
    tbMaintenance->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    tbMaintenance->setMovable(false);
    tbMaintenance->setIconSize({20, 20});

    using Self = TfrmMaintenanceBase;
    mniMaintAdd = AddAction("mniMaintAdd", "add", tr("&Add"), tr("Add a record"), {Qt::Key_Insert}, &Self::OnAdd);
    mniMaintEdit = AddAction("mniMaintEdit", "edit", tr("&Edit"), tr("Edit the record; so does Enter in the list"), {},
                             &Self::OnEdit);
    mniMaintCopy = AddAction("mniMaintCopy", "copy", tr("C&opy"), tr("Add a copy of the record"),
                             {QKeySequence(Qt::CTRL | Qt::Key_D)}, &Self::OnCopy);
    mniMaintDelete = AddAction("mniMaintDelete", "delete", tr("&Delete"), tr("Delete the record"), {}, &Self::OnDelete);
    mniNotes = AddAction("mniNotes", "notes", tr("&Notes"), tr("Notes of the record"),
                         {QKeySequence(Qt::CTRL | Qt::Key_N)}, &Self::OnNotes);
    mniSearch = AddAction("mniSearch", "search", tr("&Search"), tr("Search or filter the list"),
                          {QKeySequence(Qt::CTRL | Qt::Key_F)}, &Self::OnSearch);
    mniGridSave = AddAction("mniGridSave", "save-layout", tr("Save &Layout"),
                            tr("Keep the columns as they are now for the next time"), {}, &Self::OnGridSave);
    mniRefresh =
        AddAction("mniRefresh", "refresh", tr("&Refresh"), tr("Read the list again"), {Qt::Key_F5}, &Self::OnRefresh);
    mniExport =
        AddAction("mniExport", "export", tr("E&xport"), tr("Write the list to a CSV file"), {}, &Self::OnExport);
    mniWhereUsed = AddAction("mniWhereUsed", "where-used", tr("&Where Used"), tr("What refers to the record"),
                             {QKeySequence(Qt::CTRL | Qt::Key_U)}, &Self::OnWhereUsed);
    mniCopyCells = AddAction("mniCopyCells", "copy", tr("Copy to Clip&board"), tr("Copy the row to the clipboard"), {},
                             &Self::OnCopyCells);

    tbMaintenance->addActions({mniMaintAdd, mniMaintEdit, mniMaintDelete});
    tbMaintenance->addSeparator();
    tbMaintenance->addAction(mniNotes);
    tbMaintenance->addSeparator();
    tbMaintenance->addAction(mniSearch);
    tbMaintenance->addSeparator();
    tbMaintenance->addAction(mniGridSave);
    mniFirstExtra = tbMaintenance->addSeparator();
    tbMaintenance->addActions({mniMaintCopy, mniWhereUsed, mniRefresh, mniExport});
}

void TfrmMaintenanceBase::BuildSearchPanel()
{
    pnlSearch = new QFrame(this);
    pnlSearch->setObjectName(QStringLiteral("pnlSearch"));
    auto *row = new QHBoxLayout(pnlSearch);
    row->setContentsMargins(8, 4, 8, 4);

    const auto addLabelled = [this, row](QLineEdit *&edit, const char *name, const QString &caption,
                                         const QString &hint) {
        auto *label = new QLabel(caption, pnlSearch);
        edit = new QLineEdit(pnlSearch);
        edit->setObjectName(QString::fromLatin1(name));
        edit->setPlaceholderText(hint);
        edit->setClearButtonEnabled(true);
        edit->setAccessibleName(PlainCaption(caption));
        label->setBuddy(edit);
        row->addWidget(label);
        row->addWidget(edit, 1);
    };
    addLabelled(edtSearch, "edtSearch", tr("Sea&rch:"), tr("Go to the next record that holds this text"));
    const auto addButton = [this, row](const char *name, const QString &text, const QString &tip, bool backwards) {
        auto *button = new QToolButton(pnlSearch);
        button->setObjectName(QString::fromLatin1(name));
        button->setText(text);
        button->setToolTip(tip);
        button->setAccessibleName(tip);
        button->setAutoRaise(true);
        connect(button, &QToolButton::clicked, this, [this, backwards] { OnSearchText(true, backwards); });
        row->addWidget(button);
    };
    addButton("btnSearchPrevious", QStringLiteral("▲"), tr("Previous match (Shift+F3)"), true);
    addButton("btnSearchNext", QStringLiteral("▼"), tr("Next match (F3)"), false);
    lblSearchResult = new QLabel(pnlSearch);
    lblSearchResult->setObjectName(QStringLiteral("lblSearchResult"));
    row->addWidget(lblSearchResult);
    row->addSpacing(16);
    addLabelled(edtFilter, "edtFilter", tr("F&ilter:"), tr("Show only records that hold this text"));
    row->addSpacing(16);
    lblRecordCount = new QLabel(pnlSearch);
    lblRecordCount->setObjectName(QStringLiteral("lblRecordCount"));
    row->addWidget(lblRecordCount);

    connect(edtSearch, &QLineEdit::textChanged, this, [this] { OnSearchText(false, false); });
    connect(edtFilter, &QLineEdit::textChanged, this, [this](const QString &text) { grid_->SetTextFilter(text); });
}

void TfrmMaintenanceBase::BuildModalButtons()
{
    pnlModalButtons = new QFrame(this);
    pnlModalButtons->setObjectName(QStringLiteral("pnlModalButtons"));
    auto *row = new QHBoxLayout(pnlModalButtons);
    row->addStretch();
    btnOK = new QPushButton(QStringLiteral("OK"), pnlModalButtons);
    btnOK->setObjectName(QStringLiteral("btnOK"));
    btnOK->setAutoDefault(false);
    btnCancel = new QPushButton(QStringLiteral("Cancel"), pnlModalButtons);
    btnCancel->setObjectName(QStringLiteral("btnCancel"));
    btnCancel->setAutoDefault(false);
    row->addWidget(btnOK);
    row->addWidget(btnCancel);
    connect(btnOK, &QPushButton::clicked, this, &TfrmMaintenanceBase::OnAccept);
    connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    pnlModalButtons->setVisible(!nonModal_);
}

void TfrmMaintenanceBase::Load()
{
    query_.SetSelectControlCols(grid_);
    FormCreate(this);
    mniWhereUsed->setVisible(!InUseTables().empty());
    RefreshFilter();
    if (ScreenHost())
        grid_->RestoreLayout(ScreenHost()->LoadLayout(objectName()));
    if (query_.OpenAfterLoad())
        query_.OpenList();
    loaded_ = true;
    UpdateActions();
}

void TfrmMaintenanceBase::FormCreate(QObject *)
{
    systemFunctionId_ = facts_.systemFunctionId;
}

void TfrmMaintenanceBase::SetSelectedList(TList *list)
{
    selectedList_ = list;
}

void TfrmMaintenanceBase::SetMultiSelect(bool multiSelect)
{
    grid_->SetMultiSelect(multiSelect);
    if (multiSelect && selectedList_)
        grid_->SetTickedKeys(selectedList_->Items());
    UpdateActions();
}

void TfrmMaintenanceBase::DoShow()
{
    grid_->setFocus();
}

void TfrmMaintenanceBase::ShowModal()
{
    resize(900, 600);
    exec();
}

void TfrmMaintenanceBase::ShowNonModal()
{
    setAttribute(Qt::WA_DeleteOnClose);
    if (ScreenHost()) {
        ScreenHost()->ShowScreen(this);
    } else {
        resize(900, 600);
        show();
    }
}

void TfrmMaintenanceBase::showEvent(QShowEvent *event)
{
    if (loaded_ && !event->spontaneous() && !property("shownBefore").toBool()) {
        setProperty("shownBefore", true);
        DoShow();
    }
    QDialog::showEvent(event);
}

void TfrmMaintenanceBase::closeEvent(QCloseEvent *event)
{
    // QDialog's own handler hides the window through reject(), which would keep a tab's screen alive.
    if (nonModal_)
        event->accept();
    else
        QDialog::closeEvent(event);
}

void TfrmMaintenanceBase::keyPressEvent(QKeyEvent *event)
{
    const bool searching = edtSearch->hasFocus() || edtFilter->hasFocus();
    switch (event->key()) {
    case Qt::Key_F1:
        if (ScreenHost())
            ScreenHost()->ShowHelp(GetCurrentHelpContext(), windowTitle());
        return;
    case Qt::Key_F3:
        OnSearchText(true, event->modifiers().testFlag(Qt::ShiftModifier));
        return;
    case Qt::Key_Delete:
        if (grid_->hasFocus() && mniMaintDelete->isEnabled())
            Guarded(&TfrmMaintenanceBase::OnDelete);
        return;
    case Qt::Key_Escape:
        if (searching) {
            grid_->setFocus();
            return;
        }
        if (nonModal_)
            return;
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        // Enter in the boxes moves on; only the grid's own Enter edits.
        if (edtSearch->hasFocus())
            OnSearchText(true, false);
        else if (edtFilter->hasFocus())
            grid_->setFocus();
        return;
    default:
        break;
    }
    QDialog::keyPressEvent(event);
}

void TfrmMaintenanceBase::OnAdd()
{
    StartChange([this] { mniMaintAddClick(mniMaintAdd); });
}

void TfrmMaintenanceBase::OnEdit()
{
    StartChange([this] { mniMaintEditClick(mniMaintEdit); });
}

void TfrmMaintenanceBase::OnCopy()
{
    StartChange([this] { mniMaintCopyClick(mniMaintCopy); });
}

void TfrmMaintenanceBase::StartChange(const std::function<void()> &change)
{
    startedHere_ = true;
    // A dialog that was cancelled, or could not be opened, leaves no notification behind. One that was sent is
    // delivered before this, since it was posted first.
    const auto clear = qScopeGuard([this] {
        QMetaObject::invokeMethod(
            this, [this] { startedHere_ = false; }, Qt::QueuedConnection);
    });
    change();
}

void TfrmMaintenanceBase::mniMaintAddClick(QObject *)
{
    startedHere_ = true;
}

void TfrmMaintenanceBase::mniMaintEditClick(QObject *)
{
    startedHere_ = true;
}

void TfrmMaintenanceBase::mniMaintCopyClick(QObject *)
{
    startedHere_ = true;
}

void TfrmMaintenanceBase::mniMaintDeleteClick(QObject *)
{
    if (!grid_->RecordFocused(true))
        return;
    if (!ConfMessage(DeleteQuestion()))
        return;
    if (!CheckBeforeDelete())
        return;
    DeleteRecord();
}

void TfrmMaintenanceBase::mniNotesClick(QObject *)
{
    ExecNotes();
}

void TfrmMaintenanceBase::ExecNotes()
{
    if (!grid_->RecordFocused(true))
        return;
    const int id = NotesID();
    DoNotesForm(query_.NotesTableName(), id, false, QString());
    query_.brRefresh(true, query_.KeyField(), QString::number(FocusedID()));
}

bool TfrmMaintenanceBase::CheckInUse(std::span<const TInUse> tables, const char *message, const QString &code) const
{
    for (const TInUse &use : tables) {
        const TCorvexADOQuery check(QString::fromLatin1(use.table), QString::fromLatin1(use.column));
        if (!check.RecordsExist(QString::fromLatin1(use.column), InUseID()))
            continue;
        InfoMessage(FormatText(QString::fromUtf8(message), {code, QString::fromUtf8(use.user)}));
        return false;
    }
    return true;
}

void TfrmMaintenanceBase::DeleteAndTell(const std::function<bool()> &remove)
{
    grid_->GetSiblingForDelete();
    if (!remove())
        return;
    grid_->SetSiblingAfterDelete();
    BroadcastChange(facts_.changedMessage, 0);
}

void TfrmMaintenanceBase::GlobalMessage(TCorvexMessage &message)
{
    if (message.Msg == facts_.changedMessage)
        RecordChanged(message);
}

void TfrmMaintenanceBase::RecordChanged(TCorvexMessage &message)
{
    RefreshFilter();
    if (startedHere_)
        query_.brRefresh(true, query_.KeyField(), QString::number(message.WParam));
    else
        query_.brRefresh(true, QString(), QString());
    startedHere_ = false;
    UpdateActions();
}

void TfrmMaintenanceBase::FillSelectedList()
{
    if (!selectedList_)
        return;
    selectedList_->Clear();
    if (grid_->MultiSelect()) {
        for (int key : grid_->TickedKeys())
            selectedList_->Add(key);
    } else if (grid_->RecordFocused(true)) {
        selectedList_->Add(FocusedID());
    }
}

void TfrmMaintenanceBase::UpdateActions()
{
    const bool focused = grid_->RecordFocused(true);
    for (QAction *action : {mniMaintEdit, mniMaintCopy, mniMaintDelete, mniNotes, mniWhereUsed, mniCopyCells})
        action->setEnabled(focused);
}

QString TfrmMaintenanceBase::FocusedText(const char *field) const
{
    return grid_->CurrentValue(QString::fromLatin1(field)).toString();
}

void TfrmMaintenanceBase::OnSearch()
{
    // A second call with the focus in the box puts the panel away.
    if (pnlSearch->isVisible() && edtSearch->hasFocus()) {
        grid_->setFocus();
        pnlSearch->hide();
        return;
    }
    pnlSearch->show();
    edtSearch->setFocus(Qt::ShortcutFocusReason);
    edtSearch->selectAll();
}

void TfrmMaintenanceBase::OnSearchText(bool next, bool backwards)
{
    const QString text = edtSearch->text();
    if (text.isEmpty()) {
        lblSearchResult->clear();
        return;
    }
    lblSearchResult->setText(grid_->Search(text, next, backwards) ? QString() : tr("Not found"));
}

void TfrmMaintenanceBase::OnGridSave()
{
    if (ScreenHost())
        ScreenHost()->SaveLayout(objectName(), grid_->SaveLayout());
}

void TfrmMaintenanceBase::OnRefresh()
{
    RefreshFilter();
    query_.brRefresh(true, QString(), QString());
    UpdateActions();
}

void TfrmMaintenanceBase::OnExport()
{
    const QString name = AskSaveFile(tr("Export List"), QString::fromUtf8(facts_.listName) + QStringLiteral(".csv"),
                                     tr("CSV files (*.csv)"));
    if (name.isEmpty())
        return;
    TBusyCursor busy;
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly)) {
        ErrorMessage(tr("The file cannot be written: %1").arg(file.errorString()));
        return;
    }
    grid_->ExportCsv(file);
    if (!file.commit())
        ErrorMessage(tr("The file cannot be written: %1").arg(file.errorString()));
}

void TfrmMaintenanceBase::OnCopyCells()
{
    grid_->CopyToClipboard();
}

void TfrmMaintenanceBase::OnWhereUsed()
{
    if (grid_->RecordFocused(true))
        ShowWhereUsed(this, FocusedText("cCode"), InUseTables(), InUseID());
}

void TfrmMaintenanceBase::OnAccept()
{
    FillSelectedList();
    accept();
}

void TfrmMaintenanceBase::ShowContextMenu(const QPoint &at)
{
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("popMaintenance"));
    menu.addActions(tbMaintenance->actions());
    menu.insertAction(mniMaintDelete, mniMaintCopy);
    menu.addAction(mniCopyCells);
    menu.exec(grid_->viewport()->mapToGlobal(at));
}
