// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QGroupBox>

#include "framework/grid/MemoryGrid.h"
#include "framework/widgets/Plot.h"
#include "tax/Withholding.h"

class QLabel;
class TqsNumberEdit;

// Beside the brackets of a scale: what they do to earnings, as a plot and as a table, for an amount that can be typed,
// and a warning where a number is almost surely mistyped. It only looks on; hidden while there are no brackets.
class TWithholdingPanel final : public QGroupBox
{
    Q_OBJECT
public:
    explicit TWithholdingPanel(TWithholdingRule rule, QWidget *parent = nullptr);

    // Brackets in ascending order; `remark` is shown with the formula.
    void SetBrackets(const QList<TTaxBracket> &brackets, const QString &remark = {});
    // The controls in tab order.
    QList<QWidget *> Controls() const;

private:
    QString Formula(const TWithholding &at) const;
    QString BracketText(int bracket) const;
    void ShowAmount();
    void ShowPlot();
    void ShowTable();
    double EndOfPlot() const;

    const TWithholdingRule rule_;
    QList<TTaxBracket> brackets_;
    QString remark_;
    TqsNumberEdit *edtTryEarnings_;
    QLabel *lblWithholding_;
    QLabel *lblFormula_;
    QTabWidget *pgcWithholding_;
    TqsPlot *pltWithholding_;
    TqsMemoryGrid *grdWithholding_;
    QLabel *lblWarnings_;
};
