// SPDX-License-Identifier: Apache-2.0
#include "framework/forms/CorvexDlg.h"

#include <QKeyEvent>
#include <QPushButton>

#include <utility>

#include "framework/Kvglobal.h"
#include "framework/Screens.h"

namespace {

QString ValueText(const QVariant &value)
{
    if (!value.isValid() || value.isNull())
        return QStringLiteral("(none)");
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("Yes") : QStringLiteral("No");
    if (value.typeId() == QMetaType::QDateTime)
        return QLocale().toString(value.toDate(), QLocale::ShortFormat);
    return QLatin1Char('"') + value.toString() + QLatin1Char('"');
}

} // namespace

TfrmCorvexDlgBase::TfrmCorvexDlgBase(const char *formName, const char *caption, QWidget *owner)
    : QDialog(owner)
{
    setObjectName(QString::fromLatin1(formName));
    setWindowTitle(QString::fromUtf8(caption));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setModal(true);

    auto *layout = new QVBoxLayout(this);
    pnlClient = new QWidget(this);
    pnlClient->setObjectName(QStringLiteral("pnlClient"));
    auto *client = new QVBoxLayout(pnlClient);
    client->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(pnlClient, 1);

    pnlButtons = new QWidget(this);
    pnlButtons->setObjectName(QStringLiteral("pnlButtons"));
    buttonsLayout = new QHBoxLayout(pnlButtons);
    buttonsLayout->setContentsMargins(0, 0, 0, 0);
    buttonsLayout->addStretch();
    btnOK = new QPushButton(QStringLiteral("OK"), pnlButtons);
    btnOK->setObjectName(QStringLiteral("btnOK"));
    btnOK->setDefault(true);
    btnCancel = new QPushButton(QStringLiteral("Cancel"), pnlButtons);
    btnCancel->setObjectName(QStringLiteral("btnCancel"));
    btnCancel->setAutoDefault(false);
    buttonsLayout->addWidget(btnOK);
    buttonsLayout->addWidget(btnCancel);
    layout->addWidget(pnlButtons);
    connect(btnOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    page_ = pnlClient;
}

TfrmCorvexDlgBase::~TfrmCorvexDlgBase() = default;

TFormGroup &TfrmCorvexDlgBase::AddGroup(const char *caption)
{
    return fields.AddGroup(page_, QString::fromUtf8(caption));
}

void TfrmCorvexDlgBase::AddPage(const char *name, const char *caption)
{
    if (!tabs_) {
        tabs_ = new QTabWidget(pnlClient);
        tabs_->setObjectName(QStringLiteral("pgcMain"));
        pnlClient->layout()->addWidget(tabs_);
    }
    page_ = new QWidget(tabs_);
    page_->setObjectName(QString::fromLatin1(name));
    new QVBoxLayout(page_);
    tabs_->addTab(page_, QString::fromUtf8(caption));
}

void TfrmCorvexDlgBase::FormShow()
{
    fields.SetTabOrder();
    fields.AlignGroups();
}

void TfrmCorvexDlgBase::SetDialogCaption() {}

void TfrmCorvexDlgBase::done(int result)
{
    bool canClose = true;
    try {
        FormCloseQuery(result, canClose);
    } catch (const std::exception &error) {
        // What the user typed is worth more than a closed window.
        canClose = result != QDialog::Accepted;
        ShowException(error);
    }
    if (canClose)
        QDialog::done(result);
}

bool TfrmCorvexDlgBase::RunChecks(const std::function<void(TChecks &)> &ask, TShowMessage tell)
{
    TChecks checks;
    {
        TBusyCursor busy;
        ask(checks);
    }
    if (!checks.Failed())
        return true;
    FocusControl(checks.Control());
    tell(checks.ErrorText(), QMessageBox::Ok);
    FocusControl(checks.Control());
    return false;
}

void TfrmCorvexDlgBase::FocusControl(QWidget *control)
{
    if (!control)
        return;
    if (tabs_) {
        for (int i = 0; i < tabs_->count(); ++i) {
            if (tabs_->widget(i)->isAncestorOf(control))
                tabs_->setCurrentIndex(i);
        }
    }
    control->setFocus(Qt::OtherFocusReason);
    if (auto *edit = qobject_cast<QLineEdit *>(control))
        edit->selectAll();
}

TfrmCorvexDlgBase::TConflictAnswer TfrmCorvexDlgBase::AskConflict(const TRecordConflict &conflict)
{
    QString text;
    QString details;
    if (conflict.gone) {
        text = tr("Another user has deleted this record while you were editing it.");
    } else {
        text = tr("Another user has changed this record while you were editing it.");
        for (const TRecordConflict::Field &field : conflict.fields) {
            const TFieldBinding *binding = fields.FindField(field.field);
            details += tr("%1: was %2, is now %3, yours is %4\n")
                           .arg(binding ? binding->caption : field.field, ValueText(field.read),
                                ValueText(field.theirs), ValueText(field.mine));
        }
    }
    const QStringList answers{tr("&Back to Editing"), conflict.gone ? tr("&Leave It Deleted") : tr("&Keep the Other's"),
                              conflict.gone ? tr("&Save Mine as New") : tr("&Write Mine")};
    return TConflictAnswer(ChoiceMessage(text, details, answers, 0));
}

void TfrmCorvexDlgBase::showEvent(QShowEvent *event)
{
    if (!shown_) {
        shown_ = true;
        SetDialogCaption();
        FormShow();
    }
    QDialog::showEvent(event);
}

void TfrmCorvexDlgBase::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_F1 && ScreenHost()) {
        ScreenHost()->ShowHelp(GetCurrentHelpContext(), windowTitle());
        return;
    }
    QDialog::keyPressEvent(event);
}

