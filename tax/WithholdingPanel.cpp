// SPDX-License-Identifier: Apache-2.0
#include "tax/WithholdingPanel.h"

#include <QGridLayout>
#include <QLabel>
#include <QTabWidget>

#include <algorithm>
#include <cmath>

#include "framework/editors/Editors.h"

namespace {

constexpr double kNoEnd = 9'999'999;
constexpr double kUsualWeeklyEarnings = 1'100;
constexpr double kUsualYearlyEarnings = 57'200;
constexpr qsizetype kMostWarnings = 3;

// Where a bracket has no end, there is no amount at its end either.
QString MoneyOf(const QVariant &value)
{
    return value.isNull()               ? QString()
           : value.toDouble() >= kNoEnd ? QObject::tr("and above")
                                        : MoneyText(value.toDouble());
}

const QList<TGridColumn> &TableColumns()
{
    using Kind = TGridColumn::Kind;
    static const QList<TGridColumn> columns{
        {"fFrom", "From", Kind::Float, 90, true, true, 2, MoneyOf},
        {"fBelow", "Below", Kind::Float, 90, true, true, 2, MoneyOf},
        {"fAtStart", "At the start", Kind::Float, 100, true, true, 2, MoneyOf},
        {"fAtEnd", "At the end", Kind::Float, 100, true, true, 2, MoneyOf},
    };
    return columns;
}

bool IsOpenEnded(const TTaxBracket &bracket)
{
    return bracket.below >= kNoEnd;
}

} // namespace

TWithholdingPanel::TWithholdingPanel(TWithholdingRule rule, QWidget *parent)
    : QGroupBox(rule == TWithholdingRule::StudyLoan ? tr("Loan Component") : tr("Withholding"), parent)
    , rule_(rule)
    , edtTryEarnings_(new TqsNumberEdit(this))
    , lblWithholding_(new QLabel(this))
    , lblFormula_(new QLabel(this))
    , pgcWithholding_(new QTabWidget(this))
    , pltWithholding_(new TqsPlot)
    , grdWithholding_(new TqsMemoryGrid(TableColumns(), QString()))
    , lblWarnings_(new QLabel(this))
{
    const bool yearly = rule == TWithholdingRule::Yearly;
    setObjectName(QStringLiteral("grpWithholding"));

    auto *label = new QLabel(yearly ? tr("Tr&y yearly earnings of") : tr("Tr&y weekly earnings of"), this);
    label->setObjectName(QStringLiteral("lblTryEarnings"));
    label->setBuddy(edtTryEarnings_);
    edtTryEarnings_->setObjectName(QStringLiteral("edtTryEarnings"));
    edtTryEarnings_->setAccessibleName(yearly ? tr("Yearly earnings to try") : tr("Weekly earnings to try"));
    edtTryEarnings_->SetMinimum(0);
    edtTryEarnings_->SetMaximum(kNoEnd);
    edtTryEarnings_->SetDecimals(2);
    edtTryEarnings_->SetValue(yearly ? kUsualYearlyEarnings : kUsualWeeklyEarnings);
    edtTryEarnings_->setFixedWidth(120);
    lblWithholding_->setObjectName(QStringLiteral("lblWithholding"));
    QFont bold = lblWithholding_->font();
    bold.setBold(true);
    lblWithholding_->setFont(bold);
    lblFormula_->setObjectName(QStringLiteral("lblFormula"));
    lblFormula_->setWordWrap(true);
    for (QLabel *text : {lblWithholding_, lblFormula_, lblWarnings_}) {
        text->setTextFormat(Qt::PlainText);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        text->setFocusPolicy(Qt::NoFocus);
    }
    lblWarnings_->setObjectName(QStringLiteral("lblWarnings"));
    lblWarnings_->setWordWrap(true);

    pltWithholding_->setObjectName(QStringLiteral("pltWithholding"));
    pltWithholding_->setAccessibleName(tr("Plot of the result over earnings; the Table page has its numbers"));
    pltWithholding_->SetAxes(yearly ? tr("Yearly earnings") : tr("Weekly earnings"), rule == TWithholdingRule::StudyLoan
                                                                                         ? tr("Component a week")
                                                                                     : yearly ? tr("Tax a year")
                                                                                              : tr("Withheld a week"));
    pltWithholding_->SetReadOut([this](double x) -> TqsPlot::TReading {
        const double earnings = rule_ == TWithholdingRule::Yearly ? std::round(x) : std::floor(x);
        const TWithholding at = Withhold(brackets_, rule_, earnings);
        if (at.bracket < 0)
            return {tr("%1: no bracket").arg(MoneyText(earnings, 0)), 0};
        return {
            tr("%1: %2").arg(MoneyText(earnings, 0), MoneyText(at.amount, rule_ == TWithholdingRule::Yearly ? 2 : 0)),
            at.amount};
    });
    grdWithholding_->setObjectName(QStringLiteral("grdWithholding"));
    grdWithholding_->setAccessibleName(tr("Result at the ends of each bracket"));
    pgcWithholding_->setObjectName(QStringLiteral("pgcWithholding"));
    pgcWithholding_->addTab(pltWithholding_, tr("&Plot"));
    pgcWithholding_->addTab(grdWithholding_, tr("&Table"));
    pgcWithholding_->setDocumentMode(true);

    auto *layout = new QGridLayout(this);
    layout->addWidget(label, 0, 0);
    layout->addWidget(edtTryEarnings_, 0, 1);
    layout->addWidget(lblWithholding_, 0, 2);
    layout->addWidget(lblFormula_, 1, 0, 1, 3);
    layout->addWidget(pgcWithholding_, 2, 0, 1, 3);
    layout->addWidget(lblWarnings_, 3, 0, 1, 3);
    layout->setColumnStretch(2, 1);
    layout->setRowStretch(2, 1);

    connect(edtTryEarnings_, &TqsNumberEdit::ValueChanged, this, &TWithholdingPanel::ShowAmount);
    hide();
}

