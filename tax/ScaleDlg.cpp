// SPDX-License-Identifier: Apache-2.0
#include "tax/ScaleDlg.h"

#include <QHBoxLayout>

#include <algorithm>

#include "framework/Kvglobal.h"
#include "tax/IPTaxBracketsAddDlg.h"

namespace {

const char kEarnings[] = "fWeeklyEarnings";
constexpr int kSuppliedKeys = 50000; // keys up to here belong to records supplied with the system

} // namespace

TfrmScaleDlg::TfrmScaleDlg(const TDialogFacts &facts, const TBracketFacts &brackets, TCorvexADOQuery &query)
    : TfrmCorvexDlg(facts, query)
    , bracketFacts_(brackets)
{}

void TfrmScaleDlg::AddBracketsGroup(const QList<TGridColumn> &columns)
{
    auto *row = new QWidget(pnlClient);
    row->setObjectName("pnlBrackets");
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    static_cast<QVBoxLayout *>(pnlClient->layout())->addWidget(row, 1);

    grdBrackets = new TqsMemoryGrid(columns, kEarnings);
    grdBrackets->setAccessibleName(bracketFacts_.caption);
    fields.AddGroup(row, bracketFacts_.caption)
        .Widget(grdBrackets, "grdBrackets")
        .Buttons(
            {{btnAdd, "btnAdd", "&Add..."}, {btnEdit, "btnEdit", "&Edit..."}, {btnDelete, "btnDelete", "&Delete"}});
    const bool yearly = CountryCode != kAustralia;
    grpWithholding = new TWithholdingPanel(bracketFacts_.helpHECS ? TWithholdingRule::StudyLoan
                                           : yearly               ? TWithholdingRule::Yearly
                                                                  : TWithholdingRule::Weekly,
                                           row);
    layout->addWidget(grpWithholding, 1);

    connect(btnAdd, &QPushButton::clicked, this, &TfrmScaleDlg::btnAddClick);
    connect(btnEdit, &QPushButton::clicked, this, &TfrmScaleDlg::btnEditClick);
    connect(btnDelete, &QPushButton::clicked, this, &TfrmScaleDlg::btnDeleteClick);
    connect(grdBrackets, &TqsMemoryGrid::AddRequested, this, &TfrmScaleDlg::btnAddClick);
    connect(grdBrackets, &TqsMemoryGrid::EditRequested, this, &TfrmScaleDlg::btnEditClick);
    connect(grdBrackets, &TqsMemoryGrid::DeleteRequested, this, &TfrmScaleDlg::btnDeleteClick);
    connect(&Brackets(), &TMemoryTable::Changed, this, &TfrmScaleDlg::ShowWithholding);
}

void TfrmScaleDlg::FormShow()
{
    TfrmCorvexDlg::FormShow();
    QWidget *last = btnDelete;
    for (QWidget *control : grpWithholding->Controls()) {
        setTabOrder(last, control);
        last = control;
    }
    for (QWidget *control : std::initializer_list<QWidget *>{btnNote, btnOK, btnCancel}) {
        setTabOrder(last, control);
        last = control;
    }
    SetControls();
}

void TfrmScaleDlg::SetEditFields()
{
    TfrmCorvexDlg::SetEditFields();
    LoadBrackets();
}

void TfrmScaleDlg::LoadBrackets()
{
    const QList<QVariantMap> rows = RecordID() == 0 ? QList<QVariantMap>() : ReadBrackets();
    Brackets().SetRows(rows);
    grdBrackets->FocusRow(0);
    loadedBrackets_ = BracketsText(rows);
}

QList<QVariantMap> TfrmScaleDlg::RowsInMemory() const
{
    QList<QVariantMap> rows;
    for (int row = 0; row < Brackets().Count(); ++row)
        rows += Brackets().Row(row);
    return rows;
}

QString TfrmScaleDlg::BracketsText(const QList<QVariantMap> &rows) const
{
    QStringList texts;
    for (const QVariantMap &row : rows) {
        QStringList values;
        for (const char *field :
             {kEarnings, bracketFacts_.coefficientA, bracketFacts_.coefficientB, bracketFacts_.coefficientC}) {
            if (*field)
                values += QString::number(row.value(field).toDouble(), 'g', 12);
        }
        texts += values.join(QLatin1Char(' '));
    }
    return texts.join(QStringLiteral("; "));
}

