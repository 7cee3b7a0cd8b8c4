// SPDX-License-Identifier: Apache-2.0
#include "framework/effectivedate/DateEffectiveMaintenance.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QHash>
#include <QLineEdit>
#include <QLoggingCategory>

#include "framework/Screens.h"

namespace {

Q_LOGGING_CATEGORY(lcEffectiveDate, "corvex.effectivedate")

enum ReturnValue { Refused = 2 };
enum ChangeType { DeleteVersionType = 3 };

QString Name(const char *name)
{
    return QString::fromLatin1(name);
}

} // namespace

void CarryVersionsForward(const TDateEffectiveFacts &facts)
{
    static QHash<QString, QDate> carried;
    const QDate today = QDate::currentDate();
    try {
        QDate &last = carried[Name(facts.masterTable) + MainConnection().Description()];
        if (last == today)
            return;
        const bool stale = !MainConnection()
                                .Select(QStringLiteral("select top 1 M.%4 from %1 M inner join %2 T on T.%3 = M.%4 "
                                                       "where T.iChangeType <> 3 and T.dEffectiveDate <= :today "
                                                       "and (T.dEndDate is null or T.dEndDate >= :today) "
                                                       "and T.dEffectiveDate <> M.dEffectiveDate order by M.%4")
                                            .arg(Name(facts.masterTable), Name(facts.versionTable),
                                                 Name(facts.masterColumn), Name(facts.masterKey)),
                                        {{QStringLiteral("today"), today}})
                                .isEmpty();
        if (stale)
            TCorvexADOStoredProc(QStringLiteral("_ipspCarryAllVersions")).kvExecProc(false);
        last = today;
    } catch (const TDbError &error) {
        qCWarning(lcEffectiveDate).noquote() << "master rows not carried forward:" << error.message;
    }
}

TfrmDateEffectiveMaintenance::TfrmDateEffectiveMaintenance(const TMaintenanceFacts &facts,
                                                           const TDateEffectiveFacts &dated, TCorvexADOQuery &query,
                                                           QWidget *AOwner, bool NonModal, bool Visible)
    : TfrmMaintenanceBase(facts, query, AOwner, NonModal, Visible)
    , dated_(dated)
{
    mniNewEffectiveDate = new QAction(ScreenIcon(QStringLiteral("new-effective-date")), tr("New Effective Date"), this);
    mniNewEffectiveDate->setObjectName(QStringLiteral("mniNewEffectiveDate"));
    mniNewEffectiveDate->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    mniNewEffectiveDate->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    mniNewEffectiveDate->setToolTip(tr("Add a version of the record with a date of its own (%1)")
                                        .arg(mniNewEffectiveDate->shortcut().toString(QKeySequence::NativeText)));
    addAction(mniNewEffectiveDate);
    connect(mniNewEffectiveDate, &QAction::triggered, this, [this] {
        if (Grid()->RecordFocused(true))
            StartChange([this] { mniNewEffectiveDateClick(); });
    });
    mniTimeline = new QAction(ScreenIcon(QStringLiteral("timeline")), tr("&Timeline"), this);
    mniTimeline->setObjectName(QStringLiteral("mniTimeline"));
    mniTimeline->setCheckable(true);
    mniTimeline->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
    mniTimeline->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    mniTimeline->setToolTip(tr("Show the versions of the record over time (%1)")
                                .arg(mniTimeline->shortcut().toString(QKeySequence::NativeText)));
    addAction(mniTimeline);
    connect(mniTimeline, &QAction::toggled, this, &TfrmDateEffectiveMaintenance::OnTimeline);
    tbMaintenance->insertSeparator(mniFirstExtra);
    tbMaintenance->insertAction(mniFirstExtra, mniNewEffectiveDate);
    tbMaintenance->insertAction(mniFirstExtra, mniTimeline);

    // In the header band, since a toolbar that is too narrow would hide it.
    chkShowPastValues = new QCheckBox(QStringLiteral("Show Past Values"), fhMaintenance);
    chkShowPastValues->setObjectName(QStringLiteral("chkShowPastValues"));
    connect(chkShowPastValues, &QCheckBox::toggled, this, &TfrmDateEffectiveMaintenance::OnShowPastValues);
    auto *header = qobject_cast<QBoxLayout *>(fhMaintenance->layout());
    header->removeWidget(lblSubHeader);
    auto *row = new QHBoxLayout;
    row->addWidget(lblSubHeader);
    row->addStretch();
    row->addWidget(chkShowPastValues);
    header->addLayout(row);
    setTabOrder(edtSearch->previousInFocusChain(), chkShowPastValues);

    auto *below = new QVBoxLayout(pnlBelowGrid);
    below->setContentsMargins(0, 0, 0, 0);
    pnlTimeline = new TVersionTimeline(pnlBelowGrid);
    below->addWidget(pnlTimeline);
    connect(pnlTimeline, &TVersionTimeline::VersionChosen, this, &TfrmDateEffectiveMaintenance::FocusVersion);
}

void TfrmDateEffectiveMaintenance::FormCreate(QObject *Sender)
{
    TfrmMaintenanceBase::FormCreate(Sender);
    query_.SetLinkNotesField(Name(dated_.masterKey));
}

int TfrmDateEffectiveMaintenance::MasterID() const
{
    return Grid()->CurrentValue(Name(dated_.masterKey)).toInt();
}

