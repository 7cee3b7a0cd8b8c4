// SPDX-License-Identifier: Apache-2.0
#include "framework/effectivedate/DateEffectiveDlg.h"

#include "framework/Ipglobal.h"
#include "framework/Kvglobal.h"

namespace {

const QDate kLastDate(2099, 12, 31);

enum ReturnValue { Done = 0, DoneWithMessage = 1, Refused = 2 };
enum ChangeType { AddVersion = 1, EditVersion = 2 };

} // namespace

TfrmDateEffectiveDlg::TfrmDateEffectiveDlg(const TDialogFacts &facts, const TDateEffectiveFacts &dated,
                                           TCorvexADOQuery &version, TCorvexADOQuery &master)
    : TfrmCorvexDlg(facts, version)
    , dated_(dated)
    , master_(master)
{}

void TfrmDateEffectiveDlg::AddEffectiveDateGroup(Column<QDate> &effectiveDate, Column<int> &changeReason)
{
    AddGroup("Effective Date")
        .Date(edtEffectiveDate, "edtEffectiveDate", "&Effective Date", effectiveDate, false)
        .Lookup(edtChangeReason, "edtChangeReason", "Change &Reason", changeReason, ChangeReasonLookup())
        .Note(lblVersion, "lblVersion", QString())
        .Note(lblStatus, "lblStatus", QString());
    edtEffectiveDate->DateBox()->setMaximumDate(kLastDate);
}

std::unique_ptr<TDateBasedEditingController> TfrmDateEffectiveDlg::EditingController() const
{
    return std::make_unique<TDateBasedEditingController>(dated_, MasterID(), RecordID(), AddsVersion());
}

void TfrmDateEffectiveDlg::SetEditFields()
{
    TfrmCorvexDlg::SetEditFields();
    masterID_ = 0;
    if (!query_.IsEmpty())
        masterID_ = query_.FindColumn(QString::fromLatin1(dated_.masterKey))->Variant().toInt();
}

void TfrmDateEffectiveDlg::FormShow()
{
    TfrmCorvexDlg::FormShow();
    if (Adding())
        masterID_ = 0;
    FEditingController = EditingController();
    FEndDate = FEditingController->End();
    if (Adding() && !DoCopyRecord() && FEditingController->Period().start.isValid())
        edtEffectiveDate->SetDate(FEditingController->Period().start);
    if (!Adding())
        mayChange_ = FEditingController->MayChange();
    fields.SetEnabled(edtEffectiveDate, mayChange_.effectiveDate);
    lblVersion->setText(
        Editing() ? tr("In force from %1 to %2.").arg(MessageDate(FEditingController->Start()), EndDateText(FEndDate))
                  : QString());
    lblVersion->setVisible(!lblVersion->text().isEmpty());
    lblStatus->setText(mayChange_.status);
    lblStatus->setVisible(!mayChange_.status.isEmpty());
}

void TfrmDateEffectiveDlg::CheckDates(TChecks &check) const
{
    if (check.Failed() || Adding())
        return;
    const QString text =
        EditingController()->CheckBeforeSave(RecordCode(), edtEffectiveDate->Date(), AddsVersion() || ValuesChange());
    check(edtEffectiveDate, text.isEmpty(), text);
}

// The master row is read again: between two dialogs it carries whatever version is in force.
void TfrmDateEffectiveDlg::WriteMaster()
{
    master_.SelectRecords(master_.KeyField(), masterID_, false);
    if (masterID_ != 0 && master_.IsEmpty() && !query_.IsAppending()) {
        TRecordConflict conflict;
        conflict.gone = true;
        throw conflict;
    }
    if (master_.IsEmpty())
        master_.brAppend(true);
    else
        master_.brEdit(true);
    for (TColumnBase *column : master_.Columns()) {
        if (const TColumnBase *source = query_.FindColumn(column->Field()))
            column->SetVariant(source->Variant());
    }
    master_.Post();
}

QString TfrmDateEffectiveDlg::SavedCode() const
{
    const TColumnBase *code = query_.FindColumn(u"cCode"); // which is being edited
    return code ? code->Variant().toString().trimmed() : QString();
}

int TfrmDateEffectiveDlg::WriteVersion(int &version, QString &message)
{
    TCorvexADOStoredProc update(QString::fromLatin1(dated_.procedure));
    update.SetParam(QString::fromLatin1(dated_.masterParam), master_.KeyValue());
    update.SetInOutParam(QString::fromLatin1(dated_.versionParam), version);
    update.SetParam(QStringLiteral("@dEffectiveDate"), edtEffectiveDate->Date());
    update.SetParam(QStringLiteral("@iAgentID"), CurrentAgentID());
    const int reason = edtChangeReason->Key();
    update.SetParam(QStringLiteral("@iChangeReasonID"),
                    reason > 0 ? QVariant(reason) : QVariant(QMetaType(QMetaType::Int)));
    // A version that somebody deleted meanwhile comes back as a new one.
    update.SetParam(QStringLiteral("@iChangeType"), Editing() && !query_.IsAppending() ? EditVersion : AddVersion);
    if (dated_.hasAward)
        update.SetParam(QStringLiteral("@iAwardTDID"), AwardTDID());
    update.SetInOutParam(QStringLiteral("@cMessage"), QStringLiteral(""));
    update.kvExecProc(false);
    version = update.Param(QString::fromLatin1(dated_.versionParam)).toInt();
    message = update.Param(QStringLiteral("@cMessage")).toString();
    return update.ReturnValue();
}

bool TfrmDateEffectiveDlg::SaveRecord()
{
    SetSaveFields();
    const bool backDates = !Adding() && EditingController()->BackDates(edtEffectiveDate->Date());
    int result = Done;
    int version = 0;
    QString message;
    for (;;) {
        try {
            TDbTransaction transaction(MainConnection());
            version = RecordID();
            if (Editing())
                query_.CheckUnchanged();
            // An edit that changed nothing leaves no trace on the version.
            if (!Editing() || query_.IsModified() || ChildrenModified()) {
                WriteMaster();
                SaveChildren();
                result = WriteVersion(version, message);
            }
            if (facts_.logKind && result != Refused)
                LogActivity(QString::fromUtf8(facts_.logKind), SavedCode(),
                            Adding() ? QStringLiteral("Added") : QStringLiteral("Changed"));
            transaction.Commit();
            break;
        } catch (const TRecordConflict &conflict) {
            master_.Cancel();
            bool writeMine = false;
            const bool close = ResolveConflict(conflict, writeMine);
            if (!writeMine) {
                query_.Cancel();
                return close;
            }
            query_.AcceptTheirsAsRead(conflict);
        } catch (const std::exception &error) {
            master_.Cancel();
            query_.Cancel();
            const auto *database = dynamic_cast<const TDbError *>(&error);
            ErrorMessage(QString::fromUtf8(dated_.errorText) +
                         (database ? database->message : QString::fromUtf8(error.what())));
            return true;
        }
    }
    query_.Cancel();
    if (result != Refused)
        BroadcastChange(facts_.changedMessage, version);
    ReturnMessage(QString::fromUtf8(dated_.saveTitle), result, message);
    if (result == Refused)
        return false;
    if (backDates)
        VersionBackDated();
    return true;
}