TfrmCorvexDlg::TfrmCorvexDlg(const TDialogFacts &facts, TCorvexADOQuery &query, QWidget *owner)
    : TfrmCorvexDlgBase(facts.formName, facts.caption, owner)
    , facts_(facts)
    , query_(query)
{
    btnNote = new QToolButton(pnlButtons);
    btnNote->setObjectName(QStringLiteral("btnNote"));
    btnNote->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    // No access key: the letters belong to the fields.
    btnNote->setText(QStringLiteral("Notes"));
    btnNote->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    buttonsLayout->insertWidget(0, btnNote);
    connect(btnNote, &QToolButton::clicked, this, &TfrmCorvexDlg::btnNoteClick);
}

void TfrmCorvexDlg::SetRecordID(int id)
{
    id_ = id;
    query_.SelectRecords(query_.KeyField(), id, false);
    if (id != 0 && query_.IsEmpty())
        throw TDbError(TDbError::Kind::Other, 0, tr("The record no longer exists: another user has deleted it."));
    SetEditFields();
    loadedCode_ = RecordCode();
}

void TfrmCorvexDlg::SetDoCopyRecord(bool copy)
{
    copy_ = copy;
    if (copy)
        id_ = 0;
}

QString TfrmCorvexDlg::RecordCode() const
{
    const TColumnBase *code = query_.FindColumn(u"cCode");
    return code && !query_.IsEmpty() ? code->Variant().toString().trimmed() : QString();
}

void TfrmCorvexDlg::SetDialogCaption()
{
    const char *pattern = id_ != 0 ? facts_.editCaption : copy_ ? facts_.copyCaption : facts_.addCaption;
    setWindowTitle(FormatText(QString::fromUtf8(pattern), {loadedCode_}));
    TfrmCorvexDlgBase::SetDialogCaption();
}

void TfrmCorvexDlg::FormShow()
{
    TfrmCorvexDlgBase::FormShow();
    SetNoteSpeedBitmap();
}

void TfrmCorvexDlg::SetEditFields()
{
    fields.LoadAll();
}

void TfrmCorvexDlg::CheckCode(TChecks &) {}

void TfrmCorvexDlg::ValidateInformation(TChecks &) {}

bool TfrmCorvexDlg::PassChecks()
{
    return RunChecks([this](TChecks &check) {
        if (id_ == 0)
            CheckCode(check);
        if (!check.Failed())
            ValidateInformation(check);
    });
}

