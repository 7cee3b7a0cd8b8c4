// SPDX-License-Identifier: Apache-2.0
#include "paystructure/IPRateTypeMaintenance.h"

#include "framework/Ipglobal.h"
#include "framework/effectivedate/DateEffectiveMaintenance.h"
#include "paystructure/IPRateTypeAddDlg.h"
#include "paystructure/RateTypeRules.h"
#include "records/IPRateTypes.h"

namespace {

constexpr TMaintenanceFacts kRateTypes{"TfrmIPRateTypeMaintenance",
                                       "Rate Type Maintenance",
                                       "Rate Types",
                                       "Rate Type List",
                                       "grdRateTypes",
                                       1921,
                                       103500,
                                       9411};

const char kRateTypeUsed[] = "Unable to delete Rate Type \"%s\" as it is used by %s!";

// Which groupings a list shows.
enum GroupingFilter { AwardRates = 2, AllRates = 3 };

QString KindValue(int kind, double rate, const QString &formula)
{
    switch (kind) {
    case FormulaRate:
        return formula;
    case AwardRate:
        return QString::number(rate, 'f', 2) + "%";
    default:
        return QString::number(rate, 'f', Installation().rateDecimals);
    }
}

QList<QPair<QVariant, QString>> Entries(const QStringList &texts)
{
    QList<QPair<QVariant, QString>> entries;
    for (int i = 0; i < texts.size(); ++i)
        entries.append({i, texts[i]});
    return entries;
}

QList<TGridColumn> RateTypeColumns(bool awards)
{
    using Kind = TGridColumn::Kind;
    QList<QPair<QVariant, QString>> groupings = Entries(TRateGroupingString());
    groupings.append({QVariant(), TRateGroupingString().first()});
    QList<QPair<QVariant, QString>> openEnds{{QVariant(), EndDateText({})}};
    for (QDate day(1899, 12, 30); !IsDateSet(day); day = day.addDays(1))
        openEnds.append({day.startOfDay(), EndDateText(day)});
    return {
        {"idRateType", "Rate Type ID", Kind::Integer, 90, false},
        {"cCode", "Code", Kind::Text, 100},
        {"cDescription", "Description", Kind::Text, 220},
        {"iType", "Rate Type", Kind::Integer, 90, true, true, 0, {}, Entries(TRateTypeString())},
        {"fRate", "Fixed Rate", Kind::Float, 100, true, true, Installation().rateDecimals},
        {"FormulaCode", "Formula Code", Kind::Text, 110},
        {"FormulaDesc", "Formula Name", Kind::Text, 200, false},
        {"dEffectiveDate", "Effective Date", Kind::Date, 110},
        {"dEndDate", "End Date", Kind::Date, 120, true, true, 0, {}, openEnds},
        {"cChangeReason", "Change Reason", Kind::Text, 150},
        {"bSystem", "System", Kind::Bool, 70, false},
        {"iGrouping", "Grouping", Kind::Integer, 90, true, true, 0, {}, groupings},
        {"idRateTypeTD", "Rate Type TD ID", Kind::Integer, 110, false},
        {"cCreateAgentName", "Created by Agent", Kind::Text, 150, false},
        {"cChangeAgentName", "Changed by Agent", Kind::Text, 150, false},
        {"bActive", "Active", Kind::Bool, 60},
        {"idNotes", "Notes", Kind::Notes, 60},
        {"AwardCode", "Award Code", Kind::Text, 110, awards, awards},
        {"AwardName", "Award Name", Kind::Text, 200, awards, awards},
    };
}

class TfrmIPRateTypeMaintenance final : public TfrmDateEffectiveMaintenance
{
public:
    TfrmIPRateTypeMaintenance(QWidget *AOwner, bool NonModal, bool Visible)
        : TfrmDateEffectiveMaintenance(kRateTypes, kRateTypeDates, qryRateTypes, AOwner, NonModal, Visible)
        , awards_(CommandLineHolds("MAPS=Y"))
    {
        qryRateTypes.SetTableName("_iptblRateTypes");
        qryRateTypes.SetSelectFields("idRateTypeTD, idRateType, cCode, iAwardTDID");
        Grid()->SetColumns(RateTypeColumns(awards_), "cCode");
        if (awards_) {
            lblHeader->setText("Award Rates");
            lblSubHeader->setText("Award Rates List");
        }
    }

protected:
    QString FromTables(bool pastValues) const override
    {
        return QString("[dbo].[_ipfnGetRateTypes]('18991230',%1,1,0)").arg(pastValues ? 1 : 0);
    }
    QStringList VersionColumns() const override { return {"iType", "fRate", "iFormulaID"}; }
    QString VersionValue(const TDbRows &rows, int row) const override
    {
        const int kind = rows.Value(row, u"iType").toInt();
        QString formula;
        if (kind == FormulaRate) {
            const TDbRows found =
                MainConnection().Select("select cCode from _iptblFormulaMain where idFormulaMain = :id",
                                        {{"id", rows.Value(row, u"iFormulaID")}});
            if (!found.isEmpty())
                formula = found.Value(0, u"cCode").toString();
        }
        return KindValue(kind, rows.Value(row, u"fRate").toDouble(), formula);
    }
    void RefreshFilter() override
    {
        TfrmDateEffectiveMaintenance::RefreshFilter();
        const GroupingFilter filter = awards_ ? AwardRates : AllRates;
        qryRateTypes.SetFilter(filter == AwardRates ? QString("iGrouping = %1").arg(int(AwardRates)) : QString());
    }