QList<QWidget *> TWithholdingPanel::Controls() const
{
    return {edtTryEarnings_, pgcWithholding_, pltWithholding_, grdWithholding_};
}

void TWithholdingPanel::SetBrackets(const QList<TTaxBracket> &brackets, const QString &remark)
{
    brackets_ = brackets;
    remark_ = remark;
    setVisible(!brackets_.isEmpty());
    if (brackets_.isEmpty())
        return;
    ShowTable();
    ShowAmount();
    QStringList warnings = WithholdingWarnings(brackets_, rule_);
    if (warnings.size() > kMostWarnings) {
        const qsizetype more = warnings.size() - kMostWarnings;
        warnings.resize(kMostWarnings);
        warnings += tr("And %1 more.").arg(more);
    }
    lblWarnings_->setText(warnings.isEmpty() ? QString()
                                             : tr("Please check: %1").arg(warnings.join(QLatin1Char('\n'))));
    lblWarnings_->setVisible(!warnings.isEmpty());
}

QString TWithholdingPanel::BracketText(int bracket) const
{
    return IsOpenEnded(brackets_[bracket])
               ? tr("bracket %1 (and above)").arg(bracket + 1)
               : tr("bracket %1 (below %2)").arg(QString::number(bracket + 1), MoneyText(brackets_[bracket].below));
}

QString TWithholdingPanel::Formula(const TWithholding &at) const
{
    const TTaxBracket &bracket = brackets_[at.bracket];
    const QString minus = bracket.b < 0 ? QStringLiteral("+") : QStringLiteral("\u2212");
    return tr("%1: %2 \u00d7 %3 %4 %5 = %6")
        .arg(BracketText(at.bracket), MoneyText(bracket.a, 4), MoneyText(at.x), minus,
             MoneyText(std::abs(bracket.b), 4), MoneyText(at.exact, 4));
}

void TWithholdingPanel::ShowAmount()
{
    if (brackets_.isEmpty())
        return;
    const TWithholding at = Withhold(brackets_, rule_, edtTryEarnings_->Value());
    if (at.bracket < 0) {
        lblWithholding_->setText(tr("no bracket applies"));
        lblFormula_->setText(tr("The earnings are not below any threshold."));
    } else {
        lblWithholding_->setText(rule_ == TWithholdingRule::StudyLoan
                                     ? tr("gives a component of %1").arg(MoneyText(at.amount))
                                 : rule_ == TWithholdingRule::Yearly ? tr("gives tax of %1").arg(MoneyText(at.amount))
                                                                     : tr("withholds %1").arg(MoneyText(at.amount)));
        QString formula = Formula(at);
        formula[0] = formula[0].toUpper();
        lblFormula_->setText(remark_.isEmpty() ? formula : formula + QLatin1Char('\n') + remark_);
    }
    ShowPlot();
    pltWithholding_->SetMarker(edtTryEarnings_->Value());
}

// Somewhat beyond the last threshold that is one, and beyond the amount that is tried.
double TWithholdingPanel::EndOfPlot() const
{
    double last = 0;
    for (const TTaxBracket &bracket : brackets_) {
        if (!IsOpenEnded(bracket))
            last = std::max(last, bracket.below);
    }
    if (last == 0)
        last = rule_ == TWithholdingRule::Yearly ? 150'000 : 3'000;
    last = std::max(last, edtTryEarnings_->Value());
    const double step = NiceStep(last * 1.25, 5);
    return std::ceil(last * 1.1 / step) * step;
}

void TWithholdingPanel::ShowPlot()
{
    const double end = EndOfPlot();
    QList<QPointF> points;
    QList<double> marks;
    double from = 0;
    for (const TTaxBracket &bracket : brackets_) {
        const double to = std::min(bracket.below, end);
        if (to <= from)
            continue;
        for (const double x : {from, to})
            points += QPointF(x, bracket.a * x - bracket.b);
        marks += to;
        from = to;
    }
    pltWithholding_->SetRange(0, end);
    pltWithholding_->SetMarks(marks);
    pltWithholding_->SetSeries({{tr("Withheld"), points}});
}

void TWithholdingPanel::ShowTable()
{
    QList<QVariantMap> rows;
    double from = 0;
    for (const TTaxBracket &bracket : brackets_) {
        const bool open = IsOpenEnded(bracket);
        const double last = bracket.below - (rule_ == TWithholdingRule::Yearly ? 0.01 : 1);
        rows.append({{"fFrom", from},
                     {"fBelow", bracket.below},
                     {"fAtStart", Withhold(brackets_, rule_, from).amount},
                     {"fAtEnd", open ? QVariant() : QVariant(Withhold(brackets_, rule_, last).amount)}});
        from = std::max(from, bracket.below);
    }
    grdWithholding_->Table().SetRows(rows);
    grdWithholding_->FocusRow(0);
}