void TfrmCorvexDlg::SetSaveFields()
{
    if (id_ == 0)
        query_.brAppend(true);
    else
        query_.brEdit(true);
    fields.SaveAll();
}

void TfrmCorvexDlg::FormCloseQuery(int result, bool &CanClose)
{
    if (result != QDialog::Accepted) {
        query_.Cancel();
        return;
    }
    CanClose = PassChecks() && SaveRecord();
}

bool TfrmCorvexDlg::SaveRecord()
{
    const bool added = id_ == 0;
    SetSaveFields();
    for (;;) {
        try {
            TDbTransaction transaction(MainConnection());
            if (query_.IsAppending()) {
                if (const int key = NewKey())
                    query_.SetKeyValue(key);
            }
            BeforePost();
            query_.Post();
            SaveChildren();
            if (facts_.logKind) {
                LogActivity(QString::fromUtf8(facts_.logKind), RecordCode(),
                            added ? QStringLiteral("Added") : QStringLiteral("Changed"));
            }
            transaction.Commit();
            break;
        } catch (const TRecordConflict &conflict) {
            bool writeMine = false;
            const bool close = ResolveConflict(conflict, writeMine);
            if (!writeMine) {
                query_.Cancel();
                return close;
            }
            query_.AcceptTheirsAsRead(conflict);
        } catch (const TDbError &error) {
            // The record was not written: its edits are dropped and the dialog closes behind the server's message.
            query_.Cancel();
            ShowException(error);
            return true;
        }
    }
    id_ = query_.KeyValue();
    BroadcastChange(facts_.changedMessage, id_);
    AfterSave();
    return true;
}

bool TfrmCorvexDlg::SaveAndReopen()
{
    if (!PassChecks() || !SaveRecord() || id_ == 0)
        return false;
    copy_ = false;
    SetRecordID(id_);
    query_.brEdit(true);
    SetDialogCaption();
    SetNoteSpeedBitmap();
    return true;
}

bool TfrmCorvexDlg::ResolveConflict(const TRecordConflict &conflict, bool &writeMine)
{
    switch (AskConflict(conflict)) {
    case TConflictAnswer::KeepTheirs:
        // Every list then shows what stands in the database.
        BroadcastChange(facts_.changedMessage, conflict.gone ? 0 : id_);
        return true;
    case TConflictAnswer::WriteMine:
        writeMine = true;
        return true;
    default:
        return false;
    }
}

void TfrmCorvexDlg::btnNoteClick()
{
    if (NotesID() == 0)
        return;
    DoNotesForm(NotesTable(), NotesID(), true, QString());
    SetNoteSpeedBitmap();
}

void TfrmCorvexDlg::SetNoteSpeedBitmap()
{
    // 0: no record, 1: a record without a note, 2: a record with one
    const int state = NotesID() == 0 ? 0 : NoteExists(NotesTable(), NotesID()) ? 2 : 1;
    static const char *const icons[] = {"notes-off", "notes-none", "notes"};
    static const char *const tips[] = {"Notes can be added once the record is saved", "No note yet", "Has a note"};
    btnNote->setProperty("state", state);
    btnNote->setEnabled(state != 0);
    btnNote->setIcon(ScreenIcon(QString::fromLatin1(icons[state])));
    btnNote->setToolTip(tr(tips[state]));
}

void TfrmCorvexDlg2::FormCloseQuery(int result, bool &CanClose)
{
    if (result != QDialog::Accepted)
        return;
    CanClose = RunChecks([this](TChecks &check) { ValidateInformation(check); });
    bool save = CanClose;
    while (std::exchange(save, false)) {
        try {
            SaveEditFields();
        } catch (const TRecordConflict &conflict) {
            const TConflictAnswer answer = AskConflict(conflict);
            CanClose = answer != TConflictAnswer::BackToEditing;
            save = answer == TConflictAnswer::WriteMine;
            if (!save)
                continue;
            Reread();
            // What was not changed here takes the other's value.
            for (const TRecordConflict::Field &field : conflict.fields) {
                const TFieldBinding *binding = fields.FindField(field.field);
                if (binding && binding->load && field.mine == field.read)
                    binding->load();
            }
        }
    }
}
