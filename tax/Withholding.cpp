// SPDX-License-Identifier: Apache-2.0
#include "tax/Withholding.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace {

// Fixed point: coefficients and thresholds in ten-thousandths, earnings in cents, their products in millionths.
constexpr qint64 kTenThousand = 10'000;
constexpr qint64 kMillion = 1'000'000;
constexpr double kGreatestJump = 0.50;
constexpr double kNoEnd = 9'999'999; // the threshold that stands for "and above"

qint64 TenThousandths(double value)
{
    return std::llround(value * kTenThousand);
}

// Halves go up, below 0 too.
qint64 RoundedTo(qint64 millionths, qint64 unit)
{
    const qint64 shifted = millionths + unit / 2;
    const qint64 whole = shifted / unit - (shifted % unit < 0 ? 1 : 0);
    return whole * unit;
}

qint64 ResultOf(const TTaxBracket &bracket, qint64 cents)
{
    return TenThousandths(bracket.a) * cents - TenThousandths(bracket.b) * 100;
}

double LineAt(const TTaxBracket &bracket, double x)
{
    return bracket.a * x - bracket.b;
}

// A step of a table of rates on the whole of the earnings is meant; one downwards is not.
bool IsMeantAsStep(const TTaxBracket &before, const TTaxBracket &after, TWithholdingRule rule)
{
    return rule == TWithholdingRule::StudyLoan && before.b == 0 && after.b == 0 && after.a >= before.a;
}

} // namespace

QString MoneyText(double amount, int decimals)
{
    return QLocale(QLocale::English, QLocale::Australia).toString(amount, 'f', decimals);
}

bool IsFlatRate(const QList<TTaxBracket> &brackets, TWithholdingRule rule)
{
    return rule == TWithholdingRule::Weekly && brackets.size() == 1 && brackets.first().b == 0;
}

TWithholding Withhold(const QList<TTaxBracket> &brackets, TWithholdingRule rule, double earnings)
{
    const qint64 typed = std::max<qint64>(0, std::llround(earnings * 100));
    const qint64 whole = typed / 100 * 100;
    const bool flat = IsFlatRate(brackets, rule);
    const qint64 cents = rule == TWithholdingRule::Yearly ? typed : flat ? whole : whole + 99;

    TWithholding result;
    result.x = double(cents) / 100;
    while (++result.bracket < brackets.size() && cents * 100 >= TenThousandths(brackets[result.bracket].below)) {
    }
    if (result.bracket == brackets.size()) {
        result.bracket = -1;
        return result;
    }
    const qint64 exact = ResultOf(brackets[result.bracket], cents);
    const qint64 rounded = flat                               ? exact / kMillion * kMillion
                           : rule == TWithholdingRule::Yearly ? RoundedTo(exact, kTenThousand)
                                                              : RoundedTo(exact, kMillion);
    result.exact = double(exact) / kMillion;
    result.amount = double(rounded) / kMillion;
    return result;
}

QStringList WithholdingWarnings(const QList<TTaxBracket> &brackets, TWithholdingRule rule)
{
    QStringList warnings;
    double from = 0;
    for (int i = 0; i < brackets.size(); ++i) {
        const TTaxBracket &bracket = brackets[i];
        const QString number = QString::number(i + 1);
        if (bracket.below <= from) {
            warnings +=
                QStringLiteral("The thresholds do not rise at bracket %1 (%2).").arg(number, MoneyText(bracket.below));
            continue;
        }
        // Lines are straight, so a bracket's ends tell about all of it.
        const double end = bracket.below >= kNoEnd ? from : bracket.below - 1;
        for (const double earnings : {from, end}) {
            const TWithholding at = Withhold(brackets, rule, earnings);
            if (at.bracket == i && at.amount < 0) {
                warnings += QStringLiteral("The result is negative in bracket %1 (%2 at %3).")
                                .arg(number, MoneyText(at.amount), MoneyText(earnings));
                break;
            }
        }
        if (i + 1 < brackets.size() && brackets[i + 1].below > bracket.below) {
            const double jump = LineAt(brackets[i + 1], bracket.below) - LineAt(bracket, bracket.below);
            if (std::abs(jump) > kGreatestJump + 1e-6 && !IsMeantAsStep(bracket, brackets[i + 1], rule)) {
                warnings += QStringLiteral("The result jumps by %1 at %2 (bracket %3).")
                                .arg(MoneyText(jump), MoneyText(bracket.below), QString::number(i + 2));
            }
        }
        from = bracket.below;
    }
    return warnings;
}