    void mniMaintAddClick(QObject *Sender) override
    {
        TfrmDateEffectiveMaintenance::mniMaintAddClick(Sender);
        DoRateTypeAdd(0, false, false);
    }
    void mniMaintEditClick(QObject *Sender) override
    {
        TfrmDateEffectiveMaintenance::mniMaintEditClick(Sender);
        if (Grid()->RecordFocused(true))
            DoRateTypeAdd(FocusedID(), false, false);
    }
    void mniMaintCopyClick(QObject *Sender) override
    {
        TfrmDateEffectiveMaintenance::mniMaintCopyClick(Sender);
        if (!Grid()->RecordFocused(true))
            return;
        if (Focused().award) {
            InfoMessage(FormatText("An Award %s cannot be copied.", {"Rate Type"}));
            return;
        }
        DoRateTypeAdd(FocusedID(), true, false);
    }
    void mniNewEffectiveDateClick() override
    {
        if (Focused().award) {
            InfoMessage("Cannot create a New Effective Date as this is used by an Award.");
            return;
        }
        DoRateTypeAdd(FocusedID(), false, true);
    }

    std::span<const TInUse> InUseTables() const override { return kRateTypeInUse; }
    QString DeleteQuestion() const override { return "Delete Rate Type \"" + FocusedCode() + "\" ?"; }
    bool CheckBeforeDelete() override
    {
        const TFocused focused = Focused();
        if (focused.system) {
            InfoMessage("System Rates cannot be deleted!");
            return false;
        }
        if (focused.award) {
            InfoMessage(FormatText(kRateTypeUsed, {FocusedCode(), "an Award"}));
            return false;
        }
        return CheckDatesBeforeDelete();
    }
    void DeleteRecord() override
    {
        DeleteVersion([](TCorvexADOStoredProc &update) { update.SetParam("@iAwardTDID", 0); });
    }

private:
    // What the focused version is now: the row in the list may be older.
    struct TFocused
    {
        bool system = false;
        bool award = false;
    };
    TFocused Focused() const
    {
        TqryIPRateTypeVersions version;
        version.SelectRecords(version.KeyField(), FocusedID(), false);
        if (version.IsEmpty())
            return {};
        return {version.GetSystem(), version.GetAwardTDID() > 0};
    }

    TqryIPRateTypeVersions qryRateTypes;
    const bool awards_;
};

} // namespace

void DoRateTypeMaintenance(bool ShowModal, TList *SelectedList, bool MultiSelect)
{
    RunMaintenance<TfrmIPRateTypeMaintenance>(ShowModal, SelectedList, MultiSelect);
}