void TfrmDateEffectiveMaintenance::DoShow()
{
    TfrmMaintenanceBase::DoShow();
    mniTimeline->setChecked(true);
}

void TfrmDateEffectiveMaintenance::RefreshFilter()
{
    CarryVersionsForward(dated_);
    query_.SetFromTables(FromTables(chkShowPastValues->isChecked()));
}

void TfrmDateEffectiveMaintenance::RecordChanged(TCorvexMessage &message)
{
    TfrmMaintenanceBase::RecordChanged(message);
    ReadTimeline(true);
}

void TfrmDateEffectiveMaintenance::UpdateActions()
{
    TfrmMaintenanceBase::UpdateActions();
    mniNewEffectiveDate->setEnabled(Grid()->RecordFocused(true));
    ReadTimeline(false);
}

void TfrmDateEffectiveMaintenance::OnShowPastValues()
{
    try {
        RefreshFilter();
        query_.brRefresh(true, QString(), QString());
    } catch (const TDbError &error) {
        ShowException(error);
    }
    UpdateActions();
}

void TfrmDateEffectiveMaintenance::OnTimeline(bool show)
{
    pnlBelowGrid->setVisible(show);
    ReadTimeline(true);
}

void TfrmDateEffectiveMaintenance::ReadTimeline(bool again)
{
    if (!mniTimeline->isChecked())
        return;
    const int master = MasterID();
    if (again || master != timelineMaster_) {
        timelineMaster_ = master;
        QList<TTimelineVersion> versions;
        try {
            if (master != 0) {
                const TDbRows rows = MainConnection().Select(
                    QStringLiteral(
                        "select %1, dEffectiveDate, dEndDate, iChangeType, cChangeReason, cCreateAgentName, dCreated, "
                        "cChangeAgentName, dChanged, %2 from %3 where %4 = :master order by dEffectiveDate, %1")
                        .arg(Name(dated_.versionKey), VersionColumns().join(QStringLiteral(", ")), Name(dated_.history),
                             Name(dated_.masterColumn)),
                    {{QStringLiteral("master"), master}});
                for (int row = 0; row < rows.size(); ++row) {
                    TTimelineVersion version;
                    version.id = rows.Value(row, Name(dated_.versionKey)).toInt();
                    version.start = rows.Value(row, u"dEffectiveDate").toDate();
                    version.end = rows.Value(row, u"dEndDate").toDate();
                    version.deleted = rows.Value(row, u"iChangeType").toInt() == DeleteVersionType;
                    version.value = VersionValue(rows, row);
                    version.reason = rows.Value(row, u"cChangeReason").toString();
                    version.createdBy = rows.Value(row, u"cCreateAgentName").toString();
                    version.created = rows.Value(row, u"dCreated").toDate();
                    version.changedBy = rows.Value(row, u"cChangeAgentName").toString();
                    version.changed = rows.Value(row, u"dChanged").toDate();
                    versions.append(version);
                }
            }
        } catch (const TDbError &error) {
            // The list itself tells what is wrong with the database.
            qCWarning(lcEffectiveDate).noquote() << error.message;
        }
        pnlTimeline->SetVersions(master == 0 ? QString() : tr("Versions of \"%1\"").arg(FocusedCode()), versions);
    }
    pnlTimeline->SetVersion(FocusedID());
}

void TfrmDateEffectiveMaintenance::FocusVersion(int version)
{
    if (Grid()->FocusKey(version) || chkShowPastValues->isChecked())
        return;
    // A version that has ended: deleted ones are in no list.
    const TDbRows live =
        MainConnection().Select(QStringLiteral("select 1 as n from %1 where %2 = :version and iChangeType <> 3")
                                    .arg(Name(dated_.versionTable), Name(dated_.versionKey)),
                                {{QStringLiteral("version"), version}});
    if (live.isEmpty())
        return;
    chkShowPastValues->setChecked(true);
    Grid()->FocusKey(version);
}

bool TfrmDateEffectiveMaintenance::CheckDatesBeforeDelete() const
{
    const QString reason =
        TDateBasedEditingController(dated_, MasterID(), FocusedID(), false).CheckBeforeDelete(FocusedCode());
    if (!reason.isEmpty())
        InfoMessage(reason);
    return reason.isEmpty();
}

void TfrmDateEffectiveMaintenance::DeleteVersion(const std::function<void(TCorvexADOStoredProc &)> &more)
{
    DeleteAndTell([this, &more] {
        TCorvexADOStoredProc update(Name(dated_.procedure));
        update.SetParam(Name(dated_.masterParam), MasterID());
        update.SetInOutParam(Name(dated_.versionParam), FocusedID());
        update.SetParam(QStringLiteral("@dEffectiveDate"), Grid()->CurrentValue(u"dEffectiveDate").toDate());
        update.SetParam(QStringLiteral("@iAgentID"), CurrentAgentID());
        update.SetParam(QStringLiteral("@iChangeType"), DeleteVersionType);
        update.SetInOutParam(QStringLiteral("@cMessage"), QStringLiteral(""));
        if (more)
            more(update);
        if (!update.kvExecProc(true))
            return false;
        ReturnMessage(Name(dated_.deleteTitle), update.ReturnValue(),
                      update.Param(QStringLiteral("@cMessage")).toString());
        return update.ReturnValue() != Refused;
    });
}