// Brackets are rewritten whole, so that what somebody else did to them since they were read would be lost unseen.
void TfrmScaleDlg::BeforePost()
{
    if (RecordID() == 0 || !query_.RecordsExist(query_.KeyField(), RecordID()))
        return;
    const QString theirs = BracketsText(ReadBrackets());
    if (theirs == loadedBrackets_)
        return;
    TRecordConflict conflict;
    conflict.fields.append({bracketFacts_.caption, loadedBrackets_, theirs, BracketsText(RowsInMemory())});
    loadedBrackets_ = theirs; // asked once
    throw conflict;
}

void TfrmScaleDlg::ShowWithholding()
{
    QList<TTaxBracket> brackets;
    QString remark;
    for (int row = 0; row < Brackets().Count(); ++row) {
        if (*bracketFacts_.coefficientC && Bracket(row, bracketFacts_.coefficientC) != 0)
            remark = tr("Coefficient C is not part of this.");
        brackets.append({Bracket(row, kEarnings), Bracket(row, bracketFacts_.coefficientA),
                         *bracketFacts_.coefficientB ? Bracket(row, bracketFacts_.coefficientB) : 0.0});
    }
    grpWithholding->SetBrackets(brackets, remark);
}

bool TfrmScaleDlg::SaveFirst()
{
    if (RecordID() != 0)
        return true;
    if (!ConfMessage(bracketFacts_.saveFirst) || !SaveAndReopen())
        return false;
    SetControls();
    return BracketsEditable();
}

bool TfrmScaleDlg::AskBracket(QVariantMap &row)
{
    const auto value = [&row](const char *field) { return *field ? row.value(field).toDouble() : 0.0; };
    double earnings = value(kEarnings);
    double a = value(bracketFacts_.coefficientA);
    double b = value(bracketFacts_.coefficientB);
    double c = value(bracketFacts_.coefficientC);
    int result = QDialog::Rejected;
    DoTaxBracketsAdd(RecordID(), earnings, a, b, c, result, Brackets(), bracketFacts_.helpHECS);
    if (result != QDialog::Accepted)
        return false;
    row.insert(kEarnings, earnings);
    for (const auto &[field, number] :
         {std::pair(bracketFacts_.coefficientA, a), {bracketFacts_.coefficientB, b}, {bracketFacts_.coefficientC, c}}) {
        if (*field)
            row.insert(field, number);
    }
    return true;
}

void TfrmScaleDlg::btnAddClick()
{
    if (!SaveFirst())
        return;
    QVariantMap row;
    if (AskBracket(row))
        grdBrackets->FocusRow(Brackets().Append(row));
    grdBrackets->setFocus();
}

void TfrmScaleDlg::btnEditClick()
{
    const int focused = grdBrackets->FocusedRow();
    if (focused < 0)
        return;
    const QString earnings = QString::fromLatin1(kEarnings);
    const QVariant focusedEarnings = Brackets().Value(focused, earnings);
    if (!SaveFirst())
        return;
    // Saving has read the brackets again: the row is found by what it says.
    const int place =
        Brackets().Value(focused, earnings) == focusedEarnings ? focused : Brackets().Find(earnings, focusedEarnings);
    if (place < 0)
        return;
    QVariantMap row = Brackets().Row(place);
    if (AskBracket(row))
        grdBrackets->FocusRow(Brackets().Set(place, row));
    grdBrackets->setFocus();
}

void TfrmScaleDlg::btnDeleteClick()
{
    const int row = grdBrackets->FocusedRow();
    if (row < 0 || !ConfMessage(bracketFacts_.deleteQuestion))
        return;
    Brackets().Remove(row);
    grdBrackets->FocusRow(row);
}

int MaxScaleKey(const char *sql)
{
    const TDbRows rows = MainConnection().Select(sql);
    return std::max(rows.isEmpty() ? 0 : rows.Value(0, u"iMaxScaleID").toInt(), kSuppliedKeys) + 1;
}
